// SPDX-License-Identifier: MIT
// What each command form prints, and how it ends, when the service is not there, refuses, answers
// with another type, or leaves.
#include "tests/support/commandforms.h"
#include "tests/support/movrarun.h"

#include <QTest>

#include <functional>
#include <memory>

namespace
{

/// The outcome of the runs in a state. A reply of another type is a failed call only for the forms
/// that read the reply.
enum class Outcome { NotConnected, NotSent, Failed, OtherType, Answered };

struct State {
    const char *name;
    QByteArray service; ///< "@": the service of the run
    QByteArray path;
    Outcome outcome;
    QByteArray text; ///< after `error:`, or after `err=`
    std::function<void(FakeService &, const CommandForm &)> prepare {}; ///< lets the service answer
};

auto refuses(const char *error)
{
    return [=](FakeService &service, const CommandForm &form) {
        service.refuse(form.member, QByteArray("org.freedesktop.DBus.Error.") + error,
                       "the reply's own text is never shown");
    };
}

auto replies(const char *body)
{
    return
        [=](FakeService &service, const CommandForm &form) { service.answer(form.member, body); };
}

const std::vector<State> &states()
{
    using Is = Outcome;
    // clang-format off
    static const std::vector<State> table {
        { "nobody owns the name", "com.varn.nobody", "/", Is::NotConnected, "" },
        { "a malformed name", "a..b", "/", Is::NotConnected, "Invalid service name: a..b" },
        { "a malformed path", "@", "no/slash", Is::NotConnected, "Invalid object path: no/slash" },
        { "an empty path", "@", "", Is::NotSent, "Object path cannot be empty" },
        { "a service that has left before the call", ":1.999999", "/", Is::NotSent, "" },
        { "no such object", "@", "/", Is::Failed, "", refuses("UnknownObject") },
        { "nothing at that path", "@", "/nothing/here", Is::Failed, "", refuses("UnknownObject") },
        { "no such interface", "@", "/", Is::Failed, "", refuses("UnknownInterface") },
        { "no such method", "@", "/", Is::Failed, "", refuses("UnknownMethod") },
        { "an empty reply", "@", "/", Is::OtherType, "", replies("()") },
        { "a reply of another type", "@", "/", Is::OtherType, "", replies("(objectpath '/a',)") },
        { "a reply with more after what is expected", "@", "/", Is::Answered, "",
          [](FakeService &service, const CommandForm &form) {
              const bool isEmpty = form.answer == "()";
              service.answer(form.member,
                             (isEmpty ? "(" : form.answer.chopped(1)) + "'more', <1>)");
          } },
        { "leaves during the call", "@", "/", Is::Failed, "",
          [](FakeService &service, const CommandForm &form) { service.leaveOn(form.member); } },
        { "leaves after the answer", "@", "/", Is::Answered, "",
          [](FakeService &service, const CommandForm &form) {
              service.answer(form.member, form.answer);
              service.leaveAfterAnswer();
          } },
    };
    // clang-format on
    return table;
}

MovraRow rowOf(const State &state, const CommandForm &form)
{
    MovraRow row { QByteArray(state.name) + ": " + form.name,
                   QByteArrayList { state.service, state.path } + form.words,
                   {},
                   {},
                   {},
                   0 };
    if (state.prepare) {
        row.prepare = [=](FakeService &service) { state.prepare(service, form); };
    }
    if (state.outcome == Outcome::NotConnected) {
        row.out = "Client DBus Interface not valid, error: " + state.text + '\n';
        row.status = 1;
        return row;
    }
    if (state.outcome != Outcome::NotSent) {
        row.calls.append((state.path == "/" ? QByteArray() : state.path + ' ') + form.call);
    }
    if (state.outcome == Outcome::Answered
        || (state.outcome == Outcome::OtherType && form.signature.isEmpty())) {
        row.out = form.out;
    } else {
        row.out = QByteArray(form.failed).replace("err=\n", "err=" + state.text + '\n');
        row.status = form.failedStatus;
    }
    return row;
}

std::vector<MovraRow> rows()
{
    std::vector<MovraRow> table;
    for (const State &state : states()) {
        for (const CommandForm &form : commandForms()) {
            table.push_back(rowOf(state, form));
        }
        // The monitor calls nothing, so that only its connection can fail.
        if (state.outcome == Outcome::NotConnected) {
            table.push_back(rowOf(state, monitorForm()));
        }
    }
    return table;
}

} // namespace

class tst_ServiceFailures : public MovraRowsTest
{
    Q_OBJECT

public:
    tst_ServiceFailures()
        : MovraRowsTest(rows())
    {
    }

private Q_SLOTS:
    void aRestartDuringTheCallFailsItAndRepeatsNothing();
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
