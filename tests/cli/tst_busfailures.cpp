// SPDX-License-Identifier: MIT
// What each command prints, and how it ends, when there is no bus, when the bus refuses, and when
// it stops or dies on the way. Every bus here is the test's own.
#include "tests/support/commandforms.h"
#include "tests/support/listening.h"
#include "tests/support/movrarun.h"
#include "tests/support/privatebus.h"

#include <QTest>

#include <csignal>
#include <memory>
#include <stdexcept>

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

void failsAsItDoes(const CommandForm &form, Program &program)
{
    endsWith(program, form.failed, form.failedStatus);
}

/// A command that waits on a bus of its own and ends when its service leaves. Start it before the
/// programs under test: those that still run after its end did not end as it does.
class ReferenceRun
{
public:
    ReferenceRun()
        : service(std::make_unique<FakeService>("com.varn.tul", bus.address))
    {
        service->ignore("DBusServerStatus");
        program = std::make_unique<Program>(MOVRA_PROGRAM,
                                            QByteArrayList { "com.varn.tul", "/", "SERVERSTAT" },
                                            busEnvironment(bus.address));
        if (service->waitForCalls(1) != QByteArrayList { "DBusServerStatus" }) {
            throw std::runtime_error("the reference run made no call");
        }
    }
    void end()
    {
        service.reset();
        endsWith(*program, "Reply Not Valid     err=\n", 0);
    }

private:
    PrivateBus bus;
    std::unique_ptr<FakeService> service;
    std::unique_ptr<Program> program;
};

/// The number of lines on standard error is the monitor's one warning, or none.
void waitsUntilItIsEnded(Program &program, int warnings = 0)
{
    QVERIFY(program.runs());
    program.send(SIGTERM);
    QVERIFY(program.waitForEnd());
    QCOMPARE(program.out, QByteArray());
    QCOMPARE(program.err.count('\n'), warnings);
    QCOMPARE(program.status, 256 + SIGTERM);
}

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
    void aMessageThatIsTooLong();
    void aBusThatStoppedBeforeTheStart();
    void theMonitorOutlastsTheBus_data() { addBusEnds(); }
    void theMonitorOutlastsTheBus();
    void aBusThatWithholdsASignal();
    void theHalfSecondOutlastsTheBus_data() { addBusEnds(); }
    void theHalfSecondOutlastsTheBus();

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
    QTest::newRow("nobody listens")
        << QByteArrayList { "DBUS_SESSION_BUS_ADDRESS=unix:path=/nonexistent" };
    QTest::newRow("no address at all in the text")
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
    QTest::newRow("no room for a connection")
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
    QTest::newRow("no replies may be awaited")
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
    // A refused call never arrives; the others may still be on their way to the service.
    const int count = callsArrive ? static_cast<int>(firstForms().size()) : 0;
    QCOMPARE(service.waitForCalls(count).size(), count);
}

void tst_BusFailures::aMessageThatIsTooLong()
{
    ReferenceRun reference;
    const PrivateBus bus("<limit name='max_message_size'>2048</limit>");
    FakeService service("com.varn.tul", bus.address);
    QByteArrayList array { "com.varn.tul", "/", "SETARRAY", ":stringARRAY:", "512" };
    for (int i = 0; i < 512; ++i) {
        array.append("word");
    }
    Program writes(MOVRA_PROGRAM, array, busEnvironment(bus.address));
    Program reads(MOVRA_PROGRAM, { "com.varn.tul", "/", "GET", QByteArray(5000, 'x') },
                  busEnvironment(bus.address));
    // The bus ends the connection, which to Qt D-Bus is as if the bus had died.
    endsWith(writes, "", 0);
    reference.end();
    waitsUntilItIsEnded(reads);
    QCOMPARE(service.takeCalls(), QByteArrayList());
}

void tst_BusFailures::aBusThatStoppedBeforeTheStart()
{
    ReferenceRun reference;
    const PrivateBus bus;
    bus.daemon->send(SIGSTOP);
    std::vector<CommandForm> all = firstForms();
    all.push_back(monitorForm());
    Runs runs(all, busEnvironment(bus.address));
    reference.end();
    runs.forEach(
        [](const CommandForm & /*form*/, Program &program) { waitsUntilItIsEnded(program); });
}

void tst_BusFailures::theMonitorOutlastsTheBus()
{
    QFETCH(int, signal);
    ReferenceRun reference;
    const PrivateBus bus;
    FakeService service("com.varn.tul", bus.address);
    Program program(MOVRA_PROGRAM, requestOf(monitorForm()), busEnvironment(bus.address));
    QVERIFY(waitUntilListening(service));
    service.emitSignal("SigInfo", "('before',)");
    QVERIFY(program.waitForLines(1));
    QCOMPARE(program.out, QByteArray("===Client sigInfoSlot  msg=before\n"));
    program.forgetOutput();
    bus.daemon->send(signal);
    reference.end();
    waitsUntilItIsEnded(program, 1);
    bus.daemon->send(SIGKILL);
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

void tst_BusFailures::theHalfSecondOutlastsTheBus()
{
    QFETCH(int, signal);
    struct Run {
        CommandForm form;
        std::unique_ptr<PrivateBus> bus;
        std::unique_ptr<Program> program;
    };
    std::vector<Run> runs;
    for (const CommandForm &form : firstForms()) {
        auto bus = std::make_unique<PrivateBus>();
        auto service = std::make_unique<FakeService>("com.varn.tul", bus->address);
        // Upon an error everybody who waits prints a line.
        service->refuse(form.member, "varn.pim.Error.Refused", "no");
        auto program =
            std::make_unique<Program>(MOVRA_PROGRAM, requestOf(form), busEnvironment(bus->address));
        QCOMPARE(service->waitForCalls(1), QByteArrayList { form.call });
        QVERIFY(program->waitForLines(form.failed.count('\n')));
        service.reset(); // while the bus can release its name
        bus->daemon->send(signal);
        runs.push_back({ form, std::move(bus), std::move(program) });
    }
    for (const Run &run : runs) {
        failsAsItDoes(run.form, *run.program);
    }
}

QTEST_GUILESS_MAIN(tst_BusFailures)
#include "tst_busfailures.moc"
