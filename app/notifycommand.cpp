// SPDX-License-Identifier: MIT
// NOTIFY: switches the service's change notifications and edits the list of ids that it reports.
// Each slot sends one call and drops the pending reply: whether the service accepted is never
// learned.
#include "app/commandline.h"
#include "app/movra.h"
#include "bus/proxies.h"

#include <cstring>

namespace
{

/// Whether exactly this word was typed; null is no word.
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
    // Without an action a known group ends as an unknown one does.
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
        // Never true, as the group is RESULT here. Kept so on purpose: LOG is refused, although the
        // usage text has it.
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
        // The service has one list: configs and results are added and deleted alike.
        notifyAdd(QString::fromLatin1(argv[ThirdArgument]));
    } else if (is(action, "DEL") && argv[ThirdArgument] != nullptr) {
        notifyDelete(QString::fromLatin1(argv[ThirdArgument]));
    } else {
        // A missing id and an unknown action end alike.
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

// The one id travels as a list; the service's single-string overloads are not used.
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

// No command reaches the three log slots: they can be called through the meta-object only.
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
