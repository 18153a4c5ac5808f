// SPDX-License-Identifier: MIT
// The monitor against signals of random members, types and values: MOVRA_HOSTILE_RUNS for each
// member (200 unless set), from the seed MOVRA_HOSTILE_SEED (1 unless set).
#include "bus/connection.h"
#include "bus/proxies.h"
#include "tests/hostile/qtwarnings.h"
#include "tests/hostile/randomreply.h"
#include "tests/support/argumentvector.h"
#include "tests/support/capture.h"
#include "tests/support/commandforms.h"
#include "tests/support/fakeservice.h"
#include "tests/support/openmovra.h"
#include "tests/support/patience.h"
#include "tests/support/setting.h"
#include "tests/support/signalforms.h"

#include <QSignalSpy>
#include <QTest>

#include <functional>
#include <memory>

namespace
{

/// The beginning of the line for a signal; empty if the signal is not printed. All types must fit,
/// unlike those of replies.
QByteArray lineBegin(const QByteArray &member, const QByteArray &signature)
{
    for (const SignalForm &form : signalForms) {
        if (member == form.member && signature == form.signature) {
            return QByteArray(form.line).split('%').first();
        }
    }
    return {};
}

} // namespace

class tst_Signals : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void initTestCase();
    void randomSignals_data();
    void randomSignals();

private:
    /// The output of the monitor for the signals that the action emits.
    QByteArray heard(const std::function<void()> &emitAll);

    std::unique_ptr<FakeService> service;
    std::unique_ptr<OpenMovra> movra;
    std::unique_ptr<FlowControl> flow;
};

void tst_Signals::initTestCase()
{
    showQtWarnings();
    service = std::make_unique<FakeService>();
    movra = std::make_unique<OpenMovra>();
    QVERIFY(movra->connectToService("com.varn.tul", "/"));
    QCOMPARE(callHandler(*movra, requestOf(monitorForm())).status, 0);
    flow = std::make_unique<FlowControl>();
}

QByteArray tst_Signals::heard(const std::function<void()> &emitAll)
{
    QSignalSpy marker(movra->iface, SIGNAL(SigUpdate(QString)));
    const QByteArray printed = captureOutput([&] {
        emitAll();
        service->emitSignal("SigUpdate", "('marker',)");
        while (marker.isEmpty() || marker.last().first() != QStringLiteral("marker")) {
            QVERIFY(marker.wait(patienceMs));
        }
    });
    const QByteArray line = "===Client sigUpdateSlot  msg=marker\n";
    return printed.endsWith(line) ? printed.chopped(line.size()) : "(no marker) " + printed;
}

void tst_Signals::randomSignals_data()
{
    QTest::addColumn<QByteArray>("member");
    QTest::addColumn<QByteArray>("usual");
    for (const SignalForm &form : signalForms) {
        QTest::addRow("%s %s", form.member, form.signature)
            << QByteArray(form.member) << QByteArray(form.signature);
    }
    QTest::newRow("a signal that the monitor does not know")
        << QByteArray("SigLogNotification") << QByteArray("as");
}

void tst_Signals::randomSignals()
{
    QFETCH(QByteArray, member);
    QFETCH(QByteArray, usual);
    RandomReplies bodies(static_cast<unsigned>(setting("MOVRA_HOSTILE_SEED", 1)));
    for (int run = setting("MOVRA_HOSTILE_RUNS", 200); run > 0; --run) {
        const RandomReply body = bodies.next(usual);
        QByteArray printed;
        const QByteArray complaints = captureErrors(
            [&] { printed = heard([&] { service->emitSignal(member, body.text); }); });
        const QByteArray about = body.text.left(2000) + " -> " + printed.left(2000) + complaints;
        const QByteArray line = lineBegin(member, body.signature);
        QVERIFY2(printed.isEmpty() == line.isEmpty(), about.constData());
        QVERIFY2(line.isEmpty() || (printed.startsWith(line) && printed.endsWith('\n')),
                 about.constData());
        QVERIFY2(withoutAllowedWarnings(complaints).isEmpty(), about.constData());
    }
}

QTEST_GUILESS_MAIN(tst_Signals)
#include "tst_signals.moc"
