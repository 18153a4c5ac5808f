// SPDX-License-Identifier: MIT
// What a service can make Qt D-Bus write to standard error.
#pragma once

#include <QByteArray>

/// Sends Qt's warnings to standard error, as in the program; Qt Test prints them among its own
/// lines.
void showQtWarnings();

/// The text without the lines of the two warnings that are allowed: about a signature value without
/// types, which is legal on the bus, and about a name that changed hands while its owner was asked.
QByteArray withoutAllowedWarnings(const QByteArray &errors);
