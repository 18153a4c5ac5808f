// SPDX-License-Identifier: MIT
// The monitor for long: MOVRA_ENDURANCE_SIGNALS signals (20,000 unless set) for a reader that keeps
// up, MOVRA_ENDURANCE_STALLED (10,000 unless set) while nobody reads. No line is lost, all are in
// order.
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

private:
    /// Compares the next lines that the monitor prints with those of the signals up to `end`,
    /// without it.
    void compareLines(Program &monitor, int begin, int end);
};

void tst_Monitor::compareLines(Program &monitor, int begin, int end)
{
    (void)monitor.waitForLines(end - begin); // the first line that is wrong tells more
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
#ifndef MOVRA_SANITIZED
    QVERIFY2(most > 0 && most < 32 * 1024, QByteArray::number(most).constData());
#endif
}

void tst_Monitor::aReaderThatStalls()
{
    const int count = setting("MOVRA_ENDURANCE_STALLED", 10000);
    FakeService service;
    Program monitor(MOVRA_PROGRAM, { "com.varn.tul", "/", "SIG" }, busEnvironment());
    QVERIFY(waitUntilHeard(monitor, service));
    const int first = memoryOf(monitor.processId(), "VmRSS");

    for (int number = 0; number < count; ++number) {
        emitNumbered(service, number);
    }
    // Beyond 63 MiB of messages (some half a million signals) the bus library reads no more, and
    // the rest stays with the bus.
    const bool taken = service.waitUntilTaken("com.varn.tul");
    const int full = memoryOf(monitor.processId(), "VmRSS");
    figure("stalled.memory.start", first, "KiB");
    figure("stalled.memory.full", full, "KiB");
    if (taken) {
        figure("stalled.memory.each", (full - first) * 1024.0 / count, "B/signal");
    }

    const auto begin = std::chrono::steady_clock::now();
    for (int lines = 0; lines < count && monitor.waitForLines(lines); lines += atATime) {
        // Each wait has a patience of its own.
    }
    compareLines(monitor, 0, count);
    if (QTest::currentTestFailed()) {
        return;
    }
    figure("stalled.catchup", since(begin).count(), "s");
    figure("stalled.memory.after", memoryOf(monitor.processId(), "VmRSS"), "KiB");
    QCOMPARE(monitor.err.count('\n'), 1);
}

QTEST_GUILESS_MAIN(tst_Monitor)
#include "tst_monitor.moc"
