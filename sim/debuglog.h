// SPDX-License-Identifier: MIT
// The debug log: which of its parts are on, how much they tell, and the file they are written to.
#pragma once

#include "sim/announcer.h"
#include "sim/refusal.h"
#include "sim/statefiles.h"

#include <QFile>
#include <QSet>
#include <QString>
#include <QStringList>

#include <memory>
#include <optional>

/// How much an entry matters; a reporting level shows itself and those before it.
enum class LogLevel { Error, Info, Debug, Debug1, Debug2, Debug3, Debug4 };

/// The debug logs of a catalogue. The second field of an identifier chooses the log, and a number
/// in its last field the instance (0 without one).
class DebugLog
{
public:
    DebugLog(QStringList logNames, StateFiles stateFiles, Announcer announcerOfFiles);

    /// The logs' names in catalogue order.
    const QStringList &names() const { return logs; }
    /// Carries out one command word with its value.
    std::optional<Refusal> command(const QString &word, const QString &value);
    /// Writes an entry about `id` if it is to be written.
    void record(LogLevel level, const QString &id, const QString &text);

private:
    using Handler = std::optional<Refusal> (DebugLog::*)(const QString &value);
    struct CommandRow;
    static const CommandRow commands[];

    std::optional<Refusal> set(const QString &value);
    std::optional<Refusal> setAll(const QString &value);
    std::optional<Refusal> setReportingLevel(const QString &value);
    std::optional<Refusal> saveTo(const QString &value);
    std::optional<Refusal> saveStop(const QString &value);

    QStringList logs;
    QSet<QString> disabled; ///< entries are switchOf() texts
    LogLevel reportingLevel = LogLevel::Info;
    StateFiles files;
    Announcer announcer;
    std::unique_ptr<QFile> file; ///< null while nothing is saved
};
