// SPDX-License-Identifier: MIT
// What the simulator sends and writes: signals and answers, a record of signals and calls, the logs
// of a catalogue, and the debug log with its file.
#pragma once

#include "sim/statefiles.h"

#include <QDBusMessage>
#include <QHash>
#include <QStringList>
#include <QVariant>

#include <bitset>

/// One signal of the interface.
struct Signal {
    QString member;
    QVariantList arguments;
};

/// Sends the signals of the interface and the answers on the session bus, and keeps a record of the
/// signals and calls: a file with one JSON object on each line. Lines are flushed immediately.
class Announcer
{
public:
    /// Opens the record, which may be `-` for standard output; an empty name means there is none.
    Announcer(QString objectPath, const QString &recordFile);

    /// Sends one signal. When this returns, it is queued, not delivered.
    void send(const Signal &signal);
    /// Sends SigInfo.
    void info(const QString &text) { send({ "SigInfo"_q, { text } }); }
    /// Sends SigError.
    void error(const QString &text) { send({ "SigError"_q, { text } }); }

    /// Sends the answer to a call.
    void reply(const QDBusMessage &call, const QDBusMessage &answer);
    /// Records a call with its answer, if it gets one, or a signal.
    void record(const QDBusMessage &message, const QDBusMessage *answer = nullptr);
    /// Throws if a line could not be written; the event loop then ends.
    void checkRecord() const;

private:
    QString path;
    QFile file;
    QString problem;
};

/// The level of an entry. A reporting level includes the levels before it.
enum class LogLevel { Error, Info, Debug, Debug1, Debug2, Debug3, Debug4 };

/// Each event of an id is an entry of the log that the first field of the id names. No member of
/// the interface reads a log, so entries are announced and not kept. The debug log writes them to a
/// file: the second field selects one of the debug logs, and a number in the last field the
/// instance (0 without one).
class Log
{
public:
    Log(const QStringList &logNames, const QStringList &debugLogNames, StateFiles &stateFiles,
        Announcer &logAnnouncer);

    /// Adds an entry: the id and the text.
    void record(LogLevel level, const QString &id, const QString &text);
    /// Throws if there is no such log.
    void check(const QString &name) const;
    /// Announces the further entries of the log, or stops this.
    void announce(const QString &name, bool isOn);

    /// Executes one command of the debug log.
    void command(const QString &word, const QString &value);
    /// Whether the debug log is being written to the file of this name.
    bool writesTo(const QString &name) const { return file && fileName == name; }

private:
    void setInstances(const QString &value, bool isOne);
    void write(const QString &line);

    QHash<QString, bool> logs; ///< by name, whether entries are announced
    using Instances = std::bitset<256>;
    QHash<QString, Instances> debugLogs; ///< by name, which instances are off
    LogLevel reportingLevel = LogLevel::Info;
    StateFiles &files;
    Announcer &announcer;
    QString fileName;
    std::unique_ptr<QFile> file; ///< null while nothing is saved
};
