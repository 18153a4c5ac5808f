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
/// Connections use the signature text of slots, and moc numbers slots in the order of declaration:
/// keep the text and the order.
class Movra : public QObject
{
    Q_OBJECT

public:
    /// Does not use the bus. `iface` is null until connectToService() has run.
    explicit Movra(QObject *parent);
    ~Movra() override;

    /// Registers the bus types, opens the session bus and builds the proxy. Returns false if the
    /// proxy is not valid, prints the reason and stores it in `lastErrorText`; `iface` is set. Ends
    /// the process if the bus ends or does not respond.
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

    /// Prints a packed array of numbers or booleans, each element on a line. For other arrays it
    /// prints nothing, for other packed values one error line. The kind word in `id` decides only
    /// the signedness of integers of its width.
    void printArgumentValue(const QString &id, const QDBusArgument &value);

public Q_SLOTS:
    // DBG: wait for the reply; print the ids, or a line on failure.
    void generateDbgLogCmd(std::string cmd, std::string value);
    void callDbgLogGetIds();

    /// Ends the event loop.
    void quit();

    // SIG: print a signal of the service. No signal calls the slot for changed logs.
    void sigAlarmSlot(QString msg);
    void sigDBusServerClosingSlot(QString msg);
    void sigLogChangedNotificationSlot(QStringList changedLogMsgList);
    void sigErrorSlot(QString errorMsg);
    void sigInfoSlot(QString msg);
    void sigTestCompleteSlot(QString msg);
    void sigUpdateSlot(QString msg);
    void sigTestCompleteWithDataSlot(QString msg, std::vector<double> data);
    void sigTestCompleteWithDataSlot(QString msg, std::vector<uint32_t> data);

    // NOTIFY: each sends one call and does not wait.
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

protected: // not private, so that tests can call what no command calls
    /// The service proxy. It has no parent and is never deleted on purpose.
    KorAppInterface *iface = nullptr;
    QString lastErrorText; ///< text of the last bus error that was recorded

    /// NOTIFY: runs the action word on a log. No command calls this.
    int notifyLog(char **argv);

private:
    /// Records the message of the proxy's last error and returns its Latin-1 form. The error of a
    /// reply is ignored on purpose, so the text is usually empty.
    QByteArray recordLastError();
    /// Records the last error and prints it in the common line of FILE, ACTION, SERVERSTAT and
    /// SERVERCMD.
    void reportFailedReply();

    // GET: each makes one call and waits. `id` is the word of the command line.
    void getValue(const QString &id);
    void getStatus(const QString &id);
    void getValueStatus(const QString &id);
    void printValue(const QString &id, const QVariant &value);
    /// Records the last error and prints it in GET's own line.
    void reportFailedGet();

    /// NOTIFY: runs the action word with the slots of the group.
    int notifyItems(char **argv, void (Movra::*start)(), void (Movra::*stop)(),
                    void (Movra::*clear)());

    /// SET and SETARRAY: sends the value for the id and does not wait.
    void sendValue(const char *id, const QVariant &value);
};
