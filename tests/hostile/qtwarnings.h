// SPDX-License-Identifier: MIT
// Warnings of Qt D-Bus on standard error that a service can cause.
#pragma once

#include <QByteArray>

/// Sends Qt's warnings to standard error, as in the program; Qt Test prints them among its own
/// lines.
void showQtWarnings();

/// The text without the lines of the two warnings that are allowed: about a signature value without
/// types, which is legal on the bus, and about a name whose owner changed while it was looked up.
QByteArray withoutAllowedWarnings(const QByteArray &errors);
