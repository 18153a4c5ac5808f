// SPDX-License-Identifier: MIT
// Signals that carry a running number, of all eight kinds in turn, and the lines they become.
#pragma once

#include "tests/support/fakeservice.h"

/// Emits the signal with this number and does not wait.
void emitNumbered(FakeService &service, int number);

/// The line that the monitor prints for it.
QByteArray numberedLine(int number);
