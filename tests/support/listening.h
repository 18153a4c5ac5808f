// SPDX-License-Identifier: MIT
// When a monitor receives what a service emits.
#pragma once

#include "tests/support/fakeservice.h"
#include "tests/support/program.h"

/// Waits until so many monitors listen to the name on the service's bus; false if `patience` is
/// over.
bool waitUntilListening(const FakeService &service, int monitors = 1,
                        const QByteArray &name = "com.varn.tul");

/// Waits until a monitor of "com.varn.tul" listens, and prints in order what the service emits; it
/// has printed nothing then. False if it does not come to that.
bool waitUntilHeard(Program &monitor, FakeService &service);
