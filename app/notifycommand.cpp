// SPDX-License-Identifier: MIT
// NOTIFY: switches the service's change notifications and edits the list of ids that it reports.
// Each slot sends one call and drops the pending reply: whether the service accepted is never
// learned.
#include "app/movra.h"
#include "bus/proxies.h"

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
