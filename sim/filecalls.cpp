// SPDX-License-Identifier: MIT
// The calls that save and load the configs.
#include "sim/configfile.h"
#include "sim/service.h"
#include "sim/text.h"

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
