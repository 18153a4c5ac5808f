// SPDX-License-Identifier: MIT
// What each command prints, and how it ends, when there is no bus, when the bus refuses, and when
// it stops or dies at some moment. Each test starts its own buses.
#include "tests/support/commandforms.h"
#include "tests/support/cutbus.h"
#include "tests/support/listening.h"
#include "tests/support/movrarun.h"
#include "tests/support/privatebus.h"

#include <QTest>

#include <csignal>
#include <memory>

namespace
{

/// Programs that run side by side, one for each form.
class Runs
{
public:
    Runs(std::vector<CommandForm> ofForms, const QByteArrayList &environment)
        : forms(std::move(ofForms))
    {
        for (const CommandForm &form : forms) {
            programs.push_back(
                std::make_unique<Program>(MOVRA_PROGRAM, requestOf(form), environment));
        }
    }

    template <typename Check> void forEach(Check check)
    {
        for (std::size_t i = 0; i < forms.size() && !QTest::currentTestFailed(); ++i) {
            check(forms[i], *programs[i]);
        }
    }

private:
    std::vector<CommandForm> forms;
    std::vector<std::unique_ptr<Program>> programs;
};

void endsWith(Program &program, const QByteArray &out, int status)
{
    QVERIFY(program.waitForEnd());
    QCOMPARE(program.out, out);
    QCOMPARE(program.err, QByteArray());
    QCOMPARE(program.status, status);
}

/// Runs a request on a bus that closes the connection when the call arrives.
void endsWithTheBus(const QByteArrayList &request, const QByteArray &bus)
{
    int status = 0;
    // On a busy machine the half second may be over before the bus closes the connection.
    for (int attempts = 20; status == 0 && attempts > 0; --attempts) {
        Program program(MOVRA_PROGRAM, request, busEnvironment(bus));
        QVERIFY(program.waitForEnd());
        QCOMPARE(program.out, QByteArray());
        QCOMPARE(program.err, QByteArray());
        status = program.status;
    }
    QCOMPARE(status, 1);
}

void failsAsItDoes(const CommandForm &form, Program &program)
{
    endsWith(program, form.failed, form.failedStatus);
}

/// Programs in their half second, each with its own bus, which then gets a signal.
class HalfSeconds
{
public:
    explicit HalfSeconds(int signalNumber)
        : signal(signalNumber)
    {
    }

    /// Starts a program and sends its bus the signal once the service has refused the call of the
    /// form, if there is one, and the program has printed all of `out`.
    void add(const CommandForm &form, const QByteArray &out, int status)
    {
        Run run { out, status, std::make_unique<PrivateBus>(), nullptr };
        auto service = std::make_unique<FakeService>("com.varn.tul", run.bus->address);
        service->refuse(form.member, "varn.pim.Error.Refused", "no");
        run.program = std::make_unique<Program>(MOVRA_PROGRAM, requestOf(form),
                                                busEnvironment(run.bus->address));
        if (!form.call.isEmpty()) {
            QCOMPARE(service->waitForCalls(1), QByteArrayList { form.call });
        }
        QVERIFY(run.program->waitForLines(out.count('\n')));
        service.reset(); // while the bus can release its name
        run.bus->daemon->send(signal);
        runs.push_back(std::move(run));
    }

    void check()
    {
        for (const Run &run : runs) {
            endsWith(*run.program, run.out, run.status);
        }
    }

private:
    struct Run {
        QByteArray out;
        int status;
        std::unique_ptr<PrivateBus> bus;
        std::unique_ptr<Program> program;
    };
    int signal;
    std::vector<Run> runs;
};

void addBusEnds()
{
    QTest::addColumn<int>("signal");
    QTest::newRow("the bus dies") << SIGKILL;
    QTest::newRow("the bus stops") << SIGSTOP;
}

} // namespace

class tst_BusFailures : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void withoutABusNothingRuns_data();
    void withoutABusNothingRuns();
    void aBusThatRefusesConnections_data();
    void aBusThatRefusesConnections();
    void aBusThatRefusesCalls_data();
    void aBusThatRefusesCalls();
    void aBusThatDiesAtTheStart_data();
    void aBusThatDiesAtTheStart();
    void aBusThatDiesWhileTheMonitorSubscribes_data();
    void aBusThatDiesWhileTheMonitorSubscribes();
    void aBusThatDiesDuringTheWait();
    void aMessageThatIsTooLong_data();
    void aMessageThatIsTooLong();
    void theMonitorPrintsAllAndEndsWithTheBus();
    void theMonitorContinuesWithTheBus();
    void aBusThatWithholdsASignal();
    void theHalfSecondAfterAnAnswer_data() { addBusEnds(); }
    void theHalfSecondAfterAnAnswer();
    void theHalfSecondAfterAnErrorLine_data() { addBusEnds(); }
    void theHalfSecondAfterAnErrorLine();
    void aBusThatDiesOnACallWithoutAWait();
    void aBusThatStopsAfterACallWithoutAWait();

private:
    static void noCommandConnects(const QByteArrayList &environment);
};

void tst_BusFailures::noCommandConnects(const QByteArrayList &environment)
{
    std::vector<CommandForm> all = firstForms();
    all.push_back(monitorForm());
    Runs(all, environment).forEach([](const CommandForm & /*form*/, Program &program) {
        endsWith(program, "Client DBus Interface not valid, error: Not connected to D-Bus server\n",
                 1);
    });
}

void tst_BusFailures::withoutABusNothingRuns_data()
{
    QTest::addColumn<QByteArrayList>("environment");
    QTest::newRow("no address") << QByteArrayList();
    QTest::newRow("an address without a bus")
        << QByteArrayList { "DBUS_SESSION_BUS_ADDRESS=unix:path=/nonexistent" };
    QTest::newRow("a text that is no address")
        << QByteArrayList { "DBUS_SESSION_BUS_ADDRESS=garbage" };
}

void tst_BusFailures::withoutABusNothingRuns()
{
    QFETCH(QByteArrayList, environment);
    noCommandConnects(environment + baseEnvironment());
}

void tst_BusFailures::aBusThatRefusesConnections_data()
{
    QTest::addColumn<QByteArray>("rules");
    QTest::newRow("no user may connect")
        << QByteArray("<policy context='mandatory'><deny user='*'/></policy>");
    QTest::newRow("no further connection is allowed")
        << QByteArray("<limit name='max_completed_connections'>0</limit>");
}

void tst_BusFailures::aBusThatRefusesConnections()
{
    QFETCH(QByteArray, rules);
    const PrivateBus bus(rules);
    noCommandConnects(busEnvironment(bus.address));
}

void tst_BusFailures::aBusThatRefusesCalls_data()
{
    QTest::addColumn<QByteArray>("rules");
    QTest::addColumn<bool>("callsArrive");
    QTest::newRow("calls may not be sent")
        << QByteArray("<policy context='mandatory'><deny send_interface='varn.pim' "
                      "send_type='method_call'/></policy>")
        << false;
    QTest::newRow("calls may not be received")
        << QByteArray("<policy context='mandatory'><deny receive_interface='varn.pim' "
                      "receive_type='method_call'/></policy>")
        << false;
    QTest::newRow("no reply may be pending")
        << QByteArray("<limit name='max_replies_per_connection'>0</limit>") << false;
    QTest::newRow("replies may not take long")
        << QByteArray("<limit name='reply_timeout'>100</limit>") << true;
}

void tst_BusFailures::aBusThatRefusesCalls()
{
    QFETCH(QByteArray, rules);
    QFETCH(bool, callsArrive);
    const PrivateBus bus(rules);
    FakeService service("com.varn.tul", bus.address);
    for (const CommandForm &form : firstForms()) {
        service.ignore(form.member);
    }
    Runs(firstForms(), busEnvironment(bus.address)).forEach(failsAsItDoes);
    // A refused call never arrives. Other calls may arrive after the programs have ended.
    const int count = callsArrive ? static_cast<int>(firstForms().size()) : 0;
    QCOMPARE(service.waitForCalls(count).size(), count);
}

void tst_BusFailures::aBusThatDiesAtTheStart_data()
{
    QTest::addColumn<QByteArray>("text");
    QTest::newRow("while it authenticates") << QByteArray("AUTH");
    QTest::newRow("while it assigns a unique name") << QByteArray("Hello");
    QTest::newRow("while it looks up the service") << QByteArray("GetNameOwner");
}

void tst_BusFailures::aBusThatDiesAtTheStart()
{
    QFETCH(QByteArray, text);
    const PrivateBus bus;
    const FakeService service("com.varn.tul", bus.address);
    const CutBus dying(bus.address, text, CutBus::Cut::Close);
    noCommandConnects(busEnvironment(dying.address));
}

void tst_BusFailures::aBusThatDiesWhileTheMonitorSubscribes_data()
{
    QTest::addColumn<QByteArray>("text");
    QTest::newRow("to the end of the bus") << QByteArray("org.freedesktop.DBus.Local");
    QTest::newRow("to its first signal") << QByteArray("SigAlarm");
    QTest::newRow("to its last signal") << QByteArray("SigTestCompleteWithData");
}

void tst_BusFailures::aBusThatDiesWhileTheMonitorSubscribes()
{
    QFETCH(QByteArray, text);
    const PrivateBus bus;
    const FakeService service("com.varn.tul", bus.address);
    const CutBus dying(bus.address, text, CutBus::Cut::Close);
    // Several programs, because they notice it at different moments.
    Runs(std::vector<CommandForm>(20, monitorForm()), busEnvironment(dying.address))
        .forEach([](const CommandForm & /*form*/, Program &program) {
            QVERIFY(program.waitForEnd());
            QCOMPARE(program.out, QByteArray());
            QCOMPARE(program.status, 1);
        });
}

void tst_BusFailures::aBusThatDiesDuringTheWait()
{
    const PrivateBus bus;
    FakeService service("com.varn.tul", bus.address);
    for (const CommandForm &form : firstFormsThatWait()) {
        service.ignore(form.member);
    }
    Runs runs(firstFormsThatWait(), busEnvironment(bus.address));
    const int count = static_cast<int>(firstFormsThatWait().size());
    QCOMPARE(service.waitForCalls(count).size(), count);
    bus.daemon->send(SIGKILL);
    runs.forEach([](const CommandForm & /*form*/, Program &program) { endsWith(program, "", 1); });
}

void tst_BusFailures::aMessageThatIsTooLong_data()
{
    const QByteArray text(5000, 'x');
    QTest::addColumn<QByteArrayList>("request");
    QTest::newRow("SET") << QByteArrayList { "SET", ":x:", text };
    QTest::newRow("SETARRAY") << QByteArrayList { "SETARRAY", ":stringARRAY:", "1", text };
    QTest::newRow("NOTIFY") << QByteArrayList { "NOTIFY", "CONFIG", "ADD", text };
    QTest::newRow("GET") << QByteArrayList { "GET", text };
    QTest::newRow("FILE") << QByteArrayList { "FILE", "SAVE", text };
    QTest::newRow("ACTION") << QByteArrayList { "ACTION", text };
    QTest::newRow("DBG") << QByteArrayList { "DBG", "SET", text };
}

void tst_BusFailures::aMessageThatIsTooLong()
{
    QFETCH(QByteArrayList, request);
    const PrivateBus bus("<limit name='max_message_size'>2048</limit>");
    FakeService service("com.varn.tul", bus.address);
    endsWithTheBus(QByteArrayList { "com.varn.tul", "/" } + request, bus.address);
    QCOMPARE(service.takeCalls(), QByteArrayList());
}

void tst_BusFailures::theMonitorPrintsAllAndEndsWithTheBus()
{
    // More than the pipe holds, so that most of them are queued in the monitor.
    constexpr int count = 5000;
    const PrivateBus bus;
    FakeService service("com.varn.tul", bus.address);
    Program program(MOVRA_PROGRAM, requestOf(monitorForm()), busEnvironment(bus.address));
    QVERIFY(waitUntilHeard(program, service));
    QByteArray lines;
    for (int i = 0; i < count; ++i) {
        const QByteArray number = QByteArray::number(i);
        service.emitSignal("SigInfo", "('" + number + "',)", "/", "varn.pim",
                           FakeService::After::MoreFollows);
        lines += "===Client sigInfoSlot  msg=" + number + '\n';
    }
    QVERIFY(service.waitUntilTaken("com.varn.tul"));
    bus.daemon->send(SIGKILL);
    QVERIFY(bus.daemon->waitForEnd());
    QVERIFY(program.waitForEnd());
    QVERIFY(program.out == lines);
    QCOMPARE(program.err.count('\n'), 1); // the warning of every monitor
    QCOMPARE(program.status, 1);
}

void tst_BusFailures::theMonitorContinuesWithTheBus()
{
    const PrivateBus bus;
    FakeService service("com.varn.tul", bus.address);
    Program program(MOVRA_PROGRAM, requestOf(monitorForm()), busEnvironment(bus.address));
    QVERIFY(waitUntilHeard(program, service));
    bus.daemon->send(SIGSTOP);
    service.emitSignal("SigInfo", "('one',)", "/", "varn.pim", FakeService::After::MoreFollows);
    bus.daemon->send(SIGCONT);
    service.emitSignal("SigInfo", "('two',)");
    QVERIFY(program.waitForLines(2));
    QCOMPARE(program.out,
             QByteArray("===Client sigInfoSlot  msg=one\n===Client sigInfoSlot  msg=two\n"));
}

void tst_BusFailures::aBusThatWithholdsASignal()
{
    const PrivateBus bus("<policy context='mandatory'><deny receive_interface='varn.pim' "
                         "receive_member='SigAlarm'/></policy>");
    FakeService service("com.varn.tul", bus.address);
    Program program(MOVRA_PROGRAM, requestOf(monitorForm()), busEnvironment(bus.address));
    QVERIFY(waitUntilListening(service));
    service.emitSignal("SigInfo", "('before',)");
    QVERIFY(program.waitForLines(1));
    service.emitSignal("SigAlarm", "('withheld',)");
    service.emitSignal("SigInfo", "('after',)");
    QVERIFY(program.waitForLines(2));
    QCOMPARE(program.out,
             QByteArray("===Client sigInfoSlot  msg=before\n===Client sigInfoSlot  msg=after\n"));
}

void tst_BusFailures::theHalfSecondAfterAnAnswer()
{
    QFETCH(int, signal);
    HalfSeconds halfSeconds(signal);
    for (const CommandForm &form : firstFormsThatWait()) {
        // Every command that waits prints a line about an error.
        halfSeconds.add(form, form.failed, form.failedStatus);
    }
    halfSeconds.check();
}

void tst_BusFailures::theHalfSecondAfterAnErrorLine()
{
    QFETCH(int, signal);
    HalfSeconds halfSeconds(signal);
    // Nothing is sent, so nothing is lost.
    const auto add = [&halfSeconds](const QByteArrayList &words, int status) {
        CommandForm form {};
        form.words = words;
        halfSeconds.add(form, error(status), status);
    };
    add({ "SET", ":x:" }, 3);
    add({ "SETARRAY", ":x:", "1", "5" }, 2);
    add({ "NOTIFY", "CONFIG" }, 2);
    add({ "GET" }, 3);
    add({ "SERVERCMD", "NO", "1" }, 2);
    add({ "NOPE" }, 1);
    halfSeconds.check();
}

void tst_BusFailures::aBusThatDiesOnACallWithoutAWait()
{
    const PrivateBus bus;
    FakeService service("com.varn.tul", bus.address);
    for (const CommandForm &form : firstForms()) {
        if (!form.waits) {
            const CutBus dying(bus.address, form.member, CutBus::Cut::Close);
            endsWithTheBus(requestOf(form), dying.address);
        }
    }
    QCOMPARE(service.takeCalls(), QByteArrayList());
}

void tst_BusFailures::aBusThatStopsAfterACallWithoutAWait()
{
    HalfSeconds halfSeconds(SIGSTOP);
    for (const CommandForm &form : firstForms()) {
        if (!form.waits) {
            halfSeconds.add(form, "", 0);
        }
    }
    halfSeconds.check();
}

QTEST_GUILESS_MAIN(tst_BusFailures)
#include "tst_busfailures.moc"
