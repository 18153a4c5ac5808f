// SPDX-License-Identifier: MIT
// The calls about the server itself.
#include "sim/service.h"

#include <QDBusVariant>
#include <QLatin1String>
#include <QMetaType>

Answer Service::dBusServerCmd(const QVariantList &arguments)
{
    constexpr int longestPace = 3600000;
    const QString word = arguments.at(0).toString();
    const bool forConfigs = word == QLatin1String("SET_CFG_NOTIFY_TIMER");
    if (!forConfigs && word != QLatin1String("SET_RES_NOTIFY_TIMER")) {
        return { {}, unknownCommand(word) };
    }
    const QVariant value = arguments.at(1).value<QDBusVariant>().variant();
    if (value.userType() != QMetaType::Int) {
        return {
            {},
            badValue(
                QStringLiteral("%1 takes a number of milliseconds of D-Bus type \"i\".").arg(word))
        };
    }
    if (value.toInt() < 0 || value.toInt() > longestPace) {
        return { {},
                 badValue(QStringLiteral("%1 takes 0 to %2 milliseconds, not %3.")
                              .arg(word)
                              .arg(longestPace)
                              .arg(value.toInt())) };
    }
    notifier.setPace(forConfigs ? ItemKind::Config : ItemKind::Result, value.toInt());
    return {};
}

Answer Service::dBusServerStatus(const QVariantList & /*arguments*/)
{
    return { { actions.runningCount() }, {} };
}
