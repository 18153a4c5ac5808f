// SPDX-License-Identifier: MIT
// The client object: connection, command handlers, and the slots that receive the service's
// signals.
#pragma once

#include <QByteArray>
#include <QObject>
#include <QString>
#include <QStringList>
#include <QVariant>

#include <cstdint>
#include <string>
#include <vector>

class KorAppInterface;
class QDBusArgument;

/// The program's one client object. It is connected once, then runs one command.
///
/// Slots are connected to by their signature text, and moc numbers them in the order written: keep
/// the text and the order.
class Movra : public QObject
{
    Q_OBJECT

public:
    /// Touches no bus; `iface` is null until connectToService() has run.
    explicit Movra(QObject *parent);
    ~Movra() override;

    /// Registers the bus types, opens the session bus and builds the proxy. False if the proxy is
    /// not valid: the reason is then printed and kept in `lastErrorText`, and `iface` stays set.
    bool connectToService(const std::string &service, const std::string &path);

    // Command handlers: each takes the whole argument vector and returns the exit status.
    int dbgCommand(char **argv);
    int sigCommand(char **argv);
    int notifyCommand(char **argv);
    int setCommand(char **argv);
    int setArrayCommand(char **argv);
    int getCommand(char **argv);
    int listCommand(char **argv);
    int fileCommand(char **argv);
    int actionCommand(char **argv);
    int serverStatCommand(char **argv);
    int serverCmdCommand(char **argv);

    /// Prints the elements of an array that arrived packed, one a line; for anything else that is
    /// packed, one error line. `id`, as it was typed, says which kind of array to expect.
    void printArgumentValue(const QString &id, const QDBusArgument &value);

public Q_SLOTS:
    // DBG: wait for the reply; print the ids, or a line on failure.
    void generateDbgLogCmd(std::string cmd, std::string value);
    void callDbgLogGetIds();

    /// Ends the event loop.
    void quit();

    // SIG: print what a signal of the service carries. No signal leads to the one for changed logs.
    void sigAlarmSlot(QString msg);
    void sigDBusServerClosingSlot(QString msg);
    void sigLogChangedNotificationSlot(QStringList changedLogMsgList);
    void sigErrorSlot(QString errorMsg);
    void sigInfoSlot(QString msg);
    void sigTestCompleteSlot(QString msg);
    void sigUpdateSlot(QString msg);
    void sigTestCompleteWithDataSlot(QString msg, std::vector<double> data);
    void sigTestCompleteWithDataSlot(QString msg, std::vector<uint32_t> data);

    // NOTIFY: send one call each, and wait for nothing.
    void notifyConfigStart();
    void notifyConfigStop();
    void notifyConfigClear();
    void notifyResultStart();
    void notifyResultStop();
    void notifyResultClear();
    void notifyAdd(QString id);
    void notifyDelete(QString id);
    void notifyLogStart(QString id);
    void notifyLogStop(QString id);
    void notifyLogClear(QString id);

protected: // not private, so that tests can see and call what no command shows
    /// The service proxy. It has no parent and is never deleted: it lives until the process ends.
    KorAppInterface *iface = nullptr;
    QString lastErrorText; ///< text of the last bus error that was recorded

    /// NOTIFY: runs the action word on a log; no command leads here.
    int notifyLog(char **argv);

private:
    /// Records the message of the proxy's last error and returns its Latin-1 form. A reply's own
    /// error is left alone on purpose, so the text is empty or stale where the proxy itself has no
    /// error.
    QByteArray recordLastError();
    /// Records the last error and prints it in the line that FILE, ACTION, SERVERSTAT and SERVERCMD
    /// share.
    void reportFailedReply();

    // GET: one call each, waited for; `id` is what was typed.
    void getValue(const QString &id);
    void getStatus(const QString &id);
    void getValueStatus(const QString &id);
    void printValue(const QString &id, const QVariant &value);
    /// Records the last error and prints it in GET's own line.
    void reportFailedGet();

    /// NOTIFY: runs the action word with the slots of the group that was typed.
    int notifyItems(char **argv, void (Movra::*start)(), void (Movra::*stop)(),
                    void (Movra::*clear)());

    /// SET and SETARRAY: sends the value for the id as it was typed, and waits for nothing.
    void sendValue(const char *id, const QVariant &value);
};
