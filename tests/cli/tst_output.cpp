// SPDX-License-Identifier: MIT
// Standard output that cannot be written: a failed write is not reported and changes no status, and
// a pipe without a reader ends the program with SIGPIPE. A non-blocking one receives everything.
#include "tests/support/listening.h"
#include "tests/support/movrarun.h"

#include <QFile>
#include <QTest>

#include <csignal>

#include <fcntl.h>

Q_DECLARE_METATYPE(Program::Output)

class tst_Output : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void whatIsPrintedIsLost_data();
    void whatIsPrintedIsLost();
    void theMonitorContinues_data();
    void theMonitorContinues();
    void aMonitorWithoutAnyStreamListens();
    void nonBlockingOutputReceivesAll_data();
    void nonBlockingOutputReceivesAll();
};

namespace
{

struct Request {
    const char *name;
    QByteArrayList words;
    QByteArrayList calls;
    int status;
    bool prints;
};

void prepare(FakeService &service)
{
    service.answer("DBusServerStatus", "(5,)");
    service.answer("GetValue",
                   "(<['a line that is longer than a number of eight bytes', 'two', 'three']>,)");
    service.refuse("DoAction", "varn.pim.Error.Refused", "no");
}

} // namespace

void tst_Output::whatIsPrintedIsLost_data()
{
    QTest::addColumn<QByteArrayList>("words");
    QTest::addColumn<QByteArrayList>("calls");
    QTest::addColumn<Program::Output>("output");
    QTest::addColumn<int>("status");

    const QByteArrayList service { "com.varn.tul", "/" };
    const Request requests[] = {
        { "one line", service + QByteArrayList { "SERVERSTAT" }, { "DBusServerStatus" }, 0, true },
        { "an array", service + QByteArrayList { "GET", "x" }, { "GetValue s ('x',)" }, 0, true },
        { "a failed call",
          service + QByteArrayList { "ACTION", "x" },
          { "DoAction s ('x',)" },
          0,
          true },
        { "an error line", service + QByteArrayList { "NOPE" }, {}, 1, true },
        { "another status", service + QByteArrayList { "GET" }, {}, 3, true },
        { "nothing",
          service + QByteArrayList { "SET", "x", "y" },
          { "SetValue a(sv) ([('x', <'y'>)],)" },
          0,
          false },
        { "no connection", { "com.varn.nobody", "/", "SERVERSTAT" }, {}, 1, true },
        { "the usage text", { "-h" }, {}, 1, true },
    };
    using Output = Program::Output;
    for (const Request &request : requests) {
        const auto row = [&request](const char *state, Output output, int status) {
            QTest::addRow("%s, %s", request.name, state)
                << request.words << request.calls << output << status;
        };
        row("no standard output", Output::Closed, request.status);
        row("a full device", Output::Full, request.status);
        row("a pipe that nobody reads", Output::LeftPipe,
            request.prints ? 256 + SIGPIPE : request.status);
    }
}

void tst_Output::whatIsPrintedIsLost()
{
    QFETCH(QByteArrayList, words);
    QFETCH(QByteArrayList, calls);
    QFETCH(Program::Output, output);
    QFETCH(int, status);
    FakeService service;
    prepare(service);
    Program program(MOVRA_PROGRAM, words, busEnvironment(), output);
    QVERIFY(program.waitForEnd());
    QCOMPARE(service.waitForCalls(calls.size()), calls);
    QCOMPARE(program.err, QByteArray());
    QCOMPARE(program.status, status);
}

void tst_Output::theMonitorContinues_data()
{
    QTest::addColumn<Program::Output>("output");
    QTest::newRow("no standard output") << Program::Output::Closed;
    QTest::newRow("a full device") << Program::Output::Full;
}

void tst_Output::theMonitorContinues()
{
    QFETCH(Program::Output, output);
    FakeService service;
    Program monitor(MOVRA_PROGRAM, { "com.varn.tul", "/", "SIG" }, busEnvironment(), output);
    QVERIFY(waitUntilListening(service));
    for (int i = 0; i < 100; ++i) {
        service.emitSignal("SigInfo", "('a line that is longer than a number of eight bytes',)");
    }
    // This run ends after all of them.
    Program last(MOVRA_PROGRAM, { "com.varn.tul", "/", "SERVERSTAT" }, busEnvironment());
    QVERIFY(last.waitForEnd());
    QVERIFY(monitor.runs());
    QCOMPARE(service.matchRules("com.varn.tul").size(), 7);
    monitor.send(SIGTERM);
    QVERIFY(monitor.waitForEnd());
    QCOMPARE(monitor.err.count('\n'), 1);
    QCOMPARE(monitor.status, 256 + SIGTERM);
}

void tst_Output::aMonitorWithoutAnyStreamListens()
{
    FakeService service;
    Program monitor(
        "sh", QByteArrayList { "-c", "exec \"$0\" com.varn.tul / SIG <&- >&- 2>&-", MOVRA_PROGRAM },
        busEnvironment());
    // Printed text must not be written to the connection, or the bus would close it.
    QVERIFY(waitUntilListening(service));
    service.emitSignal("SigInfo", "('x',)");
    Program last(MOVRA_PROGRAM, { "com.varn.tul", "/", "SERVERSTAT" }, busEnvironment());
    QVERIFY(last.waitForEnd());
    QCOMPARE(service.matchRules("com.varn.tul").size(), 7);
    monitor.send(SIGTERM);
    QVERIFY(monitor.waitForEnd());
    QCOMPARE(monitor.status, 256 + SIGTERM);
}

void tst_Output::nonBlockingOutputReceivesAll_data()
{
    QTest::addColumn<QByteArrayList>("words");
    QTest::addColumn<Program::Output>("output");
    for (const QByteArrayList &words :
         { QByteArrayList { "GET", "x" }, { "LIST", "CONFIGS" }, { "DBG", "GET_IDS" } }) {
        QTest::addRow("%s to a pipe", words.first().constData())
            << words << Program::Output::NonBlockingPipe;
        QTest::addRow("%s to a socket", words.first().constData())
            << words << Program::Output::NonBlockingSocket;
    }
}

void tst_Output::nonBlockingOutputReceivesAll()
{
    QFETCH(QByteArrayList, words);
    QFETCH(Program::Output, output);
    // More than a pipe or a socket holds.
    const QByteArray text(1000000, 'x');
    const int count = 10003;
    const QByteArray id(40, 'i');
    const QByteArray furtherId = ", '" + id + '\'';
    const QByteArray ids = "(['" + id + '\'' + furtherId.repeated(count - 1) + "],)";
    FakeService service;
    service.answer("GetValue", "(<'" + text + "'>,)");
    service.answer("ListConfigIds", ids);
    service.answer("DbgLogGetIds", ids);
    Program program(MOVRA_PROGRAM, QByteArrayList { "com.varn.tul", "/" } + words, busEnvironment(),
                    output);
    // Wait until the stream is full. The program must not change flags that others share.
    QVERIFY(program.waitUntilStalled());
    QFile descriptor(QStringLiteral("/proc/%1/fdinfo/1").arg(program.processId()));
    QVERIFY(descriptor.open(QIODevice::ReadOnly));
    const QByteArray flags = descriptor.readAll().split('\n').at(1).mid(6).trimmed();
    QVERIFY((flags.toInt(nullptr, 8) & O_NONBLOCK) != 0);
    QVERIFY(program.waitForEnd());
    const QByteArray line = id + '\n';
    const QByteArray expected = words.first() == "GET" ? text + '\n' : line.repeated(count);
    QVERIFY2(program.out == expected, QByteArray::number(program.out.size()).constData());
    QCOMPARE(program.err, QByteArray());
    QCOMPARE(program.status, 0);
}

QTEST_GUILESS_MAIN(tst_Output)
#include "tst_output.moc"
