// SPDX-License-Identifier: MIT
// Waits until monitors receive signals.
#pragma once

#include "tests/support/fakeservice.h"
#include "tests/support/program.h"

/// Waits until so many monitors listen to the name on the service's bus; false if `patience` is
/// over.
bool waitUntilListening(const FakeService &service, int monitors = 1,
                        const QByteArray &name = "com.varn.tul");

/// Waits until a monitor of "com.varn.tul" has started: it has printed a signal, which is
/// discarded. False if `patience` is over.
bool waitUntilHeard(Program &monitor, FakeService &service);
