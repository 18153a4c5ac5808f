// SPDX-License-Identifier: MIT
#include "sim/refusal.h"

#include "sim/text.h"

Refusal unknownId(const QString &id)
{
    return { QStringLiteral("varn.pim.Error.UnknownId"),
             QStringLiteral("There is no %1 here.").arg(quoted(id)) };
}

Refusal badValue(const QString &sentence)
{
    return { QStringLiteral("varn.pim.Error.BadValue"), sentence };
}

Refusal readOnly(const QString &id)
{
    return { QStringLiteral("varn.pim.Error.ReadOnly"),
             QStringLiteral("%1 is a result, which cannot be set.").arg(quoted(id)) };
}

Refusal badName(const QString &sentence)
{
    return { QStringLiteral("varn.pim.Error.BadName"), sentence };
}

Refusal fileProblem(const QString &sentence)
{
    return { QStringLiteral("varn.pim.Error.File"), sentence };
}

Refusal unknownCommand(const QString &word)
{
    return { QStringLiteral("varn.pim.Error.UnknownCommand"),
             QStringLiteral("There is no command %1.").arg(quoted(word)) };
}

Refusal onDemand(const QString &sentence)
{
    return { QStringLiteral("varn.pim.Error.Refused"), sentence };
}

Refusal busy(const QString &id)
{
    return { QStringLiteral("varn.pim.Error.Busy"),
             QStringLiteral("%1 is running already.").arg(quoted(id)) };
}
