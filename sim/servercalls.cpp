// SPDX-License-Identifier: MIT
// The calls about actions, the server itself, its logs and its files.
#include "sim/configfile.h"
#include "sim/service.h"
#include "sim/text.h"

#include <QDBusVariant>
#include <QMetaType>

Answer Service::refusedAction(const QString &id, const Refusal &refusal)
{
    journal.recordRefusal(id, refusal);
    return { {}, refusal };
}

Answer Service::doAction(const QVariantList &arguments)
{
    const QString id = arguments.at(0).toString();
    if (const auto refusal = actions.start(id, {})) {
        return refusedAction(id, *refusal);
    }
    return {};
}

Answer Service::doActionWithValue(const QVariantList &arguments)
{
    const QString id = arguments.at(0).toString();
    const QString value = arguments.at(1).toString();
    if (const auto refusal = actions.start(id, value)) {
        return refusedAction(id, *refusal);
    }
    return { { actions.replyTo(id, value) }, {} };
}

Answer Service::listActionIds(const QVariantList & /*arguments*/)
{
    return { { actions.ids() }, {} };
}

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

Answer Service::dbgLogCmd(const QVariantList &arguments)
{
    return { {}, debugLog.command(arguments.at(0).toString(), arguments.at(1).toString()) };
}

Answer Service::dbgLogGetIds(const QVariantList & /*arguments*/)
{
    return { { debugLog.names() }, {} };
}

Answer Service::logClear(const QVariantList &arguments)
{
    return { {}, journal.clear(arguments.at(0).toString()) };
}

Answer Service::logGetIds(const QVariantList & /*arguments*/)
{
    QStringList names;
    for (const Log &log : journal.logs()) {
        names.append(log.name);
    }
    return { { names.join(QLatin1Char(' ')) }, {} };
}

Answer Service::logStartNotify(const QVariantList &arguments)
{
    return { {}, journal.startNotify(arguments.at(0).toString()) };
}

Answer Service::logStopNotify(const QVariantList &arguments)
{
    return { {}, journal.stopNotify(arguments.at(0).toString()) };
}

Answer Service::saveConfig(const QVariantList &arguments)
{
    const QString name = arguments.at(0).toString();
    if (const auto refusal = files.write(name, writeConfigs(items))) {
        return { {}, refusal };
    }
    announcer.info(QStringLiteral("configuration saved to %1").arg(files.pathOf(name)));
    return { { true }, {} };
}

Answer Service::loadConfig(const QVariantList &arguments)
{
    const QString name = arguments.at(0).toString();
    const StateRead read = files.read(name);
    if (read.refusal) {
        return { {}, read.refusal };
    }
    const SavedConfigs saved = readConfigs(read.bytes, items);
    if (!saved.problem.isEmpty()) {
        return {
            {},
            fileProblem(
                QStringLiteral("%1 is damaged: %2.").arg(quoted(files.pathOf(name)), saved.problem))
        };
    }
    for (const Assignment &assignment : saved.assignments) {
        const Item &item = items.at(assignment.index);
        journal.record(LogLevel::Info, item.id,
                       QStringLiteral("loaded as ")
                           + shown(valueToText(item.type, assignment.value)));
    }
    items.assign(saved.assignments);
    announcer.info(QStringLiteral("configuration loaded from %1").arg(files.pathOf(name)));
    return { { true }, {} };
}
