// SPDX-License-Identifier: MIT
// What each command form prints, and how it ends, when the service is not there, refuses or leaves.
#include "tests/support/commandforms.h"
#include "tests/support/movrarun.h"

#include <QTest>

#include <memory>

namespace
{

/// How the runs of a state end: before a call, or as the call's outcome says.
enum class Outcome { NotConnected, Answered, Failed };

struct State {
    const char *name;
    QByteArray service; ///< "@" stands for the run's own
    QByteArray path;
    QByteArray error; ///< that the service answers with; may be empty
    bool leaves; ///< instead of answering, or right behind the answer
    bool calls; ///< whether the call reaches the service
    Outcome outcome;
    QByteArray text; ///< behind `error:`, or behind `err=`
};

const std::vector<State> &states()
{
    using Is = Outcome;
    const QByteArray error = "org.freedesktop.DBus.Error.";
    // clang-format off
    static const std::vector<State> table {
        { "nobody owns the name", "com.varn.nobody", "/", {}, false, false, Is::NotConnected, "" },
        { "a malformed name", "a..b", "/", {}, false, false, Is::NotConnected,
          "Invalid service name: a..b" },
        { "a malformed path", "@", "no/slash", {}, false, false, Is::NotConnected,
          "Invalid object path: no/slash" },
        { "an empty path", "@", "", {}, false, false, Is::Failed, "Object path cannot be empty" },
        { "gone before the call", ":1.999999", "/", {}, false, false, Is::Failed, "" },
        { "no such object", "@", "/", error + "UnknownObject", false, true, Is::Failed, "" },
        { "nothing at that path", "@", "/nothing/here", error + "UnknownObject", false, true,
          Is::Failed, "" },
        { "no such interface", "@", "/", error + "UnknownInterface", false, true, Is::Failed, "" },
        { "no such method", "@", "/", error + "UnknownMethod", false, true, Is::Failed, "" },
        { "leaves during the call", "@", "/", {}, true, true, Is::Failed, "" },
        { "leaves after the answer", "@", "/", {}, true, true, Is::Answered, "" },
    };
    // clang-format on
    return table;
}

Prepare prepare(const State &state, const CommandForm &form)
{
    return [=](FakeService &service) {
        if (state.outcome == Outcome::Answered) {
            service.answer(form.member, form.answer);
            service.leaveAfterAnswer();
        } else if (state.leaves) {
            service.leaveOn(form.member);
        } else {
            service.refuse(form.member, state.error, "the reply's own text is never shown");
        }
    };
}

MovraRow cell(const State &state, const CommandForm &form)
{
    MovraRow row {
        QByteArray(state.name) + ": " + form.name,
        QByteArrayList { state.service, state.path } + form.words,
        prepare(state, form),
        {},
        {},
        0,
    };
    if (state.outcome == Outcome::NotConnected) {
        row.out = "Client DBus Interface not valid, error: " + state.text + '\n';
        row.status = 1;
    } else if (state.outcome == Outcome::Answered) {
        row.out = form.out;
    } else {
        row.out = QByteArray(form.failed).replace("err=\n", "err=" + state.text + '\n');
        row.status = form.failedStatus;
    }
    if (state.calls) {
        row.calls.append((state.path == "/" ? QByteArray() : state.path + ' ') + form.call);
    }
    return row;
}

std::vector<MovraRow> rows()
{
    std::vector<MovraRow> cells;
    for (const State &state : states()) {
        for (const CommandForm &form : commandForms()) {
            cells.push_back(cell(state, form));
        }
        // The monitor calls nothing, so nothing but the connection can fail it.
        if (state.outcome == Outcome::NotConnected) {
            cells.push_back(cell(state, monitorForm()));
        }
    }
    return cells;
}

} // namespace

class tst_ServiceFailures : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void run_data() { table.addTestData(); }
    void run()
    {
        QFETCH(int, row);
        table.check(row);
    }
    void aRestartDuringTheCallFailsItAndRepeatsNothing();

private:
    MovraRows table { rows() };
};

void tst_ServiceFailures::aRestartDuringTheCallFailsItAndRepeatsNothing()
{
    struct Run {
        CommandForm form;
        QByteArray name;
        std::unique_ptr<FakeService> service;
        std::unique_ptr<Program> program;
    };
    std::vector<Run> runs;
    for (const CommandForm &form : commandForms()) {
        const QByteArray name =
            "com.varn.restarts" + QByteArray::number(static_cast<int>(runs.size()));
        auto service = std::make_unique<FakeService>(name);
        service->ignore(form.member);
        auto program = std::make_unique<Program>(
            MOVRA_PROGRAM, QByteArrayList { name, "/" } + form.words, busEnvironment());
        runs.push_back({ form, name, std::move(service), std::move(program) });
    }
    for (Run &run : runs) {
        QCOMPARE(run.service->waitForCalls(1), QByteArrayList { run.form.call });
        run.service.reset();
        run.service = std::make_unique<FakeService>(run.name);
        run.service->answer(run.form.member, run.form.answer);
    }
    for (Run &run : runs) {
        QVERIFY2(run.program->waitForEnd(), run.form.name);
        QCOMPARE(run.program->out, run.form.failed);
        QCOMPARE(run.program->err, QByteArray());
        QCOMPARE(run.program->status, run.form.failedStatus);
        QCOMPARE(run.service->takeCalls(), QByteArrayList());
    }
}

QTEST_GUILESS_MAIN(tst_ServiceFailures)
#include "tst_servicefailures.moc"
