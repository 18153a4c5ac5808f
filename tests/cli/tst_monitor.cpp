// SPDX-License-Identifier: MIT
// SIG through the built program: what the monitor prints, what it ignores, and how it ends.
#include "tests/support/listening.h"
#include "tests/support/movrarun.h"
#include "tests/support/patience.h"
#include "tests/support/signalforms.h"

#include <QDeadlineTimer>
#include <QFile>
#include <QTemporaryDir>
#include <QTest>

#include <csignal>
#include <memory>
#include <vector>

namespace
{

/// The one warning. Debug builds of Qt append file and line.
const QByteArray warning =
    "QObject::connect: No such signal KorAppInterface::SigLogNotification(QStringList)";

} // namespace

class tst_Monitor : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init();
    void signalLines();
    void theFirstSignalsKeepTheirOrder_data();
    void theFirstSignalsKeepTheirOrder();
    void otherTypesAreIgnored();
    void signalsOfOthersAreNotPrinted();
    void logNotificationsAreNeverPrinted();
    void nothingIsAskedOfTheService();
    void wordsAfterSigAreIgnored();
    void oneWarningOnStandardError();
    void theServiceMayStopAndReturn();
    void signalsEndIt_data();
    void signalsEndIt();
    void aClosedPipeEndsIt();
    void noSignalIsCaught();
    void linesAreWrittenToAFileAtOnce();
    void anEmptyPathReceivesEveryPath();
    void aMonitorWithoutAServiceStays_data();
    void aMonitorWithoutAServiceStays();

private:
    /// Starts the monitor and waits until it prints signals.
    void start(const QByteArrayList &furtherWords = {});
    /// Emits a last signal, ends the monitor after it and returns what it printed before.
    QByteArray linesUpToNow();

    std::unique_ptr<FakeService> service;
    std::unique_ptr<Program> monitor;
};

void tst_Monitor::init()
{
    monitor.reset();
    service.reset();
    service = std::make_unique<FakeService>();
    QTRY_COMPARE_WITH_TIMEOUT(service->matchRules("com.varn.tul").size(), 0, patienceMs);
}

void tst_Monitor::start(const QByteArrayList &furtherWords)
{
    monitor = std::make_unique<Program>(
        MOVRA_PROGRAM, QByteArrayList { "com.varn.tul", "/", "SIG" } + furtherWords,
        busEnvironment());
    QVERIFY(waitUntilHeard(*monitor, *service));
}

QByteArray tst_Monitor::linesUpToNow()
{
    const QByteArray last = "===Client sigInfoSlot  msg=last\n";
    service->emitSignal("SigInfo", "('last',)");
    if (!monitor->waitForLastLine(last)) {
        return monitor->out + "(the last line did not come)";
    }
    monitor->send(SIGTERM);
    if (!monitor->waitForEnd() || monitor->status != 256 + SIGTERM) {
        return "(the monitor did not end as it should)";
    }
    return monitor->out.chopped(last.size());
}

void tst_Monitor::signalLines()
{
    struct Line {
        const char *member;
        QByteArray body;
        QByteArray out;
    };
    const char *const data = "SigTestCompleteWithData";
    std::vector<Line> lines {
        { "SigAlarm", "('',)", "===Client alarmSlot  msg=\n" },
        { "SigUpdate", "('é € \U0001F600',)", "===Client sigUpdateSlot  msg=\xe9 ? ??\n" },
        { "SigError", "('%s%n\\ntwo\\t',)", "===Client sigErrorSlot  msg=%s%n\ntwo\t\n" },
        // Only the first element is printed.
        { data, "('done', [1.5, 2.0, 3.0])",
          "sigTestCompleteWithDataSlot double msg=done size=3 data[0]=1.5\n" },
        { data, "('done', @ad [])", "sigTestCompleteWithDataSlot double msg=done size=0\n" },
        { data, "('x', [0.1])", "sigTestCompleteWithDataSlot double msg=x size=1 data[0]=0.1\n" },
        // Six significant digits.
        { data, "('x', [1234567.0])",
          "sigTestCompleteWithDataSlot double msg=x size=1 data[0]=1.23457e+06\n" },
        { data, "('x', [uint32 4294967295, 1])",
          "sigTestCompleteWithDataSlot uint32_t msg=x size=2 data[0]=4294967295\n" },
        { data, "('é', @au [])", "sigTestCompleteWithDataSlot uint32_t msg=\xe9 size=0\n" },
    };
    for (const SignalForm &form : signalForms) {
        lines.push_back({ form.member, QByteArray(form.body).replace("%1", "abc"),
                          QByteArray(form.line).replace("%1", "abc") });
    }
    start();
    QByteArray expected;
    for (const Line &line : lines) {
        service->emitSignal(line.member, line.body);
        expected += line.out;
    }
    QCOMPARE(linesUpToNow(), expected);
}

void tst_Monitor::theFirstSignalsKeepTheirOrder_data()
{
    QTest::addColumn<int>("number");
    for (int number = 1; number <= 10; ++number) {
        QTest::addRow("start %d", number) << number;
    }
}

void tst_Monitor::theFirstSignalsKeepTheirOrder()
{
    // Many monitors delay each other, so that more signals arrive while they start.
    constexpr int count = 16;
    std::vector<std::unique_ptr<Program>> monitors;
    monitors.reserve(count);
    for (int each = 0; each < count; ++each) {
        monitors.push_back(std::make_unique<Program>(
            MOVRA_PROGRAM, QByteArrayList { "com.varn.tul", "/", "SIG" }, busEnvironment()));
    }
    int last = 0;
    const auto emitSome = [&] {
        for (int more = 0; more < 10; ++more) {
            service->emitSignal("SigInfo", "('" + QByteArray::number(++last) + "',)");
        }
    };
    const QDeadlineTimer limit(patience);
    while (service->matchRules("com.varn.tul").size() < 7 * count && !limit.hasExpired()) {
        emitSome();
    }
    emitSome();
    for (const auto &each : monitors) {
        const auto line = [](int number) {
            return "===Client sigInfoSlot  msg=" + QByteArray::number(number) + '\n';
        };
        QVERIFY(each->waitForLastLine(line(last)));
        QByteArray expected;
        for (int number = last - each->out.count('\n') + 1; number <= last; ++number) {
            expected += line(number);
        }
        QCOMPARE(each->out, expected);
    }
}

void tst_Monitor::otherTypesAreIgnored()
{
    start();
    for (const SignalForm &form : signalForms) {
        for (const char *body :
             { "()", "(1,)", "(<'a'>,)", "(['a'],)", "(objectpath '/a',)", "(signature '',)",
               "('a', signature '')", "('a', 1.5)", "('a', [1])", "('a', [int64 1])",
               "([1.5], 'a')", "('a', [handle 0])" }) {
            service->emitSignal(form.member, body);
        }
    }
    service->emitSignal("SigTestCompleteWithData", "('a',)");
    QCOMPARE(linesUpToNow(), QByteArray());
    // Qt D-Bus warns of each signature value without types.
    QCOMPARE(monitor->err.count("QDBusSignature: invalid signature \"\"\n"), 16);
    QCOMPARE(monitor->err.count('\n'), 17);
}

void tst_Monitor::signalsOfOthersAreNotPrinted()
{
    start();
    FakeService other("com.varn.other");
    // The bus does not send the monitor what no match rule selects, except what is sent to it
    // alone.
    for (const QByteArray &destination :
         { QByteArray(), service->listeners("com.varn.tul").first() }) {
        other.emitSignalTo(destination, "SigAlarm", "('another sender',)");
        service->emitSignalTo(destination, "SigAlarm", "('another path',)", "/other");
        service->emitSignalTo(destination, "SigAlarm", "('another interface',)", "/", "varn.pimx");
        service->emitSignalTo(destination, "SigAlarms", "('another member',)");
    }
    other.waitUntilSent();
    QCOMPARE(linesUpToNow(), QByteArray());
}

void tst_Monitor::logNotificationsAreNeverPrinted()
{
    start();
    service->emitSignal("SigLogNotification", "(['a', 'b'],)");
    QCOMPARE(linesUpToNow(), QByteArray());
}

void tst_Monitor::nothingIsAskedOfTheService()
{
    start();
    QCOMPARE(linesUpToNow(), QByteArray());
    QCOMPARE(service->takeCalls(), QByteArrayList());
}

void tst_Monitor::wordsAfterSigAreIgnored()
{
    start({ "-h", "x" });
    service->emitSignal("SigAlarm", "('abc',)");
    QCOMPARE(linesUpToNow(), QByteArray("===Client alarmSlot  msg=abc\n"));
}

void tst_Monitor::oneWarningOnStandardError()
{
    start();
    QCOMPARE(linesUpToNow(), QByteArray());
#ifdef QT_NO_DEBUG
    QCOMPARE(monitor->err, warning + '\n');
#else
    QVERIFY2(monitor->err.startsWith(warning + " in "), monitor->err.constData());
    QCOMPARE(monitor->err.count('\n'), 1);
#endif
}

void tst_Monitor::theServiceMayStopAndReturn()
{
    start();
    service->emitSignal("SigAlarm", "('before',)");
    QVERIFY(monitor->waitForLines(1));
    service.reset();
    {
        FakeService("com.varn.other").emitSignal("SigAlarm", "('meanwhile',)");
    }
    service = std::make_unique<FakeService>();
    service->emitSignal("SigAlarm", "('after',)");
    QCOMPARE(linesUpToNow(),
             QByteArray("===Client alarmSlot  msg=before\n===Client alarmSlot  msg=after\n"));
    QCOMPARE(monitor->err.count('\n'), 1);
}

void tst_Monitor::signalsEndIt_data()
{
    QTest::addColumn<int>("signal");
    QTest::newRow("INT") << SIGINT;
    QTest::newRow("TERM") << SIGTERM;
    QTest::newRow("HUP") << SIGHUP;
    QTest::newRow("PIPE") << SIGPIPE;
    QTest::newRow("KILL") << SIGKILL;
}

void tst_Monitor::signalsEndIt()
{
    QFETCH(int, signal);
    start();
    // The line is read while the monitor runs, so that no output is left in the pipe.
    service->emitSignal("SigAlarm", "('abc',)");
    QVERIFY(monitor->waitForLines(1));
    monitor->send(signal);
    QVERIFY(monitor->waitForEnd());
    QCOMPARE(monitor->out, QByteArray("===Client alarmSlot  msg=abc\n"));
    QCOMPARE(monitor->status, 256 + signal);
}

void tst_Monitor::aClosedPipeEndsIt()
{
    start();
    monitor->leaveOutput();
    service->emitSignal("SigAlarm", "('abc',)");
    QVERIFY(monitor->waitForEnd());
    QCOMPARE(monitor->status, 256 + SIGPIPE);
}

void tst_Monitor::noSignalIsCaught()
{
    start();
    QFile file(QStringLiteral("/proc/%1/status").arg(monitor->processId()));
    QVERIFY(file.open(QIODevice::ReadOnly));
    QByteArray caught;
    QByteArray ignored;
    for (const QByteArray &line : file.readAll().split('\n')) {
        if (line.startsWith("SigCgt:")) {
            caught = line.mid(7).trimmed();
        } else if (line.startsWith("SigIgn:")) {
            ignored = line.mid(7).trimmed();
        }
    }
    for (const int signal : { SIGINT, SIGTERM, SIGHUP, SIGPIPE }) {
        const quint64 bit = Q_UINT64_C(1) << (signal - 1);
        QCOMPARE(caught.toULongLong(nullptr, 16) & bit, Q_UINT64_C(0));
        QCOMPARE(ignored.toULongLong(nullptr, 16) & bit, Q_UINT64_C(0));
    }
}

void tst_Monitor::linesAreWrittenToAFileAtOnce()
{
    const QTemporaryDir directory;
    const QString path = directory.filePath(QStringLiteral("lines"));
    monitor =
        std::make_unique<Program>("/bin/sh",
                                  QByteArrayList { "-c", "exec \"$0\" com.varn.tul / SIG >\"$1\"",
                                                   MOVRA_PROGRAM, QFile::encodeName(path) },
                                  busEnvironment());
    QVERIFY(waitUntilListening(*service));
    service->emitSignal("SigAlarm", "('abc',)");
    QFile file(path);
    QVERIFY(file.open(QIODevice::ReadOnly));
    QByteArray lines;
    QTRY_COMPARE_WITH_TIMEOUT(lines += file.readAll(), QByteArray("===Client alarmSlot  msg=abc\n"),
                              patienceMs);
    monitor->send(SIGKILL);
    QVERIFY(monitor->waitForEnd());
    QCOMPARE(file.readAll(), QByteArray());
}

void tst_Monitor::anEmptyPathReceivesEveryPath()
{
    monitor = std::make_unique<Program>(MOVRA_PROGRAM, QByteArrayList { "com.varn.tul", "", "SIG" },
                                        busEnvironment());
    QVERIFY(waitUntilListening(*service));
    service->emitSignal("SigAlarm", "('one',)", "/one");
    QVERIFY(monitor->waitForLines(1));
    service->emitSignal("SigAlarm", "('other',)", "/other");
    QVERIFY(monitor->waitForLines(2));
    QCOMPARE(monitor->out,
             QByteArray("===Client alarmSlot  msg=one\n===Client alarmSlot  msg=other\n"));
}

void tst_Monitor::aMonitorWithoutAServiceStays_data()
{
    QTest::addColumn<QByteArray>("name");
    QTest::addColumn<QByteArray>("path");
    QTest::newRow("a unique name without an owner") << QByteArray(":1.999999") << QByteArray("/");
    QTest::newRow("an empty path") << QByteArray("com.varn.tul") << QByteArray();
}

void tst_Monitor::aMonitorWithoutAServiceStays()
{
    QFETCH(QByteArray, name);
    QFETCH(QByteArray, path);
    monitor = std::make_unique<Program>(MOVRA_PROGRAM, QByteArrayList { name, path, "SIG" },
                                        busEnvironment());
    QVERIFY(waitUntilListening(*service, 1, name));
    // This run ends after the half second of any other command.
    Program last(MOVRA_PROGRAM, { "com.varn.tul", "/", "SERVERSTAT" }, busEnvironment());
    QVERIFY(last.waitForEnd());
    QVERIFY(monitor->runs());
    monitor->send(SIGTERM);
    QVERIFY(monitor->waitForEnd());
    QCOMPARE(monitor->out, QByteArray());
    QCOMPARE(monitor->err.count('\n'), 1);
    QCOMPARE(monitor->status, 256 + SIGTERM);
}

QTEST_GUILESS_MAIN(tst_Monitor)
#include "tst_monitor.moc"
