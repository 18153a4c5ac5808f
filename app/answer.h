// SPDX-License-Identifier: MIT
// The wait for an answer.
#pragma once

#include "bus/connection.h"

#include <QDBusPendingReply>
#include <QDBusReply>

/// Waits until the call is answered or has failed. A bus that ends before that ends the process,
/// one that ends later does not: what there is to print about the answer is printed.
template <typename T> QDBusReply<T> answerTo(QDBusPendingReply<T> call)
{
    call.waitForFinished();
    if (call.error().type() == QDBusError::Disconnected) {
        endIfBusEnded();
    }
    outliveBus();
    return call;
}
