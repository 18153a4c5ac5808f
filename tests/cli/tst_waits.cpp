// SPDX-License-Identifier: MIT
// How long a command waits when no answer comes: 25 seconds for a silent service and on a bus that
// stopped, without end on a bus that died.
#include "tests/support/commandforms.h"
#include "tests/support/movrarun.h"
#include "tests/support/privatebus.h"

#include <QTest>

#include <algorithm>
#include <chrono>
#include <csignal>
#include <memory>

namespace
{

struct Run {
    CommandForm form;
    std::unique_ptr<Program> program;
};

/// Starts each form against a service that takes its call and says nothing, and waits for the
/// calls.
void start(std::vector<Run> &runs, const std::vector<CommandForm> &forms, const QByteArray &bus,
           FakeService &service)
{
    QByteArrayList expected;
    for (const CommandForm &form : forms) {
        service.ignore(form.member);
        expected.append(form.call);
        const QByteArrayList request { "com.varn.tul", "/" };
        runs.push_back({ form,
                         std::make_unique<Program>(MOVRA_PROGRAM, request + form.words,
                                                   busEnvironment(bus)) });
    }
    QByteArrayList calls = service.waitForCalls(expected.size());
    std::sort(calls.begin(), calls.end());
    std::sort(expected.begin(), expected.end());
    QCOMPARE(calls, expected);
}

void givesUp(const Run &run)
{
    QVERIFY2(run.program->waitForEnd(std::chrono::seconds(60)), run.form.name);
    QCOMPARE(run.program->out, run.form.failed);
    QCOMPARE(run.program->err, QByteArray());
    QCOMPARE(run.program->status, run.form.failedStatus);
    const std::chrono::duration<double> whole = run.program->ended - run.program->started;
    // Half a minute would be enough, but machines are busy.
    QVERIFY2(whole.count() >= 25 && whole.count() < 60,
             QByteArray::number(whole.count()).constData());
}

void staysUntilItIsEnded(const Run &run)
{
    QVERIFY2(run.program->runs(), run.form.name);
    run.program->send(SIGTERM);
    QVERIFY2(run.program->waitForEnd(), run.form.name);
    QCOMPARE(run.program->out, QByteArray());
    QCOMPARE(run.program->err, QByteArray());
    QCOMPARE(run.program->status, 256 + SIGTERM);
}

} // namespace

class tst_Waits : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    // One test, so that all wait together.
    void whoWaitsAndForHowLong();
};

void tst_Waits::whoWaitsAndForHowLong()
{
    const PrivateBus dead;
    FakeService onDead("com.varn.tul", dead.address);
    std::vector<Run> onDeadBus;
    start(onDeadBus, firstFormsThatWait(), dead.address, onDead);
    dead.daemon->send(SIGKILL);

    const PrivateBus stopped;
    FakeService onStopped("com.varn.tul", stopped.address);
    std::vector<Run> onStoppedBus;
    start(onStoppedBus, firstFormsThatWait(), stopped.address, onStopped);
    stopped.daemon->send(SIGSTOP);

    const QByteArray bus = qgetenv("DBUS_SESSION_BUS_ADDRESS");
    FakeService silent("com.varn.tul", bus);
    std::vector<Run> onSilentService;
    start(onSilentService, commandForms(), bus, silent);

    for (const Run &run : onSilentService) {
        if (!run.form.waits) {
            QVERIFY2(run.program->waitForEnd(), run.form.name);
            QCOMPARE(run.program->out, QByteArray());
            QCOMPARE(run.program->err, QByteArray());
            QCOMPARE(run.program->status, 0);
        }
    }
    for (const Run &run : onSilentService) {
        if (run.form.waits) {
            givesUp(run);
        }
    }
    for (const Run &run : onStoppedBus) {
        givesUp(run);
    }
    // These began first, and nothing guards their wait: Qt D-Bus does not end it.
    for (const Run &run : onDeadBus) {
        staysUntilItIsEnded(run);
    }
    stopped.daemon->send(SIGKILL);
}

QTEST_GUILESS_MAIN(tst_Waits)
#include "tst_waits.moc"
