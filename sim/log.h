// SPDX-License-Identifier: MIT
// What the simulator tells: its signals, the logs of a catalogue, and the debug log with its file.
#pragma once

#include "sim/statefiles.h"

#include <QDBusConnection>
#include <QFile>
#include <QHash>
#include <QSet>
#include <QString>
#include <QStringList>
#include <QVariant>

#include <memory>

/// One signal of the interface.
struct Signal {
    QString member;
    QVariantList arguments;
};

/// Sends the signals of the interface.
class Announcer
{
public:
    Announcer(const QDBusConnection &bus, QString objectPath);

    /// Sends one signal; it is on its way, not delivered, when this returns.
    void send(const Signal &signal) const;
    /// Sends SigInfo.
    void info(const QString &text) const { send({ "SigInfo"_q, { text } }); }
    /// Sends SigError.
    void error(const QString &text) const { send({ "SigError"_q, { text } }); }

private:
    QDBusConnection connection;
    QString path;
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
    QHash<QString, QSet<uint>> debugLogs; ///< by name, the instances that are off
    LogLevel reportingLevel = LogLevel::Info;
    StateFiles &files;
    Announcer &announcer;
    QString fileName;
    std::unique_ptr<QFile> file; ///< null while nothing is saved
};
