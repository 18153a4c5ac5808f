// SPDX-License-Identifier: MIT
// Captures what code in this process prints.
#pragma once

#include <QByteArray>

#include <functional>

/// Runs the action and returns what it wrote to standard output, with any function.
QByteArray captureOutput(const std::function<void()> &action);

/// The same for standard error.
QByteArray captureErrors(const std::function<void()> &action);
