// SPDX-License-Identifier: MIT
// Command handlers in this process: what they record and what no command line can show.
#include "bus/proxies.h"
#include "tests/support/argumentvector.h"
#include "tests/support/commandforms.h"
#include "tests/support/fakeservice.h"
#include "tests/support/openmovra.h"
#include "tests/support/signalforms.h"

#include <QMetaMethod>
#include <QTest>

#include <memory>

namespace
{

/// A proxy that records which of its signals are connected to.
class RecordingProxy : public KorAppInterface
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

class tst_Handlers : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void initTestCase();
    void cleanup();
    void failedCallsAreRecorded();
    void answeredCallsRecordNothing();
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

void tst_Handlers::failedCallsAreRecorded()
{
    OpenMovra movra;
    QVERIFY(movra.connectToService("com.varn.tul", "/"));
    for (const CommandForm &form : commandForms()) {
        service->refuse(form.member, "varn.pim.Error.Refused", "the reply's own text");
        movra.lastErrorText = QStringLiteral("older");
        QCOMPARE(callHandler(movra, requestOf(form)).out, form.failed);
        // The recorded error is that of the proxy, which stays empty. LIST and commands that do
        // not wait record nothing.
        const bool records = form.failed.contains("err=");
        QCOMPARE(movra.lastErrorText, records ? QString() : QStringLiteral("older"));
        // Calls without a wait must arrive before the next form is tried, too.
        QCOMPARE(service->waitForCalls(1), QByteArrayList { form.call });
    }
}

void tst_Handlers::answeredCallsRecordNothing()
{
    OpenMovra movra;
    QVERIFY(movra.connectToService("com.varn.tul", "/"));
    for (const CommandForm &form : commandForms()) {
        service->answer(form.member, form.answer);
        movra.lastErrorText = QStringLiteral("older");
        QCOMPARE(callHandler(movra, requestOf(form)).out, form.out);
        QCOMPARE(movra.lastErrorText, QStringLiteral("older"));
        QCOMPARE(service->waitForCalls(1), QByteArrayList { form.call });
    }
}

void tst_Handlers::sigConnectsInOrder()
{
    OpenMovra movra;
    QVERIFY(movra.connectToService("com.varn.tul", "/"));
    auto *proxy = new RecordingProxy(QStringLiteral("com.varn.tul"), QStringLiteral("/"),
                                     QDBusConnection::sessionBus(), &movra);
    movra.iface = proxy;
    QCOMPARE(callHandler(movra, requestOf(monitorForm())).status, 0);
    QByteArrayList expected;
    for (const SignalForm &form : signalForms) {
        expected.append(form.signal);
    }
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
    ArgumentVector vector(QByteArrayList { "movra", "com.varn.tul", "/", "NOTIFY" } + arguments);
    QCOMPARE(movra.notifyLog(vector.argv()), status);
    QCOMPARE(service->waitForCalls(wire.size()), wire);
    QCOMPARE(movra.notifyCommand(vector.argv()), 2);
    QCOMPARE(service->takeCalls(), QByteArrayList());
}

QTEST_GUILESS_MAIN(tst_Handlers)
#include "tst_handlers.moc"
