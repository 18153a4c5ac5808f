// SPDX-License-Identifier: MIT
// The files that are built into the program.
#pragma once

#include <QByteArray>

/// The catalogue used when none is named.
QByteArray builtInCatalog();

/// The interface as introspection data.
QByteArray interfaceXml();
