// SPDX-License-Identifier: MIT
// Commands that do not wait for a reply, while Qt D-Bus's thread needs more than half a second to
// send a call.
#include "tests/support/commandforms.h"
#include "tests/support/fakeservice.h"
#include "tests/support/movrarun.h"

#include <QTest>

#include <algorithm>
#include <memory>
#include <vector>

class tst_SlowThreads : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void noCallIsLost();
};

void tst_SlowThreads::noCallIsLost()
{
    FakeService service;
    std::vector<std::unique_ptr<Program>> programs;
    QByteArrayList expected;
    for (const CommandForm &form : commandForms()) {
        if (!form.waits) {
            programs.push_back(std::make_unique<Program>(
                MOVRA_PROGRAM, requestOf(form),
                busEnvironment() + QByteArrayList { "LD_PRELOAD=" MOVRA_SLOW_THREADS }));
            expected.append(form.call);
        }
    }
    QByteArrayList calls = service.waitForCalls(expected.size());
    std::sort(calls.begin(), calls.end());
    std::sort(expected.begin(), expected.end());
    QCOMPARE(calls, expected);
    for (const auto &program : programs) {
        QVERIFY(program->waitForEnd());
        QCOMPARE(program->out + program->err, QByteArray());
        QCOMPARE(program->status, 0);
    }
}

QTEST_GUILESS_MAIN(tst_SlowThreads)
#include "tst_slowthreads.moc"
