// SPDX-License-Identifier: MIT
// How text that came from outside is shown in a sentence or a log line.
#pragma once

#include <QString>
#include <QStringList>

/// At most 200 characters on one line: a longer text ends in "...", control characters become
/// blanks.
QString shown(const QString &text);

/// The fields of an identifier, which colons surround and separate.
QStringList idFields(const QString &id);

/// shown() between double quotes.
QString quoted(const QString &text);
