// SPDX-License-Identifier: MIT
// How text that came from outside is shown in a sentence or a log line.
#pragma once

#include <QString>

/// At most 200 characters on one line: a longer text ends in "...", control characters become
/// blanks.
QString shown(const QString &text);

/// shown() between double quotes.
QString quoted(const QString &text);
