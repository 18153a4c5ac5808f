// SPDX-License-Identifier: MIT
#include "sim/journal.h"

#include "sim/idfields.h"
#include "sim/text.h"

#include <utility>

Journal::Journal(QStringList logNames, DebugLog &debugLogBehind, Announcer announcerOfEntries)
    : logs(std::move(logNames))
    , debugLog(debugLogBehind)
    , announcer(std::move(announcerOfEntries))
{
}

void Journal::record(LogLevel level, const QString &id, const QString &text)
{
    const QString entry = shown(id) + QLatin1Char(' ') + text;
    debugLog.record(level, id, entry);
    const QString log = idFields(id).value(0);
    if (announced.contains(log)) {
        announcer.info(QStringLiteral("log %1: %2").arg(log, entry));
    }
}

void Journal::recordRefusal(const QString &id, const Refusal &refusal)
{
    record(LogLevel::Error, id, QStringLiteral("refused: ") + refusal.sentence);
}

std::optional<Refusal> Journal::startNotify(const QString &name)
{
    if (!logs.contains(name)) {
        return unknownId(name);
    }
    announced.insert(name);
    return {};
}

std::optional<Refusal> Journal::stopNotify(const QString &name)
{
    if (!logs.contains(name)) {
        return unknownId(name);
    }
    announced.remove(name);
    return {};
}

std::optional<Refusal> Journal::clear(const QString &name) const
{
    return logs.contains(name) ? std::nullopt : std::optional(unknownId(name));
}
