// SPDX-License-Identifier: MIT
// Runs the built simulator for a test and receives its signals, on the bus of the test.
#pragma once

#include "bus/proxies.h"
#include "tests/support/patience.h"

#include <QByteArray>
#include <QDBusMessage>
#include <QDBusPendingCall>
#include <QObject>
#include <QProcess>
#include <QProcessEnvironment>
#include <QString>
#include <QStringList>
#include <QTemporaryDir>
#include <QVariant>

#include <memory>

/// A UTF-8 literal as text.
inline QString text(const char *utf8)
{
    return QString::fromUtf8(utf8);
}

/// Gives SIGINT, SIGTERM and SIGHUP their default effect in programs that this process starts. A
/// process in the background of a shell ignores SIGINT, and its programs would inherit this.
void resetSignals();

/// Starts the simulator; true once it has printed `ready`. It reads `process`'s environment.
bool startSimulator(QProcess &process, const QStringList &arguments);

/// Ends the simulator by a signal number; true if it exits with status 0.
bool endSimulator(QProcess &process, int signalNumber);

/// The answer as text: `<signature> <values>`, only the values' text for an empty signature, or
/// `<error name>: <sentence>`. Waits for it.
QString answerTo(const QDBusPendingCall &call);

/// A simulator, a proxy and the list of received signals for each test function.
class SimTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init();
    void cleanup();

protected:
    /// Starts the simulator with the test's state directory and more options.
    bool start(const QStringList &options = {});
    /// Ends the simulator if it runs; false if it did not exit with status 0 or printed an error.
    bool stop();
    /// Waits for a signal, given as `<member> <arguments>`.
    bool hear(const QString &line);
    /// Takes all signals that the simulator has sent up to now.
    QStringList takeHeard();
    /// The file of this name in the state directory.
    QString pathOf(const QString &name) const;
    QByteArray contentsOf(const QString &name) const;
    bool writeFile(const QString &name, const QByteArray &bytes) const;

    std::unique_ptr<QTemporaryDir> state;
    std::unique_ptr<QProcess> simulator;
    std::unique_ptr<KorAppInterface> service;
    QStringList heard;
};
