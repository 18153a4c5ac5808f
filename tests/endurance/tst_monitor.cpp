// SPDX-License-Identifier: MIT
// The monitor over a long time: MOVRA_ENDURANCE_SIGNALS signals (20,000 unless set) for a reader
// that keeps up, MOVRA_ENDURANCE_STALLED (20,000 unless set) and MOVRA_ENDURANCE_LARGE of 1 MB (40
// unless set) for one that reads nothing before all are sent. No line is lost, all are in order,
// and the monitor's memory stays small.
#include "tests/endurance/measure.h"
#include "tests/endurance/numberedsignals.h"
#include "tests/support/listening.h"
#include "tests/support/movrarun.h"
#include "tests/support/setting.h"

#include <QTest>

#include <algorithm>
#include <chrono>

namespace
{

constexpr int atATime = 10000;

using Seconds = std::chrono::duration<double>;

/// Whether the first size, in KiB, is less than the second, in MiB. Sanitizers need much more
/// memory.
bool staysBelow(int kib, int limit)
{
#ifdef MOVRA_SANITIZED
    limit *= 100;
#endif
    return kib > 0 && kib < limit * 1024;
}

Seconds since(std::chrono::steady_clock::time_point begin)
{
    return std::chrono::steady_clock::now() - begin;
}

} // namespace

class tst_Monitor : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void aReaderThatKeepsUp();
    void aReaderThatStalls();
    void aReaderThatStallsOnLargeSignals();
    void signalsAndRepliesAbove63MiB();

private:
    /// Compares the next lines that the monitor prints with those of the signals up to `end`,
    /// without it.
    void compareLines(Program &monitor, int begin, int end);
};

void tst_Monitor::compareLines(Program &monitor, int begin, int end)
{
    (void)monitor.waitForLines(end - begin); // the comparison below shows the first wrong line
    int position = 0;
    for (int number = begin; number < end; ++number) {
        const QByteArray line = numberedLine(number);
        QCOMPARE(monitor.out.mid(position, line.size()), line);
        position += line.size();
    }
    QCOMPARE(monitor.out.size(), position);
    monitor.forgetOutput();
}

void tst_Monitor::aReaderThatKeepsUp()
{
    const int count = setting("MOVRA_ENDURANCE_SIGNALS", 20000);
    FakeService service;
    Program monitor(MOVRA_PROGRAM, { "com.varn.tul", "/", "SIG" }, busEnvironment());
    QVERIFY(waitUntilHeard(monitor, service));
    const int first = memoryOf(monitor.processId(), "VmHWM");

    const auto begin = std::chrono::steady_clock::now();
    for (int number = 0; number < count;) {
        const int blockBegin = number;
        while (number < std::min(blockBegin + atATime, count)) {
            emitNumbered(service, number++);
        }
        compareLines(monitor, blockBegin, number);
        if (QTest::currentTestFailed()) {
            return;
        }
    }
    const int most = memoryOf(monitor.processId(), "VmHWM");
    figure("monitor.rate", count / since(begin).count(), "signals/s");
    figure("monitor.memory.start", first, "KiB");
    figure("monitor.memory.peak", most, "KiB");
    QCOMPARE(monitor.err.count('\n'), 1);
    QVERIFY(staysBelow(most, 32));
}

void tst_Monitor::aReaderThatStalls()
{
    const int count = setting("MOVRA_ENDURANCE_STALLED", 20000);
    FakeService service;
    Program monitor(MOVRA_PROGRAM, { "com.varn.tul", "/", "SIG" }, busEnvironment());
    QVERIFY(waitUntilHeard(monitor, service));
    for (int number = 0; number < count; ++number) {
        emitNumbered(service, number);
    }
    service.waitUntilSent();

    const auto begin = std::chrono::steady_clock::now();
    for (int lines = 0; lines < count && monitor.waitForLines(lines); lines += atATime) {
        // Each wait has its own limit.
    }
    compareLines(monitor, 0, count);
    if (QTest::currentTestFailed()) {
        return;
    }
    const int most = memoryOf(monitor.processId(), "VmHWM");
    figure("stalled.catchup", since(begin).count(), "s");
    figure("stalled.memory.peak", most, "KiB");
    QCOMPARE(monitor.err.count('\n'), 1);
    QVERIFY(staysBelow(most, 32));
}

void tst_Monitor::aReaderThatStallsOnLargeSignals()
{
    const int count = setting("MOVRA_ENDURANCE_LARGE", 40);
    const QByteArray megabyte(1000000, 'x');
    FakeService service;
    Program monitor(MOVRA_PROGRAM, { "com.varn.tul", "/", "SIG" }, busEnvironment());
    QVERIFY(waitUntilHeard(monitor, service));
    for (int number = 0; number < count; ++number) {
        service.emitSignal("SigInfo", "('" + QByteArray::number(number) + megabyte + "',)", "/",
                           "varn.pim", FakeService::After::MoreFollows);
    }
    service.waitUntilSent();

    for (int number = 0; number < count; ++number) {
        QVERIFY(monitor.waitForLines(number + 1));
    }
    const QByteArrayList lines = monitor.out.split('\n');
    QCOMPARE(lines.size(), count + 1);
    for (int number = 0; number < count; ++number) {
        QVERIFY(lines[number]
                == "===Client sigInfoSlot  msg=" + QByteArray::number(number) + megabyte);
    }
    const int most = memoryOf(monitor.processId(), "VmHWM");
    figure("large.memory.peak", most, "KiB");
    QVERIFY(staysBelow(most, 96));
}

void tst_Monitor::signalsAndRepliesAbove63MiB()
{
    const QByteArray text(64 * 1024 * 1024, 'x');
    FakeService service;
    service.answer("GetValue", "(<'" + text + "'>,)");
    Program monitor(MOVRA_PROGRAM, { "com.varn.tul", "/", "SIG" }, busEnvironment());
    QVERIFY(waitUntilHeard(monitor, service));
    service.emitSignal("SigInfo", "('" + text + "',)");
    service.emitSignal("SigInfo", "('small',)");
    QVERIFY(monitor.waitForLines(2));
    QVERIFY(monitor.out
            == "===Client sigInfoSlot  msg=" + text + "\n===Client sigInfoSlot  msg=small\n");
    QCOMPARE(monitor.err.count('\n'), 1);

    Program reader(MOVRA_PROGRAM, { "com.varn.tul", "/", "GET", "x" }, busEnvironment());
    QVERIFY(reader.waitForEnd());
    QVERIFY(reader.out == text + '\n');
    QCOMPARE(reader.err, QByteArray());
    QCOMPARE(reader.status, 0);
}

QTEST_GUILESS_MAIN(tst_Monitor)
#include "tst_monitor.moc"
