// SPDX-License-Identifier: MIT
// Each slot of the client object, called by its signature text: what it sends and what it prints.
#include "bus/proxies.h"
#include "tests/support/capture.h"
#include "tests/support/fakeservice.h"
#include "tests/support/openmovra.h"
#include "tests/support/signalforms.h"

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
    void notifySlotsDoNotWait_data();
    void notifySlotsDoNotWait();
    void notifySlotsWithoutAProxyDoNothing_data() { notifySlotsDoNotWait_data(); }
    void notifySlotsWithoutAProxyDoNothing();

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
    const auto prints = [](const char *name, const Invocation &call, const QByteArray &out) {
        QTest::newRow(name) << call << QByteArrayList() << out;
    };
    using Doubles = std::vector<double>;
    using Unsigned = std::vector<uint32_t>;
    const QString text = QStringLiteral("abc");
    const QString odd = QStringLiteral("\u00e9 \u20ac %s%n");

    sends("a debug command travels as typed, in Latin-1",
          invoke("generateDbgLogCmd(std::string,std::string)", std::string("NO\xe9"),
                 std::string("LOG_XDSL, 0, \xe9")),
          "DbgLogCmd ss ('NO\xc3\xa9', 'LOG_XDSL, 0, \xc3\xa9')");
    QTest::newRow("each debug id is printed on its own line")
        << invoke("callDbgLogGetIds()") << QByteArrayList { "DbgLogGetIds" }
        << QByteArray("LOG_XDSL\nLOG \xe9\n?\n");

    for (const SignalForm &form : signalForms) {
        if (qstrcmp(form.signature, "s") == 0) {
            prints(form.member, invoke(form.slot, odd),
                   QByteArray(form.line).replace("%1", "\xe9 ? %s%n"));
        }
    }
    prints("log changes are printed one a line",
           invoke("sigLogChangedNotificationSlot(QStringList)", QStringList { text, odd }),
           "===Client sigLogChangedNotificationSlot  value=abc\n"
           "===Client sigLogChangedNotificationSlot  value=\xe9 ? %s%n\n");
    prints("no log changes print nothing",
           invoke("sigLogChangedNotificationSlot(QStringList)", QStringList()), "");
    prints("one double",
           invoke("sigTestCompleteWithDataSlot(QString,std::vector<double>)", odd, Doubles { 0.1 }),
           "sigTestCompleteWithDataSlot double msg=\xe9 ? %s%n size=1 data[0]=0.1\n");
    prints("the greatest unsigned number",
           invoke("sigTestCompleteWithDataSlot(QString,std::vector<uint32_t>)",
                  QStringLiteral("done"), Unsigned { 4294967295U, 1 }),
           "sigTestCompleteWithDataSlot uint32_t msg=done size=2 data[0]=4294967295\n");
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

void tst_Slots::notifySlotsDoNotWait_data()
{
    QTest::addColumn<Invocation>("call");
    QTest::addColumn<QByteArray>("wire");
    const auto row = [](const char *name, const Invocation &call, const char *wire) {
        QTest::newRow(name) << call << QByteArray(wire);
    };
    const QString id = QStringLiteral("abc");
    row("config start", invoke("notifyConfigStart()"), "StartConfigNotify");
    row("config stop", invoke("notifyConfigStop()"), "StopConfigNotify");
    row("config clear", invoke("notifyConfigClear()"), "ClearConfigNotifyList");
    row("result start", invoke("notifyResultStart()"), "StartResultNotify");
    row("result stop", invoke("notifyResultStop()"), "StopResultNotify");
    row("result clear", invoke("notifyResultClear()"), "ClearResultNotifyList");
    row("an added id is sent as a list", invoke("notifyAdd(QString)", id),
        "AddToNotifyList as (['abc'],)");
    row("a deleted id is sent as a list", invoke("notifyDelete(QString)", id),
        "DeleteFromNotifyList as (['abc'],)");
    row("log start", invoke("notifyLogStart(QString)", id), "LogStartNotify s ('abc',)");
    row("log stop", invoke("notifyLogStop(QString)", id), "LogStopNotify s ('abc',)");
    row("log clear", invoke("notifyLogClear(QString)", QString()), "LogClear s ('',)");
}

void tst_Slots::notifySlotsDoNotWait()
{
    QFETCH(Invocation, call);
    QFETCH(QByteArray, wire);

    service->ignore(wire.split(' ').first());
    OpenMovra movra;
    QVERIFY(movra.connectToService("com.varn.tul", "/"));
    QElapsedTimer timer;
    timer.start();
    QVERIFY(call(movra));
    QVERIFY2(timer.elapsed() < 25000, "a wait ends after Qt D-Bus's 25 s");
    QCOMPARE(service->waitForCalls(1), QByteArrayList { wire });
}

void tst_Slots::notifySlotsWithoutAProxyDoNothing()
{
    QFETCH(Invocation, call);
    OpenMovra movra;
    bool called = false;
    QCOMPARE(captureOutput([&] { called = call(movra); }), QByteArray());
    QVERIFY(called);
}

QTEST_GUILESS_MAIN(tst_Slots)
#include "tst_slots.moc"
