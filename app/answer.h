// SPDX-License-Identifier: MIT
// The wait for a reply.
#pragma once

#include "bus/connection.h"

#include <QDBusPendingReply>
#include <QDBusReply>

/// Waits until the reply has come or the call has failed. If the bus ends before that, the process
/// exits. If it ends later, the process continues, because it still has to print the answer.
template <typename T> QDBusReply<T> answerTo(QDBusPendingReply<T> call)
{
    call.waitForFinished();
    if (call.error().type() == QDBusError::Disconnected) {
        endIfBusEnded();
    }
    outliveBus();
    return call;
}
