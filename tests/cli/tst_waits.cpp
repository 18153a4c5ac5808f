// SPDX-License-Identifier: MIT
// A command without an answer ends after 25 seconds. So do both programs on a bus that does not
// respond at the start.
#include "tests/support/commandforms.h"
#include "tests/support/cutbus.h"
#include "tests/support/movrarun.h"
#include "tests/support/privatebus.h"

#include <QTest>

#include <algorithm>
#include <chrono>
#include <csignal>
#include <future>
#include <memory>

namespace
{

/// A program whose end a thread awaits, so that its time is known.
struct Watched {
    std::unique_ptr<Program> program;
    std::future<bool> ends;

    Watched(const QByteArray &file, const QByteArrayList &arguments, const QByteArray &bus)
        : program(std::make_unique<Program>(file, arguments, busEnvironment(bus)))
        , ends(std::async(std::launch::async, [run = program.get()] { return run->waitForEnd(); }))
    {
    }
};

struct Run {
    CommandForm form;
    Watched watched;
};

/// Starts each form against a service that does not answer, and waits until the calls have arrived.
void start(std::vector<Run> &runs, const std::vector<CommandForm> &forms, const QByteArray &bus,
           FakeService &service)
{
    QByteArrayList expected;
    for (const CommandForm &form : forms) {
        service.ignore(form.member);
        expected.append(form.call);
        runs.push_back({ form, { MOVRA_PROGRAM, requestOf(form), bus } });
    }
    QByteArrayList calls = service.waitForCalls(expected.size());
    std::sort(calls.begin(), calls.end());
    std::sort(expected.begin(), expected.end());
    QCOMPARE(calls, expected);
}

void endsLate(Watched &watched, const char *name, const QByteArray &out, const QByteArray &err,
              int status)
{
    QVERIFY2(watched.ends.get(), name);
    const Program &program = *watched.program;
    QCOMPARE(program.out, out);
    QCOMPARE(program.err, err);
    QCOMPARE(program.status, status);
    const std::chrono::duration<double> whole = program.ended - program.started;
    // Qt's coarse timers may expire 5 in 100 early. Half a minute would be enough, but machines are
    // busy.
    QVERIFY2(whole.count() >= 23.75 && whole.count() < 60,
             QByteArray::number(whole.count()).constData());
}

void givesUp(Run &run)
{
    endsLate(run.watched, run.form.name, run.form.failed, {}, run.form.failedStatus);
}

const QByteArray notConnected =
    "Client DBus Interface not valid, error: Not connected to D-Bus server\n";

const QByteArray simNotConnected =
    "movra-sim: there is no session bus: Not connected to D-Bus server\n";

/// A program that starts on a bus that does not respond.
struct Start {
    const char *name;
    QByteArray out;
    QByteArray err;
    int status;
    Watched watched;
};

void startMovra(std::vector<Start> &starts, const char *name, const QByteArrayList &words,
                const QByteArray &bus, const QByteArray &out = notConnected, int status = 1)
{
    starts.push_back({ name,
                       out,
                       {},
                       status,
                       { MOVRA_PROGRAM, QByteArrayList { "com.varn.tul", "/" } + words, bus } });
}

} // namespace

class tst_Waits : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    // One test, so that all programs wait at the same time.
    void commandsThatWaitEndAfter25Seconds();
};

void tst_Waits::commandsThatWaitEndAfter25Seconds()
{
    const PrivateBus stopped;
    FakeService onStopped("com.varn.tul", stopped.address);
    std::vector<Run> onStoppedBus;
    start(onStoppedBus, firstFormsThatWait(), stopped.address, onStopped);
    stopped.daemon->send(SIGSTOP);

    std::vector<Start> starts;
    for (const CommandForm &form : firstForms()) {
        startMovra(starts, form.name, form.words, stopped.address);
    }
    startMovra(starts, "SIG", { "SIG" }, stopped.address);
    starts.push_back(
        { "movra-sim", {}, simNotConnected, 3, { MOVRA_SIM_PROGRAM, {}, stopped.address } });

    const QByteArray bus = qgetenv("DBUS_SESSION_BUS_ADDRESS");
    const PrivateBus whole;
    const FakeService onWhole("com.varn.tul", whole.address);
    const CutBus mute(whole.address, "", CutBus::Cut::Silence);
    const CutBus authenticating(whole.address, "AUTH", CutBus::Cut::Silence);
    const CutBus naming(whole.address, "Hello", CutBus::Cut::Silence);
    const CutBus lookingUp(whole.address, "GetNameOwner", CutBus::Cut::Silence);
    startMovra(starts, "a socket that does not respond", { "SERVERSTAT" }, mute.address);
    startMovra(starts, "authentication that never completes", { "SERVERSTAT" },
               authenticating.address);
    startMovra(starts, "no name given", { "SERVERSTAT" }, naming.address);
    // The connection is open, and a call fails, for which Qt has no text.
    startMovra(starts, "no answer about the owner", { "SERVERSTAT" }, lookingUp.address,
               "Client DBus Interface not valid, error: \n");
    const CutBus reading(whole.address, "SetValue", CutBus::Cut::Silence);
    startMovra(starts, "a call that does not fit into the socket",
               QByteArrayList { "SETARRAY", ":x:stringARRAY:", "8" }
                   + QVector<QByteArray>(8, QByteArray(100000, 'x')).toList(),
               reading.address, {}, 0);
#ifndef MOVRA_SANITIZED // the sanitizers need more memory
    // The stack of a thread is larger than all the memory that the program may have, however much
    // it uses.
    const QByteArrayList withoutThreads { "LC_ALL=C", "sh", "-c",
                                          "ulimit -s 900000 && ulimit -v 500000 && exec \"$@\"",
                                          "sh" };
    const QByteArray noThread =
        "QThread::start: Thread creation error (Resource temporarily unavailable)\n";
    starts.push_back(
        { "movra without threads",
          notConnected,
          noThread,
          1,
          { "/usr/bin/env",
            withoutThreads + QByteArrayList { MOVRA_PROGRAM, "com.varn.tul", "/", "SIG" }, bus } });
    starts.push_back(
        { "movra-sim without threads",
          {},
          noThread + simNotConnected,
          3,
          { "/usr/bin/env", withoutThreads + QByteArrayList { MOVRA_SIM_PROGRAM }, bus } });
#endif

    FakeService silent("com.varn.tul", bus);
    std::vector<Run> onSilentService;
    start(onSilentService, commandForms(), bus, silent);

    for (Run &run : onSilentService) {
        if (!run.form.waits) {
            QVERIFY2(run.watched.ends.get(), run.form.name);
            QCOMPARE(run.watched.program->out, QByteArray());
            QCOMPARE(run.watched.program->err, QByteArray());
            QCOMPARE(run.watched.program->status, 0);
        }
    }
    for (Run &run : onSilentService) {
        if (run.form.waits) {
            givesUp(run);
        }
    }
    for (Run &run : onStoppedBus) {
        givesUp(run);
    }
    for (Start &start : starts) {
        endsLate(start.watched, start.name, start.out, start.err, start.status);
    }
    stopped.daemon->send(SIGKILL);
}

QTEST_GUILESS_MAIN(tst_Waits)
#include "tst_waits.moc"
