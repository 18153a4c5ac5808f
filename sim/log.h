// SPDX-License-Identifier: MIT
// What the simulator sends and writes: signals and answers, a record of signals and calls, the logs
// of a catalogue, and the debug log with its file.
#pragma once

#include "sim/statefiles.h"

#include <QDBusMessage>
#include <QFile>
#include <QHash>
#include <QString>
#include <QStringList>
#include <QVariant>

#include <bitset>
#include <memory>

/// One signal of the interface.
struct Signal {
    QString member;
    QVariantList arguments;
};

/// Sends the signals of the interface and the answers on the session bus, and keeps a record of the
/// signals and calls: a file with one JSON object a line. Lines are flushed at once.
class Announcer
{
public:
    /// Opens the record, which may be `-` for standard output; an empty name means there is none.
    Announcer(QString objectPath, const QString &recordFile);

    /// Sends one signal; it is on its way, not delivered, when this returns.
    void send(const Signal &signal);
    /// Sends SigInfo.
    void info(const QString &text) { send({ "SigInfo"_q, { text } }); }
    /// Sends SigError.
    void error(const QString &text) { send({ "SigError"_q, { text } }); }

    /// Sends the answer to a call.
    void reply(const QDBusMessage &call, const QDBusMessage &answer);
    /// Records a call with its answer, if it gets one, or a signal.
    void record(const QDBusMessage &message, const QDBusMessage *answer = nullptr);
    /// Refuses to go on when a line could not be written; the event loop ends then.
    void checkRecord() const;

private:
    QString path;
    QFile file;
    QString problem;
};

/// How much an entry matters; a reporting level shows itself and those before it.
enum class LogLevel { Error, Info, Debug, Debug1, Debug2, Debug3, Debug4 };

/// Everything that happens to an identifier is one entry of the log that its first field names. No
/// call of the interface reads a log, so entries are announced and not kept. The debug log writes
/// them to a file: the second field chooses one of its parts, and a number in the last field the
/// instance (0 without one).
class Log
{
public:
    Log(const QStringList &logNames, const QStringList &debugLogNames, StateFiles &stateFiles,
        Announcer &logAnnouncer);

    /// Notes what happened to `id`: the entry is the identifier and the text.
    void record(LogLevel level, const QString &id, const QString &text);
    /// Refuses a log that is not there.
    void check(const QString &name) const;
    /// From now on each new entry of the log is announced, or none.
    void announce(const QString &name, bool isOn);

    /// Carries out one command of the debug log.
    void command(const QString &word, const QString &value);
    /// Whether the debug log is being written to the file of this name.
    bool writesTo(const QString &name) const { return file && fileName == name; }

private:
    void setInstances(const QString &value, bool isOne);
    void setReportingLevel(const QString &value);
    void saveTo(const QString &value);
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
