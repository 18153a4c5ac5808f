// SPDX-License-Identifier: MIT
// Name takeover: the destination's name changes its owner before, during and after a call.
#include "tests/hostile/qtwarnings.h"
#include "tests/hostile/requests.h"
#include "tests/support/fakeservice.h"
#include "tests/support/listening.h"
#include "tests/support/movrarun.h"
#include "tests/support/setting.h"

#include <QTest>

#include <atomic>
#include <csignal>
#include <memory>
#include <thread>
#include <vector>

namespace
{

struct Rival : FakeService {
    Rival()
        : FakeService("com.varn.tul", qgetenv("DBUS_SESSION_BUS_ADDRESS"), Ownership::Shared)
    {
    }
};

/// Two services that take the name from each other as fast as they can.
class Rivals
{
public:
    Rivals()
        : takeover([this] {
            while (!over) {
                first.takeName();
                second.takeName();
            }
        })
    {
    }
    ~Rivals() { settle(); }
    Rivals(const Rivals &) = delete;
    Rivals &operator=(const Rivals &) = delete;

    /// Ends the takeovers: the second service keeps the name.
    void settle()
    {
        over = true;
        if (takeover.joinable()) {
            takeover.join();
        }
    }

    Rival first;
    Rival second;

private:
    std::atomic<bool> over { false };
    std::thread takeover;
};

} // namespace

class tst_Owners : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void requestsDuringNameTakeover();
    void monitorsStartedDuringNameTakeover();
};

void tst_Owners::requestsDuringNameTakeover()
{
    showQtWarnings();
    Rivals rivals;
    answerAll(rivals.first);
    answerAll(rivals.second);
    OpenMovra movra;
    QVERIFY(movra.connectToService("com.varn.tul", "/"));
    for (int run = setting("MOVRA_HOSTILE_RUNS", 200) / 10; run > 0; --run) {
        for (const CommandForm &form : commandForms()) {
            const Outcome outcome = callHandler(movra, requestOf(form));
            QCOMPARE(outcome.out, form.out);
            QCOMPARE(withoutAllowedWarnings(outcome.err), QByteArray());
            QCOMPARE(outcome.status, 0);
        }
    }
}

void tst_Owners::monitorsStartedDuringNameTakeover()
{
    Rivals rivals;
    std::vector<std::unique_ptr<Program>> monitors;
    monitors.reserve(20);
    for (int i = 0; i < 20; ++i) {
        monitors.push_back(std::make_unique<Program>(
            MOVRA_PROGRAM, QByteArrayList { "com.varn.tul", "/", "SIG" }, busEnvironment()));
    }
    QVERIFY(waitUntilListening(rivals.first, 20));
    rivals.settle();
    // The monitor receives the signals of the last owner. Standard error has only the warning of
    // every monitor and those about owners.
    for (const auto &monitor : monitors) {
        rivals.first.emitSignal("SigAlarm", "('from the loser',)");
        rivals.second.emitSignal("SigAlarm", "('from the winner',)");
        QVERIFY(monitor->waitForLines(1));
        monitor->send(SIGTERM);
        QVERIFY(monitor->waitForEnd());
        QVERIFY(!monitor->out.contains("loser"));
        QVERIFY2(withoutAllowedWarnings(monitor->err).count('\n') == 1, monitor->err.constData());
    }
}

QTEST_GUILESS_MAIN(tst_Owners)
#include "tst_owners.moc"
