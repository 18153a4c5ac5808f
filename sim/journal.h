// SPDX-License-Identifier: MIT
// The logs of a catalogue: everything that happens to an identifier is one entry of the log that
// its first field names, and is handed on to the debug log. No call of the interface reads a log,
// so entries are announced and not kept.
#pragma once

#include "sim/announcer.h"
#include "sim/debuglog.h"
#include "sim/refusal.h"

#include <QSet>
#include <QString>
#include <QStringList>

#include <optional>

/// All logs.
class Journal
{
public:
    Journal(QStringList logNames, DebugLog &debugLogBehind, Announcer announcerOfEntries);

    /// The logs' names in catalogue order.
    const QStringList &names() const { return logs; }
    /// Notes what happened to `id`: the entry is the identifier and the text.
    void record(LogLevel level, const QString &id, const QString &text);
    /// Notes that a call about `id` was refused.
    void recordRefusal(const QString &id, const Refusal &refusal);

    /// From now on each new entry of the log is announced.
    std::optional<Refusal> startNotify(const QString &name);
    /// Ends what startNotify() began.
    std::optional<Refusal> stopNotify(const QString &name);
    /// Refuses a log that is not there; one that is there has nothing to drop.
    std::optional<Refusal> clear(const QString &name) const;

private:
    QStringList logs;
    QSet<QString> announced;
    DebugLog &debugLog;
    Announcer announcer;
};
