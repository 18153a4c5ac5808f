// SPDX-License-Identifier: MIT
// Repeated parallel runs of every form with one service: MOVRA_ENDURANCE_RUNS runs of each form (10
// unless set). All runs of a form have the same output, call and status.
#include "tests/endurance/measure.h"
#include "tests/support/commandforms.h"
#include "tests/support/movrarun.h"
#include "tests/support/setting.h"

#include <QTest>

#include <algorithm>
#include <chrono>
#include <memory>

class tst_Runs : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void everyFormTheSameEachTime();
};

void tst_Runs::everyFormTheSameEachTime()
{
    using Milliseconds = std::chrono::duration<double, std::milli>;
    constexpr int ofEachAtATime = 2;
    const int runsOfEach = setting("MOVRA_ENDURANCE_RUNS", 10);
    const std::vector<CommandForm> &forms = commandForms();
    FakeService service;
    answerAll(service);

    int done = 0;
    Milliseconds longest {};
    const auto begin = std::chrono::steady_clock::now();
    for (int left = runsOfEach; left > 0; left -= ofEachAtATime) {
        std::vector<std::unique_ptr<Program>> programs;
        QByteArrayList expectedCalls;
        for (int i = std::min(left, ofEachAtATime); i > 0; --i) {
            for (const CommandForm &form : forms) {
                programs.push_back(
                    std::make_unique<Program>(MOVRA_PROGRAM, requestOf(form), busEnvironment()));
                expectedCalls += form.call;
            }
        }
        for (std::size_t i = 0; i < programs.size(); ++i) {
            const CommandForm &form = forms[i % forms.size()];
            Program &program = *programs[i];
            const QByteArray about =
                QByteArray(form.name) + ", after " + QByteArray::number(done) + " runs";
            QVERIFY2(program.waitForEnd(), about.constData());
            QVERIFY2(program.out == form.out, (about + ": " + program.out).constData());
            QVERIFY2(program.err.isEmpty(), (about + ": " + program.err).constData());
            QVERIFY2(program.status == 0,
                     (about + ": " + QByteArray::number(program.status)).constData());
            longest = std::max(longest, Milliseconds(program.ended - program.started));
            ++done;
        }
        QByteArrayList calls = service.waitForCalls(expectedCalls.size());
        // Calls of parallel runs arrive in any order.
        std::sort(calls.begin(), calls.end());
        std::sort(expectedCalls.begin(), expectedCalls.end());
        QCOMPARE(calls, expectedCalls);
    }
    const std::chrono::duration<double> time = std::chrono::steady_clock::now() - begin;
    figure("runs.rate", done / time.count(), "runs/s");
    figure("runs.longest", longest.count(), "ms");
}

QTEST_GUILESS_MAIN(tst_Runs)
#include "tst_runs.moc"
