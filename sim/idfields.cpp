// SPDX-License-Identifier: MIT
#include "sim/idfields.h"

#include <QLatin1Char>
#include <Qt>

QStringList idFields(const QString &id)
{
    // A client may send an identifier of many millions of fields.
    constexpr int longestId = 1000;
    return id.left(longestId).split(QLatin1Char(':'), Qt::SkipEmptyParts);
}
