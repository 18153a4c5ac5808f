// SPDX-License-Identifier: MIT
// Every request that calls the service, and the conditions for its outcome with any reply.
#pragma once

#include "tests/support/argumentvector.h"
#include "tests/support/commandforms.h"
#include "tests/support/openmovra.h"

#include <QByteArray>

#include <vector>

/// Every command form, and GET with ids of several kinds of array.
const std::vector<CommandForm> &requests();

/// Returns what is wrong with an outcome, or nothing. Checks the status, standard error, and
/// standard output for an accepted or a failed reply.
QByteArray faultOf(const CommandForm &request, const Outcome &outcome, bool taken);
