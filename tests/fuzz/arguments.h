// SPDX-License-Identifier: MIT
// Words as bytes, which the argument check, the table and a handler process.
#pragma once

#include <QByteArray>

/// Runs the words after the program's name, one on each line, as `main` runs them. No bus can be
/// reached: the handlers are called on an invalid proxy, so that every call fails immediately.
///
/// Returns the difference from the expected outcome; empty if there is none. Words and vector have
/// exactly their size on the heap, so that AddressSanitizer ends the process at the first byte that
/// is read beyond them.
QByteArray problemWith(const QByteArray &typed);
