// SPDX-License-Identifier: MIT
// The client object in this process: its meta-object, its connection, its slots and its lifetime.
#include "app/movra.h"
#include "bus/proxies.h"
#include "tests/support/capture.h"
#include "tests/support/fakeservice.h"

#include <QCoreApplication>
#include <QMetaMethod>
#include <QPointer>
#include <QTest>
#include <QTimer>

#include <functional>
#include <memory>

namespace
{

/// The client object with its fields in sight.
class OpenMovra : public Movra
{
public:
    OpenMovra()
        : Movra(nullptr)
    {
    }
    using Movra::iface;
    using Movra::lastErrorText;
};

using Invocation = std::function<bool(Movra &)>;

const char *const slotSignatures[] = {
    "generateDbgLogCmd(std::string,std::string)",
    "callDbgLogGetIds()",
    "quit()",
    "sigAlarmSlot(QString)",
    "sigDBusServerClosingSlot(QString)",
    "sigLogChangedNotificationSlot(QStringList)",
    "sigErrorSlot(QString)",
    "sigInfoSlot(QString)",
    "sigTestCompleteSlot(QString)",
    "sigUpdateSlot(QString)",
    "sigTestCompleteWithDataSlot(QString,std::vector<double>)",
    "sigTestCompleteWithDataSlot(QString,std::vector<uint32_t>)",
    "notifyConfigStart()",
    "notifyConfigStop()",
    "notifyConfigClear()",
    "notifyResultStart()",
    "notifyResultStop()",
    "notifyResultClear()",
    "notifyAdd(QString)",
    "notifyDelete(QString)",
    "notifyLogStart(QString)",
    "notifyLogStop(QString)",
    "notifyLogClear(QString)",
};

/// Calls a slot by its signature text, through the meta-object.
template <typename... Args> Invocation invoke(const char *signature, Args... args)
{
    return [=](Movra &movra) mutable {
        void *arguments[] = { nullptr, &args... };
        const int index = Movra::staticMetaObject.indexOfSlot(signature);
        return index >= 0 && movra.qt_metacall(QMetaObject::InvokeMetaMethod, index, arguments) < 0;
    };
}

} // namespace

using Handler = int (Movra::*)(char **);

Q_DECLARE_METATYPE(Invocation)
Q_DECLARE_METATYPE(Handler)

class tst_Client : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void initTestCase();
    void cleanup();

    void metaObject();
    void slotsHaveNoRegisteredArgumentTypes();
    void castsByName();
    void aNewClientTouchesNoBus();

    void connects();
    void failedConnections_data();
    void failedConnections();
    void destroyingTheClientLeavesTheProxyAlive();
    void quitEndsTheEventLoop();

    void slotsSendOrPrint_data();
    void slotsSendOrPrint();
    void notifySlotsWithoutAProxyDoNothing_data();
    void notifySlotsWithoutAProxyDoNothing();
    void failedDebugCommands_data();
    void failedDebugCommands();
    void theProxysErrorIsShownNotTheReplys();
    void handlersTestTheirOwnPositions_data();
    void handlersTestTheirOwnPositions();

private:
    std::unique_ptr<FakeService> service;
};

void tst_Client::initTestCase()
{
    service = std::make_unique<FakeService>();
}

void tst_Client::cleanup()
{
    service->takeCalls();
}

void tst_Client::metaObject()
{
    const QMetaObject &meta = Movra::staticMetaObject;
    QCOMPARE(meta.className(), "Movra");
    QCOMPARE(meta.superClass()->className(), "QObject");
    QCOMPARE(meta.propertyCount(), meta.propertyOffset());
    QCOMPARE(meta.classInfoCount(), meta.classInfoOffset());
    QByteArrayList signatures;
    for (int i = meta.methodOffset(); i < meta.methodCount(); ++i) {
        QCOMPARE(meta.method(i).methodType(), QMetaMethod::Slot);
        QCOMPARE(meta.method(i).typeName(), "void");
        signatures.append(meta.method(i).methodSignature());
    }
    QByteArrayList expected;
    for (const char *signature : slotSignatures) {
        expected.append(signature);
    }
    QCOMPARE(signatures.size(), 23);
    QCOMPARE(signatures, expected);
}

void tst_Client::slotsHaveNoRegisteredArgumentTypes()
{
    OpenMovra movra;
    for (int index = 0; index < 23; ++index) {
        for (int argument = 0; argument < 3; ++argument) {
            int type = -2;
            void *arguments[] = { &type, &argument };
            const int left =
                movra.qt_metacall(QMetaObject::RegisterMethodArgumentMetaType,
                                  Movra::staticMetaObject.methodOffset() + index, arguments);
            QVERIFY(left < 0);
            QCOMPARE(type, -1);
        }
    }
}

void tst_Client::castsByName()
{
    OpenMovra movra;
    QCOMPARE(movra.qt_metacast("Movra"), static_cast<void *>(static_cast<Movra *>(&movra)));
    QCOMPARE(movra.qt_metacast("QObject"), static_cast<void *>(static_cast<QObject *>(&movra)));
    QVERIFY(movra.qt_metacast("KorAppInterface") == nullptr);
    QVERIFY(movra.qt_metacast(nullptr) == nullptr);
}

void tst_Client::aNewClientTouchesNoBus()
{
    QObject parent;
    auto *movra = new Movra(&parent);
    QCOMPARE(movra->parent(), &parent);
    OpenMovra open;
    QVERIFY(open.iface == nullptr);
    QCOMPARE(open.lastErrorText, QString());
}

void tst_Client::connects()
{
    OpenMovra movra;
    const QByteArray out =
        captureOutput([&] { QVERIFY(movra.connectToService("com.varn.tul", "/")); });
    QCOMPARE(out, QByteArray());
    QVERIFY(movra.iface->isValid());
    QCOMPARE(movra.iface->interface(), QStringLiteral("varn.pim"));
    QVERIFY(movra.iface->parent() == nullptr);
    QCOMPARE(movra.lastErrorText, QString());
    QCOMPARE(service->takeCalls(), QByteArrayList());
}

void tst_Client::failedConnections_data()
{
    QTest::addColumn<QByteArray>("name");
    QTest::addColumn<QByteArray>("path");
    QTest::addColumn<QByteArray>("out");
    QTest::addColumn<QString>("lastError");
    QTest::newRow("a name that nobody owns gives an empty text")
        << QByteArray("com.varn.nobody") << QByteArray("/")
        << QByteArray("Client DBus Interface not valid, error: \n") << QString();
    QTest::newRow("a malformed path")
        << QByteArray("com.varn.tul") << QByteArray("no path")
        << QByteArray("Client DBus Interface not valid, error: Invalid object path: no path\n")
        << QStringLiteral("Invalid object path: no path");
    QTest::newRow("bytes above 0x7f are Latin-1")
        << QByteArray("a.\xc3\xa9\xe9") << QByteArray("/")
        << QByteArray(
               "Client DBus Interface not valid, error: Invalid service name: a.\xc3\xa9\xe9\n")
        << QStringLiteral("Invalid service name: a.\u00c3\u00a9\u00e9");
}

void tst_Client::failedConnections()
{
    QFETCH(QByteArray, name);
    QFETCH(QByteArray, path);
    QFETCH(QByteArray, out);
    QFETCH(QString, lastError);

    OpenMovra movra;
    bool connected = true;
    const QByteArray printed = captureOutput(
        [&] { connected = movra.connectToService(name.toStdString(), path.toStdString()); });
    QVERIFY(!connected);
    QCOMPARE(printed, out);
    QVERIFY(movra.iface != nullptr);
    QVERIFY(!movra.iface->isValid());
    QCOMPARE(movra.lastErrorText, lastError);
}

void tst_Client::destroyingTheClientLeavesTheProxyAlive()
{
    auto movra = std::make_unique<OpenMovra>();
    QVERIFY(movra->connectToService("com.varn.tul", "/"));
    const QPointer<KorAppInterface> proxy = movra->iface;
    movra.reset();
    QVERIFY(!proxy.isNull());
    QVERIFY(proxy->isValid());
}

void tst_Client::quitEndsTheEventLoop()
{
    OpenMovra movra;
    QTimer::singleShot(0, &movra, SLOT(quit()));
    QTimer::singleShot(10000, [] { QCoreApplication::exit(1); });
    QCOMPARE(QCoreApplication::exec(), 0);
}

void tst_Client::slotsSendOrPrint_data()
{
    QTest::addColumn<Invocation>("call");
    QTest::addColumn<QByteArrayList>("wire");
    QTest::addColumn<QByteArray>("out");

    const auto sends = [](const char *name, const Invocation &call, const char *wire) {
        QTest::newRow(name) << call << QByteArrayList { wire } << QByteArray();
    };
    const auto prints = [](const char *name, const Invocation &call, const char *out) {
        QTest::newRow(name) << call << QByteArrayList() << QByteArray(out);
    };
    using Doubles = std::vector<double>;
    using Unsigned = std::vector<uint32_t>;
    const QString text = QStringLiteral("abc");
    const QString odd = QStringLiteral("\u00e9 \u20ac %s%n");

    sends("a debug command travels as typed, in Latin-1",
          invoke(slotSignatures[0], std::string("NOSUCH"), std::string("LOG_XDSL, 0, \xe9")),
          "DbgLogCmd ss ('NOSUCH', 'LOG_XDSL, 0, \xc3\xa9')");
    QTest::newRow("debug ids are printed one a line")
        << invoke(slotSignatures[1]) << QByteArrayList { "DbgLogGetIds" }
        << QByteArray("LOG_XDSL\nLOG \xe9\n?\n");

    prints("the alarm line says alarmSlot", invoke(slotSignatures[3], text),
           "===Client alarmSlot  msg=abc\n");
    prints("an empty alarm", invoke(slotSignatures[3], QString()), "===Client alarmSlot  msg=\n");
    prints("text is printed in Latin-1", invoke(slotSignatures[3], odd),
           "===Client alarmSlot  msg=\xe9 ? %s%n\n");
    prints("closing", invoke(slotSignatures[4], text),
           "===Client sigDBusServerClosingSlot  msg=abc\n");
    prints("log changes are printed one a line",
           invoke(slotSignatures[5], QStringList { text, odd }),
           "===Client sigLogChangedNotificationSlot  value=abc\n"
           "===Client sigLogChangedNotificationSlot  value=\xe9 ? %s%n\n");
    prints("no log changes print nothing", invoke(slotSignatures[5], QStringList()), "");
    prints("error", invoke(slotSignatures[6], odd), "===Client sigErrorSlot  msg=\xe9 ? %s%n\n");
    prints("info", invoke(slotSignatures[7], text), "===Client sigInfoSlot  msg=abc\n");
    prints("test complete", invoke(slotSignatures[8], text),
           "===Client sigTestCompleteSlot  msg=abc\n");
    prints("update", invoke(slotSignatures[9], text), "===Client sigUpdateSlot  msg=abc\n");

    prints("no doubles", invoke(slotSignatures[10], QStringLiteral("done"), Doubles()),
           "sigTestCompleteWithDataSlot double msg=done size=0\n");
    prints("one double", invoke(slotSignatures[10], odd, Doubles { 0.1 }),
           "sigTestCompleteWithDataSlot double msg=\xe9 ? %s%n size=1 data[0]=0.1\n");
    prints("only the first double is printed",
           invoke(slotSignatures[10], QStringLiteral("done"), Doubles { 1.5, 2, 3 }),
           "sigTestCompleteWithDataSlot double msg=done size=3 data[0]=1.5\n");
    prints("doubles have six significant digits",
           invoke(slotSignatures[10], text, Doubles { 1234567 }),
           "sigTestCompleteWithDataSlot double msg=abc size=1 data[0]=1.23457e+06\n");
    prints("no unsigned numbers", invoke(slotSignatures[11], QString(), Unsigned()),
           "sigTestCompleteWithDataSlot uint32_t msg= size=0\n");
    prints("the greatest unsigned number",
           invoke(slotSignatures[11], QStringLiteral("done"), Unsigned { 4294967295U, 1 }),
           "sigTestCompleteWithDataSlot uint32_t msg=done size=2 data[0]=4294967295\n");

    sends("config start", invoke(slotSignatures[12]), "StartConfigNotify");
    sends("config stop", invoke(slotSignatures[13]), "StopConfigNotify");
    sends("config clear", invoke(slotSignatures[14]), "ClearConfigNotifyList");
    sends("result start", invoke(slotSignatures[15]), "StartResultNotify");
    sends("result stop", invoke(slotSignatures[16]), "StopResultNotify");
    sends("result clear", invoke(slotSignatures[17]), "ClearResultNotifyList");
    sends("an added id travels as a list", invoke(slotSignatures[18], text),
          "AddToNotifyList as (['abc'],)");
    sends("a deleted id travels as a list", invoke(slotSignatures[19], text),
          "DeleteFromNotifyList as (['abc'],)");
    sends("log start", invoke(slotSignatures[20], text), "LogStartNotify s ('abc',)");
    sends("log stop", invoke(slotSignatures[21], text), "LogStopNotify s ('abc',)");
    sends("log clear", invoke(slotSignatures[22], QString()), "LogClear s ('',)");
}

void tst_Client::slotsSendOrPrint()
{
    QFETCH(Invocation, call);
    QFETCH(QByteArrayList, wire);
    QFETCH(QByteArray, out);

    service->answer("DbgLogCmd", "()");
    service->answer("DbgLogGetIds", "(['LOG_XDSL', 'LOG é', '€'],)");
    OpenMovra movra;
    QVERIFY(movra.connectToService("com.varn.tul", "/"));
    const QByteArray printed = captureOutput([&] { QVERIFY(call(movra)); });
    QCOMPARE(printed, out);
    QCOMPARE(service->waitForCalls(wire.size()), wire);
}

void tst_Client::notifySlotsWithoutAProxyDoNothing_data()
{
    QTest::addColumn<int>("slot");
    for (int slot = 12; slot < 23; ++slot) {
        QTest::newRow(slotSignatures[slot]) << slot;
    }
}

void tst_Client::notifySlotsWithoutAProxyDoNothing()
{
    QFETCH(int, slot);
    OpenMovra movra;
    const Invocation call = slot < 18 ? invoke(slotSignatures[slot])
                                      : invoke(slotSignatures[slot], QStringLiteral("x"));
    const QByteArray printed = captureOutput([&] { QVERIFY(call(movra)); });
    QCOMPARE(printed, QByteArray());
    QCOMPARE(service->takeCalls(), QByteArrayList());
}

void tst_Client::failedDebugCommands_data()
{
    QTest::addColumn<Invocation>("call");
    QTest::addColumn<QByteArray>("out");
    QTest::newRow("three blanks before ERROR and five after")
        << invoke(slotSignatures[0], std::string("NO \xe9 %s"), std::string("x"))
        << QByteArray("DBG NO \xe9 %s   ERROR     err=\n");
    QTest::newRow("two blanks before ERROR and two after")
        << invoke(slotSignatures[1]) << QByteArray("DBG GET_IDS  ERROR  err=\n");
}

void tst_Client::failedDebugCommands()
{
    QFETCH(Invocation, call);
    QFETCH(QByteArray, out);

    service->refuse("DbgLogCmd", "varn.pim.Error.Refused", "the reply's own text");
    service->refuse("DbgLogGetIds", "varn.pim.Error.Refused", "the reply's own text");
    OpenMovra movra;
    QVERIFY(movra.connectToService("com.varn.tul", "/"));
    movra.lastErrorText = QStringLiteral("older");
    const QByteArray printed = captureOutput([&] { QVERIFY(call(movra)); });
    QCOMPARE(printed, out);
    QCOMPARE(movra.lastErrorText, QString());
}

void tst_Client::theProxysErrorIsShownNotTheReplys()
{
    OpenMovra movra;
    QVERIFY(movra.connectToService("com.varn.tul", ""));
    movra.lastErrorText = QStringLiteral("older");
    char word[] = "movra";
    char *argv[] = { word, word, word, word, nullptr, nullptr };
    const QByteArray printed = captureOutput([&] { QCOMPARE(movra.serverStatCommand(argv), 0); });
    QCOMPARE(printed, QByteArray("Reply Not Valid     err=Object path cannot be empty\n"));
    QCOMPARE(movra.lastErrorText, QStringLiteral("Object path cannot be empty"));
}

void tst_Client::handlersTestTheirOwnPositions_data()
{
    QTest::addColumn<Handler>("handler");
    QTest::addColumn<QByteArrayList>("arguments");
    QTest::addColumn<int>("status");
    const auto row = [](const char *name, Handler handler, const QByteArrayList &arguments,
                        int status) { QTest::newRow(name) << handler << arguments << status; };
    row("ACTION without an id", &Movra::actionCommand, {}, 3);
    row("SERVERCMD alone", &Movra::serverCmdCommand, {}, 3);
    row("SERVERCMD without a timeout", &Movra::serverCmdCommand, { "SET_RES_NOTIFY_TIMER" }, 3);
    row("SERVERCMD with an unknown word and no timeout", &Movra::serverCmdCommand, { "NO" }, 3);
    row("SERVERCMD with an unknown word", &Movra::serverCmdCommand, { "NO", "1" }, 2);
}

void tst_Client::handlersTestTheirOwnPositions()
{
    QFETCH(Handler, handler);
    QFETCH(QByteArrayList, arguments);
    QFETCH(int, status);

    QByteArrayList words { "movra", "com.varn.tul", "/", "WORD" };
    words += arguments;
    QByteArray behind("BEHIND=the end");
    std::vector<char *> argv;
    for (QByteArray &word : words) {
        argv.push_back(word.data());
    }
    argv.insert(argv.end(), { nullptr, behind.data(), behind.data(), nullptr });

    // No connection: a handler that went further than it may would end the test.
    OpenMovra movra;
    int got = -1;
    const QByteArray printed = captureOutput([&] { got = (movra.*handler)(argv.data()); });
    QCOMPARE(got, status);
    QCOMPARE(printed, QByteArray());
}

QTEST_GUILESS_MAIN(tst_Client)
#include "tst_client.moc"
