// SPDX-License-Identifier: MIT
// The fields of an identifier, by which logs and debug logs find their entries.
#pragma once

#include <QString>
#include <QStringList>

/// The fields of an identifier, which colons surround and separate.
QStringList idFields(const QString &id);
