// SPDX-License-Identifier: MIT
#include "sim/journal.h"

#include "sim/text.h"

#include <algorithm>
#include <utility>

Journal::Journal(const QStringList &logNames, DebugLog &debugLogBehind,
                 Announcer announcerOfEntries)
    : debugLog(debugLogBehind)
    , announcer(std::move(announcerOfEntries))
{
    for (const QString &name : logNames) {
        all.append({ name, {}, false });
    }
}

void Journal::record(LogLevel level, const QString &id, const QString &text)
{
    const QString entry = shown(id) + QLatin1Char(' ') + text;
    debugLog.record(level, id, entry);
    Log *log = find(idFields(id).value(0));
    if (log == nullptr) {
        return;
    }
    log->entries.append(entry);
    if (log->entries.size() > mostEntries) {
        log->entries.removeFirst();
    }
    if (log->announced) {
        announcer.info(QStringLiteral("log %1: %2").arg(log->name, entry));
    }
}

void Journal::recordRefusal(const QString &id, const Refusal &refusal)
{
    record(LogLevel::Error, id, QStringLiteral("refused: ") + refusal.sentence);
}

std::optional<Refusal> Journal::startNotify(const QString &name)
{
    Log *log = find(name);
    if (log == nullptr) {
        return unknownId(name);
    }
    log->announced = true;
    return {};
}

std::optional<Refusal> Journal::stopNotify(const QString &name)
{
    Log *log = find(name);
    if (log == nullptr) {
        return unknownId(name);
    }
    log->announced = false;
    return {};
}

std::optional<Refusal> Journal::clear(const QString &name)
{
    Log *log = find(name);
    if (log == nullptr) {
        return unknownId(name);
    }
    log->entries.clear();
    return {};
}

Log *Journal::find(const QString &name)
{
    const auto log = std::find_if(all.begin(), all.end(),
                                  [&name](const Log &each) { return each.name == name; });
    return log == all.end() ? nullptr : &*log;
}
