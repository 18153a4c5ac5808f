// SPDX-License-Identifier: MIT
// Command handlers in this process: what they leave behind and what no command line can show.
#include "bus/proxies.h"
#include "tests/support/capture.h"
#include "tests/support/fakeservice.h"
#include "tests/support/openmovra.h"

#include <QElapsedTimer>
#include <QMetaMethod>
#include <QRegularExpression>
#include <QTest>

#include <memory>
#include <vector>

namespace
{

using Handler = int (Movra::*)(char **);

/// Calls a handler with arguments laid out as the system does it; returns the status.
int call(Movra &movra, Handler handler, QByteArrayList arguments)
{
    arguments = QByteArrayList { "movra", "com.varn.tul", "/", "WORD" } + arguments;
    QByteArray behind("BEHIND=the end");
    std::vector<char *> argv;
    for (QByteArray &word : arguments) {
        argv.push_back(word.data());
    }
    argv.insert(argv.end(), { nullptr, behind.data(), behind.data(), nullptr });
    return (movra.*handler)(argv.data());
}

/// A proxy that notes which of its signals are connected to.
class NotingProxy : public KorAppInterface
{
public:
    using KorAppInterface::KorAppInterface;
    QByteArrayList connected;

protected:
    void connectNotify(const QMetaMethod &signal) override
    {
        connected.append(signal.methodSignature());
    }
};

} // namespace

Q_DECLARE_METATYPE(Handler)

class tst_Handlers : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void initTestCase();
    void cleanup();
    void positionsAreTested_data();
    void positionsAreTested();
    void failedCallsAreRecorded_data();
    void failedCallsAreRecorded();
    void writesDoNotWait_data();
    void writesDoNotWait();
    void sigConnectsInOrder();
    void theLogBranch_data();
    void theLogBranch();

private:
    std::unique_ptr<FakeService> service;
};

void tst_Handlers::initTestCase()
{
    service = std::make_unique<FakeService>();
}

void tst_Handlers::cleanup()
{
    service->takeCalls();
}

void tst_Handlers::positionsAreTested_data()
{
    QTest::addColumn<Handler>("handler");
    QTest::addColumn<QByteArrayList>("arguments");
    QTest::addColumn<int>("status");
    const auto row = [](const char *name, Handler handler, const QByteArrayList &arguments,
                        int status) { QTest::newRow(name) << handler << arguments << status; };
    row("ACTION alone", &Movra::actionCommand, {}, 3);
    row("SERVERCMD alone", &Movra::serverCmdCommand, {}, 3);
    row("SERVERCMD with one word", &Movra::serverCmdCommand, { "SET_RES_NOTIFY_TIMER" }, 3);
    row("SERVERCMD with an unknown word", &Movra::serverCmdCommand, { "NO", "1" }, 2);
    row("GET alone", &Movra::getCommand, {}, 3);
    row("GET with an unknown word", &Movra::getCommand, { "ALL", "x" }, 2);
    row("SET alone", &Movra::setCommand, {}, 3);
    row("SET with one word", &Movra::setCommand, { "x" }, 3);
    row("SETARRAY alone", &Movra::setArrayCommand, {}, 3);
    row("SETARRAY with one word", &Movra::setArrayCommand, { "int32ARRAY" }, 3);
    row("SETARRAY with two words", &Movra::setArrayCommand, { "int32ARRAY", "1" }, 3);
    row("LIST alone", &Movra::listCommand, {}, 3);
    row("FILE alone", &Movra::fileCommand, {}, 3);
    row("FILE with one word", &Movra::fileCommand, { "SAVE" }, 3);
    row("NOTIFY alone", &Movra::notifyCommand, {}, 3);
    row("NOTIFY CONFIG", &Movra::notifyCommand, { "CONFIG" }, 2);
    row("NOTIFY RESULT", &Movra::notifyCommand, { "RESULT" }, 2);
    row("NOTIFY CONFIG ADD", &Movra::notifyCommand, { "CONFIG", "ADD" }, 3);
    row("DBG alone", &Movra::dbgCommand, {}, 3);
    row("DBG with one word", &Movra::dbgCommand, { "SET" }, 2);
}

void tst_Handlers::positionsAreTested()
{
    QFETCH(Handler, handler);
    QFETCH(QByteArrayList, arguments);
    QFETCH(int, status);

    // No connection: a handler that went further than it may would end the test.
    OpenMovra movra;
    int got = -1;
    QCOMPARE(captureOutput([&] { got = call(movra, handler, arguments); }), QByteArray());
    QCOMPARE(got, status);
}

void tst_Handlers::failedCallsAreRecorded_data()
{
    QTest::addColumn<Handler>("handler");
    QTest::addColumn<QByteArrayList>("arguments");
    QTest::addColumn<QString>("lastError"); ///< after a refusal, where "older" stood before
    const QString older = QStringLiteral("older");
    const auto row = [](const char *name, Handler handler, const QByteArrayList &arguments,
                        const QString &lastError) {
        QTest::newRow(name) << handler << arguments << lastError;
    };
    row("GET", &Movra::getCommand, { "x" }, {});
    row("GET VALUE", &Movra::getCommand, { "VALUE", "x" }, {});
    row("GET STATUS", &Movra::getCommand, { "STATUS", "x" }, {});
    row("GET VAL_STAT", &Movra::getCommand, { "VAL_STAT", "x" }, {});
    row("FILE SAVE", &Movra::fileCommand, { "SAVE", "x" }, {});
    row("FILE LOAD", &Movra::fileCommand, { "LOAD", "x" }, {});
    row("ACTION", &Movra::actionCommand, { "x" }, {});
    row("ACTION with a value", &Movra::actionCommand, { "x", "y" }, {});
    row("SERVERSTAT", &Movra::serverStatCommand, {}, {});
    row("SERVERCMD", &Movra::serverCmdCommand, { "SET_RES_NOTIFY_TIMER", "1" }, {});
    row("DBG", &Movra::dbgCommand, { "SET", "x" }, {});
    row("DBG GET_IDS", &Movra::dbgCommand, { "GET_IDS" }, {});
    row("LIST CONFIGS records nothing", &Movra::listCommand, { "CONFIGS" }, older);
    row("LIST RESULTS records nothing", &Movra::listCommand, { "RESULTS" }, older);
    row("LIST ACTIONS records nothing", &Movra::listCommand, { "ACTIONS" }, older);
    row("LIST LOGS records nothing", &Movra::listCommand, { "LOGS" }, older);
    row("SET does not learn of it", &Movra::setCommand, { "x", "y" }, older);
}

void tst_Handlers::failedCallsAreRecorded()
{
    QFETCH(Handler, handler);
    QFETCH(QByteArrayList, arguments);
    QFETCH(QString, lastError);

    for (const char *member :
         { "GetValue", "GetStatus", "GetValueStatus", "SaveConfig", "LoadConfig", "DoAction",
           "DBusServerStatus", "DBusServerCmd", "DbgLogCmd", "DbgLogGetIds", "ListConfigIds",
           "ListResultIds", "ListActionIds", "LogGetIds", "SetValue" }) {
        service->refuse(member, "varn.pim.Error.Refused", "the reply's own text");
    }
    OpenMovra movra;
    QVERIFY(movra.connectToService("com.varn.tul", "/"));
    movra.lastErrorText = QStringLiteral("older");
    captureOutput([&] { call(movra, handler, arguments); });
    QCOMPARE(movra.lastErrorText, lastError);
    // Also where nobody waits: the next test must not meet this one's call.
    QCOMPARE(service->waitForCalls(1).size(), 1);
}

void tst_Handlers::writesDoNotWait_data()
{
    QTest::addColumn<Handler>("handler");
    QTest::addColumn<QByteArrayList>("arguments");
    QTest::newRow("SET") << static_cast<Handler>(&Movra::setCommand) << QByteArrayList { "x", "y" };
    QTest::newRow("SETARRAY") << static_cast<Handler>(&Movra::setArrayCommand)
                              << QByteArrayList { "int32ARRAY", "1", "5" };
}

void tst_Handlers::writesDoNotWait()
{
    QFETCH(Handler, handler);
    QFETCH(QByteArrayList, arguments);

    service->ignore("SetValue");
    OpenMovra movra;
    QVERIFY(movra.connectToService("com.varn.tul", "/"));
    QElapsedTimer timer;
    timer.start();
    QCOMPARE(call(movra, handler, arguments), 0);
    QVERIFY2(timer.elapsed() < 10000, "a wait would have ended after Qt D-Bus's 25 s");
    QCOMPARE(service->waitForCalls(1).size(), 1);
}

void tst_Handlers::sigConnectsInOrder()
{
    OpenMovra movra;
    QVERIFY(movra.connectToService("com.varn.tul", "/"));
    auto *proxy = new NotingProxy(QStringLiteral("com.varn.tul"), QStringLiteral("/"),
                                  QDBusConnection::sessionBus(), &movra);
    movra.iface = proxy;
    QTest::ignoreMessage(
        QtWarningMsg,
        QRegularExpression(
            QStringLiteral("No such signal KorAppInterface::SigLogNotification\\(QStringList\\)")));
    QCOMPARE(call(movra, &Movra::sigCommand, {}), 0);
    const QByteArrayList expected {
        "SigAlarm(QString)",
        "SigDBusServerClosing(QString)",
        "SigError(QString)",
        "SigInfo(QString)",
        "SigTestComplete(QString)",
        "SigUpdate(QString)",
        "SigTestCompleteWithData(QString,std::vector<double>)",
        "SigTestCompleteWithData(QString,std::vector<uint32_t>)",
    };
    QCOMPARE(proxy->connected, expected);
}

void tst_Handlers::theLogBranch_data()
{
    QTest::addColumn<QByteArrayList>("arguments");
    QTest::addColumn<QByteArrayList>("wire");
    QTest::addColumn<int>("status");
    const auto row = [](const char *name, const QByteArrayList &arguments,
                        const QByteArrayList &wire,
                        int status) { QTest::newRow(name) << arguments << wire << status; };
    row("START", { "LOG", "START", "\xe9" }, { "LogStartNotify s ('é',)" }, 0);
    row("STOP", { "LOG", "STOP", "5" }, { "LogStopNotify s ('5',)" }, 0);
    row("CLEAR", { "LOG", "CLEAR", "5" }, { "LogClear s ('5',)" }, 0);
    row("an unknown action", { "LOG", "start", "5" }, {}, 3);
    row("no id", { "LOG", "START" }, {}, 3);
    row("no action", { "LOG" }, {}, 3);
}

void tst_Handlers::theLogBranch()
{
    QFETCH(QByteArrayList, arguments);
    QFETCH(QByteArrayList, wire);
    QFETCH(int, status);

    OpenMovra movra;
    QVERIFY(movra.connectToService("com.varn.tul", "/"));
    // The branch itself works; the command never takes it.
    QCOMPARE(call(movra, static_cast<Handler>(&OpenMovra::notifyLog), arguments), status);
    QCOMPARE(service->waitForCalls(wire.size()), wire);
    QCOMPARE(call(movra, &Movra::notifyCommand, arguments), 2);
    QCOMPARE(service->takeCalls(), QByteArrayList());
}

QTEST_GUILESS_MAIN(tst_Handlers)
#include "tst_handlers.moc"
