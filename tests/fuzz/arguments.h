// SPDX-License-Identifier: MIT
// What people and scripts type, as bytes: run through the argument check, the table and a handler.
#pragma once

#include <QByteArray>

/// Runs the words typed after the program's name, one a line, as `main` runs them, while no bus can
/// be reached: the handlers are called on an invalid proxy, so every call fails at once.
///
/// Returns what was not as it must be; empty if nothing. Words and vector have exactly their size
/// on the heap, so that AddressSanitizer ends the process at the first byte read beyond.
QByteArray problemWith(const QByteArray &typed);
