// SPDX-License-Identifier: MIT
// The wait for an answer.
#pragma once

#include "bus/connection.h"

#include <QDBusPendingReply>
#include <QDBusReply>

/// Waits until the call is answered or has failed. If the bus ends before that, the process ends.
/// If it ends later, the process goes on, because the answer must still be printed.
template <typename T> QDBusReply<T> answerTo(QDBusPendingReply<T> call)
{
    call.waitForFinished();
    if (call.error().type() == QDBusError::Disconnected) {
        endIfBusEnded();
    }
    outliveBus();
    return call;
}
