// SPDX-License-Identifier: MIT
// Signals with increasing numbers, of all eight kinds in turn, and the lines that the monitor
// prints for them.
#pragma once

#include "tests/support/fakeservice.h"

/// Emits the signal with this number and does not wait.
void emitNumbered(FakeService &service, int number);

/// The line that the monitor prints for it.
QByteArray numberedLine(int number);
