// SPDX-License-Identifier: MIT
// The logs of a catalogue: everything that happens to an identifier is one entry of the log that
// its first field names, and is handed on to the debug log.
#pragma once

#include "sim/announcer.h"
#include "sim/debuglog.h"
#include "sim/refusal.h"

#include <QString>
#include <QStringList>
#include <QVector>

#include <optional>

/// One log of a catalogue.
struct Log {
    QString name;
    QStringList entries; ///< oldest first
    bool announced = false; ///< whether each new entry is announced
};

/// All logs.
class Journal
{
public:
    /// Most entries of one log; the oldest ones make room.
    static constexpr int mostEntries = 1000;

    Journal(const QStringList &logNames, DebugLog &debugLogBehind, Announcer announcerOfEntries);

    /// The logs in catalogue order.
    const QVector<Log> &logs() const { return all; }
    /// Notes what happened to `id`: the entry is the identifier and the text.
    void record(LogLevel level, const QString &id, const QString &text);
    /// Notes that a call about `id` was refused.
    void recordRefusal(const QString &id, const Refusal &refusal);

    /// From now on each new entry of the log is announced.
    std::optional<Refusal> startNotify(const QString &name);
    /// Ends what startNotify() began.
    std::optional<Refusal> stopNotify(const QString &name);
    /// Drops the entries of the log.
    std::optional<Refusal> clear(const QString &name);

private:
    Log *find(const QString &name);

    QVector<Log> all;
    DebugLog &debugLog;
    Announcer announcer;
};
