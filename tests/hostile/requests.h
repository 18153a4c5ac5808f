// SPDX-License-Identifier: MIT
// Every request that calls the service, and what must hold whatever the service answers.
#pragma once

#include "tests/support/argumentvector.h"
#include "tests/support/commandforms.h"
#include "tests/support/openmovra.h"

#include <QByteArray>

#include <vector>

/// Every command form, and GET with ids of several kinds of array.
const std::vector<CommandForm> &requests();

/// Says what is wrong with an outcome, or nothing: status, standard error, and on standard output
/// what every reply that was taken, or was not, must lead to.
QByteArray faultOf(const CommandForm &request, const Outcome &outcome, bool taken);
