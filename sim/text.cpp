// SPDX-License-Identifier: MIT
#include "sim/text.h"

namespace
{

// A sentence must stay far below what one bus message can carry, whatever a client sent.
constexpr int longestShown = 200;

} // namespace

QString shown(const QString &text)
{
    QString line = text.left(longestShown);
    if (!line.isEmpty() && line.at(line.size() - 1).isHighSurrogate()) {
        line.chop(1);
    }
    for (QChar &character : line) {
        if (character.category() == QChar::Other_Control) {
            character = QLatin1Char(' ');
        }
    }
    return text.size() > longestShown ? line + QLatin1String("...") : line;
}

QString quoted(const QString &text)
{
    return QLatin1Char('"') + shown(text) + QLatin1Char('"');
}
