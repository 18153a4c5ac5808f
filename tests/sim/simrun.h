// SPDX-License-Identifier: MIT
// Runs the built simulator for a test and listens to it, on the bus of the test.
#pragma once

#include "bus/proxies.h"

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

/// A literal as text; it is UTF-8.
inline QString text(const char *utf8)
{
    return QString::fromUtf8(utf8);
}

/// Lets programs that this process starts be ended by SIGINT, SIGTERM and SIGHUP. A suite that runs
/// in the background inherits SIGINT ignored, and its programs would, too.
void resetSignals();

/// Starts the simulator; true once it has printed `ready`. It reads `process`'s environment.
bool startSimulator(QProcess &process, const QStringList &arguments);

/// Ends the simulator by a signal number; true when it ended by itself with status 0.
bool endSimulator(QProcess &process, int signalNumber);

/// The answer as text: `<signature> <values>`, only the values' text for an empty signature, or
/// `<error name>: <sentence>`. Waits for it.
QString answerTo(const QDBusPendingCall &call);

/// A test function's own simulator, proxy and list of the signals heard.
class SimTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init();
    void cleanup();

protected:
    /// Starts the simulator with the test's state directory and more options.
    bool start(const QStringList &options = {});
    /// Ends the simulator, if it runs; false when it did not end well.
    bool stop();
    /// Waits for a signal, given as `<member> <arguments>`.
    bool hear(const QString &line);
    /// Everything heard up to now, also what is still on its way; then forgets it.
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
