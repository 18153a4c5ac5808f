// SPDX-License-Identifier: MIT
// NOTIFY: starts and stops the signals for changes and edits the notify list. Each slot sends one
// call and drops the pending reply, so a refusal is not noticed.
#include "app/commandline.h"
#include "app/movra.h"
#include "bus/proxies.h"

#include <cstring>

namespace
{

/// Whether this is exactly the word; null is no word.
bool is(const char *typed, const char *word)
{
    return typed != nullptr && std::strcmp(typed, word) == 0;
}

} // namespace

int Movra::notifyCommand(char **argv)
{
    const char *const group = argv[FirstArgument];
    if (group == nullptr) {
        return ArgumentMissing;
    }
    // A known group without an action has the status of an unknown group.
    const bool hasAction = argv[SecondArgument] != nullptr;
    if (is(group, "CONFIG")) {
        return hasAction ? notifyItems(argv, &Movra::notifyConfigStart, &Movra::notifyConfigStop,
                                       &Movra::notifyConfigClear)
                         : NotSupported;
    }
    if (is(group, "RESULT")) {
        if (hasAction) {
            return notifyItems(argv, &Movra::notifyResultStart, &Movra::notifyResultStop,
                               &Movra::notifyResultClear);
        }
        // Never true, because the group is RESULT here. This is on purpose: LOG is rejected,
        // although the usage text shows it.
        if (is(group, "LOG")) {
            return notifyLog(argv);
        }
    }
    return NotSupported;
}

int Movra::notifyItems(char **argv, void (Movra::*start)(), void (Movra::*stop)(),
                       void (Movra::*clear)())
{
    const char *const action = argv[SecondArgument];
    if (is(action, "START")) {
        (this->*start)();
    } else if (is(action, "STOP")) {
        (this->*stop)();
    } else if (is(action, "CLEAR")) {
        (this->*clear)();
    } else if (is(action, "ADD") && argv[ThirdArgument] != nullptr) {
        // The service has one notify list for configurations and results.
        notifyAdd(QString::fromLatin1(argv[ThirdArgument]));
    } else if (is(action, "DEL") && argv[ThirdArgument] != nullptr) {
        notifyDelete(QString::fromLatin1(argv[ThirdArgument]));
    } else {
        // A missing id and an unknown action have the same status.
        return ArgumentMissing;
    }
    return Success;
}

int Movra::notifyLog(char **argv)
{
    const char *const action = argv[SecondArgument];
    if (action == nullptr || argv[ThirdArgument] == nullptr) {
        return ArgumentMissing;
    }
    const QString id = QString::fromLatin1(argv[ThirdArgument]);
    if (is(action, "START")) {
        notifyLogStart(id);
    } else if (is(action, "STOP")) {
        notifyLogStop(id);
    } else if (is(action, "CLEAR")) {
        notifyLogClear(id);
    } else {
        return ArgumentMissing;
    }
    return Success;
}

// The slots can be called through the meta-object before there is a proxy.

void Movra::notifyConfigStart()
{
    if (iface != nullptr) {
        (void)iface->StartConfigNotify();
    }
}

void Movra::notifyConfigStop()
{
    if (iface != nullptr) {
        (void)iface->StopConfigNotify();
    }
}

void Movra::notifyConfigClear()
{
    if (iface != nullptr) {
        (void)iface->ClearConfigNotifyList();
    }
}

void Movra::notifyResultStart()
{
    if (iface != nullptr) {
        (void)iface->StartResultNotify();
    }
}

void Movra::notifyResultStop()
{
    if (iface != nullptr) {
        (void)iface->StopResultNotify();
    }
}

void Movra::notifyResultClear()
{
    if (iface != nullptr) {
        (void)iface->ClearResultNotifyList();
    }
}

// The single id is sent as a list. The service's single-string overloads are not used.
void Movra::notifyAdd(QString id)
{
    const QStringList ids { id };
    if (iface != nullptr) {
        (void)iface->AddToNotifyList(ids);
    }
}

void Movra::notifyDelete(QString id)
{
    const QStringList ids { id };
    if (iface != nullptr) {
        (void)iface->DeleteFromNotifyList(ids);
    }
}

// No command calls the three log slots. Only the meta-object can.
void Movra::notifyLogStart(QString id)
{
    if (iface != nullptr) {
        (void)iface->LogStartNotify(id);
    }
}

void Movra::notifyLogStop(QString id)
{
    if (iface != nullptr) {
        (void)iface->LogStopNotify(id);
    }
}

void Movra::notifyLogClear(QString id)
{
    if (iface != nullptr) {
        (void)iface->LogClear(id);
    }
}
