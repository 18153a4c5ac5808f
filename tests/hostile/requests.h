// SPDX-License-Identifier: MIT
// Every request that calls the service, and how to make it inside this process.
#pragma once

#include "tests/support/commandforms.h"
#include "tests/support/openmovra.h"

#include <QByteArray>

#include <vector>

/// Every command form, and GET with ids of several kinds of array.
const std::vector<CommandForm> &requests();

/// What a request printed and how it ended.
struct Outcome {
    int status;
    QByteArray out;
    QByteArray err;
};

/// Makes the request, and returns when its handler does; adds the line that the entry point prints
/// about a status.
Outcome make(const CommandForm &request, Movra &movra);

/// Says what is wrong with an outcome, or nothing: status, standard error, and on standard output
/// what every reply that was taken, or was not, must lead to.
QByteArray faultOf(const CommandForm &request, const Outcome &outcome, bool taken);
