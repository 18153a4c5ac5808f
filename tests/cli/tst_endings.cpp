// SPDX-License-Identifier: MIT
// Signals that end a command: while it waits for its answer, and in the half second after it.
#include "tests/support/commandforms.h"
#include "tests/support/movrarun.h"

#include <QTest>

#include <csignal>

class tst_Endings : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void duringTheWait_data() { addSignals(); }
    void duringTheWait();
    void duringTheHalfSecond_data() { addSignals(); }
    void duringTheHalfSecond();

private:
    static void addSignals();
};

void tst_Endings::addSignals()
{
    QTest::addColumn<int>("signal");
    QTest::newRow("INT") << SIGINT;
    QTest::newRow("TERM") << SIGTERM;
    QTest::newRow("HUP") << SIGHUP;
    QTest::newRow("PIPE") << SIGPIPE;
}

void tst_Endings::duringTheWait()
{
    QFETCH(int, signal);
    FakeService service;
    for (const CommandForm &form : firstFormsThatWait()) {
        service.ignore(form.member);
        Program program(MOVRA_PROGRAM, requestOf(form), busEnvironment());
        QCOMPARE(service.waitForCalls(1), QByteArrayList { form.call });
        program.send(signal);
        QVERIFY(program.waitForEnd());
        QCOMPARE(program.out, QByteArray());
        QCOMPARE(program.err, QByteArray());
        QCOMPARE(program.status, 256 + signal);
    }
}

void tst_Endings::duringTheHalfSecond()
{
    QFETCH(int, signal);
    FakeService service;
    for (const CommandForm &form : firstForms()) {
        // Every command that waits prints a line about an error.
        service.refuse(form.member, "varn.pim.Error.Refused", "no");
        int status = 0;
        // On a busy machine the half second may be over before the signal is sent.
        for (int attempts = 20; status != 256 + signal && attempts > 0; --attempts) {
            Program program(MOVRA_PROGRAM, requestOf(form), busEnvironment());
            QCOMPARE(service.waitForCalls(1), QByteArrayList { form.call });
            QVERIFY(program.waitForLines(form.failed.count('\n')));
            program.send(signal);
            QVERIFY(program.waitForEnd());
            QCOMPARE(program.out, form.failed);
            QCOMPARE(program.err, QByteArray());
            status = program.status;
        }
        QCOMPARE(status, 256 + signal);
    }
}

QTEST_GUILESS_MAIN(tst_Endings)
#include "tst_endings.moc"
