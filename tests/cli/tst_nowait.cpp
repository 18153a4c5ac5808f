// SPDX-License-Identifier: MIT
// Runs that end without the half second. Only this test measures that a run is short, so it runs
// alone.
#include "tests/support/movrarun.h"

#include <QTest>

#include <algorithm>
#include <chrono>

class tst_NoWait : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void failedConnectionsEndAtOnce_data();
    void failedConnectionsEndAtOnce();
};

void tst_NoWait::failedConnectionsEndAtOnce_data()
{
    QTest::addColumn<QByteArrayList>("arguments");
    QTest::addColumn<QByteArrayList>("environment");
    const QByteArrayList bus = busEnvironment();
    QTest::newRow("nobody owns the name")
        << QByteArrayList { "com.varn.nobody", "/", "SERVERSTAT" } << bus;
    QTest::newRow("a malformed name") << QByteArrayList { "a..b", "/", "SERVERSTAT" } << bus;
    QTest::newRow("a malformed path")
        << QByteArrayList { "com.varn.nobody", "x", "SERVERSTAT" } << bus;
    QTest::newRow("no bus") << QByteArrayList { "com.varn.tul", "/", "SERVERSTAT" }
                            << baseEnvironment();
    QTest::newRow("usage text") << QByteArrayList { "-h" } << bus;
}

void tst_NoWait::failedConnectionsEndAtOnce()
{
    QFETCH(QByteArrayList, arguments);
    QFETCH(QByteArrayList, environment);

    // A run that waited could never be quicker than the timer; one that does not wait may be slow
    // on a busy machine, so the quickest of several counts.
    std::chrono::duration<double, std::milli> quickest { 1e9 };
    for (int i = 0; i < 40 && quickest.count() >= 500; ++i) {
        Program program(MOVRA_PROGRAM, arguments, environment);
        QVERIFY(program.waitForEnd());
        QCOMPARE(program.status, 1);
        quickest = std::min<decltype(quickest)>(quickest, program.ended - program.started);
    }
    QVERIFY2(quickest.count() < 500, QByteArray::number(quickest.count()).constData());
}

QTEST_GUILESS_MAIN(tst_NoWait)
#include "tst_nowait.moc"
