// SPDX-License-Identifier: MIT
// Each slot of the client object, called by its signature text: what it sends and what it prints.
#include "bus/proxies.h"
#include "tests/support/capture.h"
#include "tests/support/fakeservice.h"
#include "tests/support/openmovra.h"

#include <QElapsedTimer>
#include <QTest>

#include <functional>
#include <memory>

namespace
{

using Invocation = std::function<bool(Movra &)>;

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

Q_DECLARE_METATYPE(Invocation)

class tst_Slots : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void initTestCase();
    void cleanup();

    void slotsSendOrPrint_data();
    void slotsSendOrPrint();
    void noDebugIdsPrintNothing();
    void notifySlotsDoNotWait_data();
    void notifySlotsDoNotWait();
    void notifySlotsWithoutAProxyDoNothing_data() { notifySlotsDoNotWait_data(); }
    void notifySlotsWithoutAProxyDoNothing();
    void failedDebugCommands_data();
    void failedDebugCommands();

private:
    std::unique_ptr<FakeService> service;
};

void tst_Slots::initTestCase()
{
    service = std::make_unique<FakeService>();
}

void tst_Slots::cleanup()
{
    service->takeCalls();
}

void tst_Slots::slotsSendOrPrint_data()
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
          invoke("generateDbgLogCmd(std::string,std::string)", std::string("NO\xe9"),
                 std::string("LOG_XDSL, 0, \xe9")),
          "DbgLogCmd ss ('NO\xc3\xa9', 'LOG_XDSL, 0, \xc3\xa9')");
    QTest::newRow("debug ids are printed one a line")
        << invoke("callDbgLogGetIds()") << QByteArrayList { "DbgLogGetIds" }
        << QByteArray("LOG_XDSL\nLOG \xe9\n?\n");

    prints("the alarm line says alarmSlot", invoke("sigAlarmSlot(QString)", text),
           "===Client alarmSlot  msg=abc\n");
    prints("an empty alarm", invoke("sigAlarmSlot(QString)", QString()),
           "===Client alarmSlot  msg=\n");
    prints("text is printed in Latin-1", invoke("sigAlarmSlot(QString)", odd),
           "===Client alarmSlot  msg=\xe9 ? %s%n\n");
    prints("closing", invoke("sigDBusServerClosingSlot(QString)", odd),
           "===Client sigDBusServerClosingSlot  msg=\xe9 ? %s%n\n");
    prints("log changes are printed one a line",
           invoke("sigLogChangedNotificationSlot(QStringList)", QStringList { text, odd }),
           "===Client sigLogChangedNotificationSlot  value=abc\n"
           "===Client sigLogChangedNotificationSlot  value=\xe9 ? %s%n\n");
    prints("no log changes print nothing",
           invoke("sigLogChangedNotificationSlot(QStringList)", QStringList()), "");
    prints("error", invoke("sigErrorSlot(QString)", odd),
           "===Client sigErrorSlot  msg=\xe9 ? %s%n\n");
    prints("info", invoke("sigInfoSlot(QString)", odd), "===Client sigInfoSlot  msg=\xe9 ? %s%n\n");
    prints("test complete", invoke("sigTestCompleteSlot(QString)", odd),
           "===Client sigTestCompleteSlot  msg=\xe9 ? %s%n\n");
    prints("update", invoke("sigUpdateSlot(QString)", odd),
           "===Client sigUpdateSlot  msg=\xe9 ? %s%n\n");

    prints("no doubles",
           invoke("sigTestCompleteWithDataSlot(QString,std::vector<double>)",
                  QStringLiteral("done"), Doubles()),
           "sigTestCompleteWithDataSlot double msg=done size=0\n");
    prints("one double",
           invoke("sigTestCompleteWithDataSlot(QString,std::vector<double>)", odd, Doubles { 0.1 }),
           "sigTestCompleteWithDataSlot double msg=\xe9 ? %s%n size=1 data[0]=0.1\n");
    prints("only the first double is printed",
           invoke("sigTestCompleteWithDataSlot(QString,std::vector<double>)",
                  QStringLiteral("done"), Doubles { 1.5, 2, 3 }),
           "sigTestCompleteWithDataSlot double msg=done size=3 data[0]=1.5\n");
    prints("doubles have six significant digits",
           invoke("sigTestCompleteWithDataSlot(QString,std::vector<double>)", text,
                  Doubles { 1234567 }),
           "sigTestCompleteWithDataSlot double msg=abc size=1 data[0]=1.23457e+06\n");
    prints(
        "no unsigned numbers",
        invoke("sigTestCompleteWithDataSlot(QString,std::vector<uint32_t>)", QString(), Unsigned()),
        "sigTestCompleteWithDataSlot uint32_t msg= size=0\n");
    prints("the greatest unsigned number",
           invoke("sigTestCompleteWithDataSlot(QString,std::vector<uint32_t>)",
                  QStringLiteral("done"), Unsigned { 4294967295U, 1 }),
           "sigTestCompleteWithDataSlot uint32_t msg=done size=2 data[0]=4294967295\n");

    sends("config start", invoke("notifyConfigStart()"), "StartConfigNotify");
    sends("config stop", invoke("notifyConfigStop()"), "StopConfigNotify");
    sends("config clear", invoke("notifyConfigClear()"), "ClearConfigNotifyList");
    sends("result start", invoke("notifyResultStart()"), "StartResultNotify");
    sends("result stop", invoke("notifyResultStop()"), "StopResultNotify");
    sends("result clear", invoke("notifyResultClear()"), "ClearResultNotifyList");
    sends("an added id travels as a list", invoke("notifyAdd(QString)", text),
          "AddToNotifyList as (['abc'],)");
    sends("a deleted id travels as a list", invoke("notifyDelete(QString)", text),
          "DeleteFromNotifyList as (['abc'],)");
    sends("log start", invoke("notifyLogStart(QString)", text), "LogStartNotify s ('abc',)");
    sends("log stop", invoke("notifyLogStop(QString)", text), "LogStopNotify s ('abc',)");
    sends("log clear", invoke("notifyLogClear(QString)", QString()), "LogClear s ('',)");
}

void tst_Slots::slotsSendOrPrint()
{
    QFETCH(Invocation, call);
    QFETCH(QByteArrayList, wire);
    QFETCH(QByteArray, out);

    service->answer("DbgLogCmd", "()");
    service->answer("DbgLogGetIds", "(['LOG_XDSL', 'LOG é', '€'],)");
    OpenMovra movra;
    QVERIFY(movra.connectToService("com.varn.tul", "/"));
    bool called = false;
    QCOMPARE(captureOutput([&] { called = call(movra); }), out);
    QVERIFY(called);
    QCOMPARE(service->waitForCalls(wire.size()), wire);
}

void tst_Slots::noDebugIdsPrintNothing()
{
    service->answer("DbgLogGetIds", "(@as [],)");
    OpenMovra movra;
    QVERIFY(movra.connectToService("com.varn.tul", "/"));
    QCOMPARE(captureOutput([&] { movra.callDbgLogGetIds(); }), QByteArray());
}

void tst_Slots::notifySlotsDoNotWait_data()
{
    QTest::addColumn<Invocation>("call");
    QTest::addColumn<QByteArray>("member");
    const auto row = [](const char *member, const Invocation &call) {
        QTest::newRow(member) << call << QByteArray(member);
    };
    const QString id = QStringLiteral("x");
    row("StartConfigNotify", invoke("notifyConfigStart()"));
    row("StopConfigNotify", invoke("notifyConfigStop()"));
    row("ClearConfigNotifyList", invoke("notifyConfigClear()"));
    row("StartResultNotify", invoke("notifyResultStart()"));
    row("StopResultNotify", invoke("notifyResultStop()"));
    row("ClearResultNotifyList", invoke("notifyResultClear()"));
    row("AddToNotifyList", invoke("notifyAdd(QString)", id));
    row("DeleteFromNotifyList", invoke("notifyDelete(QString)", id));
    row("LogStartNotify", invoke("notifyLogStart(QString)", id));
    row("LogStopNotify", invoke("notifyLogStop(QString)", id));
    row("LogClear", invoke("notifyLogClear(QString)", id));
}

void tst_Slots::notifySlotsDoNotWait()
{
    QFETCH(Invocation, call);
    QFETCH(QByteArray, member);

    service->ignore(member);
    OpenMovra movra;
    QVERIFY(movra.connectToService("com.varn.tul", "/"));
    QElapsedTimer timer;
    timer.start();
    QVERIFY(call(movra));
    QVERIFY2(timer.elapsed() < 10000, "a wait would have ended after Qt D-Bus's 25 s");
    QVERIFY(service->waitForCalls(1).value(0).startsWith(member));
}

void tst_Slots::notifySlotsWithoutAProxyDoNothing()
{
    QFETCH(Invocation, call);
    OpenMovra movra;
    bool called = false;
    QCOMPARE(captureOutput([&] { called = call(movra); }), QByteArray());
    QVERIFY(called);
}

void tst_Slots::failedDebugCommands_data()
{
    QTest::addColumn<QByteArray>("path");
    QTest::addColumn<Invocation>("call");
    QTest::addColumn<QByteArray>("out");
    QTest::addColumn<QString>("lastError");

    const Invocation command = invoke("generateDbgLogCmd(std::string,std::string)",
                                      std::string("NO \xe9 %s"), std::string("x"));
    const Invocation getIds = invoke("callDbgLogGetIds()");
    const QString emptyPath = QStringLiteral("Object path cannot be empty");
    // The proxy's error is shown, and not the reply's.
    QTest::newRow("a command: three blanks before ERROR and five after")
        << QByteArray("/") << command << QByteArray("DBG NO \xe9 %s   ERROR     err=\n")
        << QString();
    QTest::newRow("a command on an empty path")
        << QByteArray() << command
        << QByteArray("DBG NO \xe9 %s   ERROR     err=Object path cannot be empty\n") << emptyPath;
    QTest::newRow("ids: two blanks before ERROR and two after")
        << QByteArray("/") << getIds << QByteArray("DBG GET_IDS  ERROR  err=\n") << QString();
    QTest::newRow("ids on an empty path")
        << QByteArray() << getIds
        << QByteArray("DBG GET_IDS  ERROR  err=Object path cannot be empty\n") << emptyPath;
    QTest::newRow("one text instead of a list of ids")
        << QByteArray("/lying") << getIds << QByteArray("DBG GET_IDS  ERROR  err=\n") << QString();
}

void tst_Slots::failedDebugCommands()
{
    QFETCH(QByteArray, path);
    QFETCH(Invocation, call);
    QFETCH(QByteArray, out);
    QFETCH(QString, lastError);

    service->refuse("DbgLogCmd", "varn.pim.Error.Refused", "the reply's own text");
    if (path == "/lying") {
        service->answer("DbgLogGetIds", "('one text',)");
    } else {
        service->refuse("DbgLogGetIds", "varn.pim.Error.Refused", "the reply's own text");
    }
    OpenMovra movra;
    QVERIFY(movra.connectToService("com.varn.tul", path.toStdString()));
    movra.lastErrorText = QStringLiteral("older");
    bool called = false;
    QCOMPARE(captureOutput([&] { called = call(movra); }), out);
    QVERIFY(called);
    QCOMPARE(movra.lastErrorText, lastError);
}

QTEST_GUILESS_MAIN(tst_Slots)
#include "tst_slots.moc"
