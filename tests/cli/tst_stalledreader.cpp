// SPDX-License-Identifier: MIT
// A monitor whose output is not read: the bus keeps the further signals. System signals, a closed
// pipe and the end of the bus end it like any other monitor.
#include "tests/endurance/numberedsignals.h"
#include "tests/support/listening.h"
#include "tests/support/movrarun.h"
#include "tests/support/privatebus.h"

#include <QTest>

#include <csignal>
#include <memory>

class tst_StalledReader : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init();
    void signalsEndTheMonitor_data();
    void signalsEndTheMonitor();
    void aClosedPipeEndsTheMonitor();
    void theMonitorPrintsWhatItHasWhenTheBusDies();
    void theMonitorContinuesWithItsReader();

private:
    std::unique_ptr<PrivateBus> bus;
    std::unique_ptr<FakeService> service;
    std::unique_ptr<Program> monitor;
};

namespace
{

// More than the monitor reads from the bus.
constexpr int many = 15000;

} // namespace

void tst_StalledReader::init()
{
    monitor.reset();
    service.reset();
    bus = std::make_unique<PrivateBus>();
    service = std::make_unique<FakeService>("com.varn.tul", bus->address);
    monitor = std::make_unique<Program>(
        MOVRA_PROGRAM, QByteArrayList { "com.varn.tul", "/", "SIG" }, busEnvironment(bus->address));
    QVERIFY(waitUntilHeard(*monitor, *service));
    for (int number = 0; number < many; ++number) {
        emitNumbered(*service, number);
    }
    service->waitUntilSent();
    // Wait until the pipe is full. The kernel limits its size for a user who has many.
    QVERIFY(monitor->waitUntilStalled());
}

void tst_StalledReader::signalsEndTheMonitor_data()
{
    QTest::addColumn<int>("signal");
    QTest::newRow("INT") << SIGINT;
    QTest::newRow("TERM") << SIGTERM;
}

void tst_StalledReader::signalsEndTheMonitor()
{
    QFETCH(int, signal);
    monitor->send(signal);
    QVERIFY(monitor->waitForEnd());
    QCOMPARE(monitor->status, 256 + signal);
}

void tst_StalledReader::aClosedPipeEndsTheMonitor()
{
    monitor->leaveOutput();
    QVERIFY(monitor->waitForEnd());
    QCOMPARE(monitor->status, 256 + SIGPIPE);
}

void tst_StalledReader::theMonitorPrintsWhatItHasWhenTheBusDies()
{
    bus->daemon->send(SIGKILL);
    QVERIFY(bus->daemon->waitForEnd());
    QVERIFY(monitor->waitForEnd());
    QCOMPARE(monitor->status, 1);
    // The signals that the bus had not sent yet are lost.
    const int lines = monitor->out.count('\n');
    QVERIFY2(lines > 0 && lines < many, QByteArray::number(lines).constData());
    QByteArray expected;
    for (int number = 0; number < lines; ++number) {
        expected += numberedLine(number);
    }
    QVERIFY(monitor->out == expected);
}

void tst_StalledReader::theMonitorContinuesWithItsReader()
{
    QVERIFY(monitor->waitForLines(many));
    service->emitSignal("SigInfo", "('last',)");
    QVERIFY(monitor->waitForLastLine("===Client sigInfoSlot  msg=last\n"));
    QCOMPARE(monitor->out.count('\n'), many + 1);
}

QTEST_GUILESS_MAIN(tst_StalledReader)
#include "tst_stalledreader.moc"
