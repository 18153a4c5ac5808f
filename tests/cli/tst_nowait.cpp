// SPDX-License-Identifier: MIT
// How long runs take, with the half second and without it. Only this test measures that a run is
// short, so it runs alone.
#include "tests/support/fakeservice.h"
#include "tests/support/movrarun.h"

#include <QTest>

#include <algorithm>
#include <chrono>

class tst_NoWait : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void requestsTakeHalfASecond();
    void failedConnectionsEndAtOnce_data();
    void failedConnectionsEndAtOnce();
};

namespace
{

/// The time of the quickest of several runs in ms: on a busy machine, a run may be slow. Ends with
/// the first below the limit.
double quickestOf(const QByteArrayList &arguments, const QByteArrayList &environment, double limit)
{
    double quickest = 1e9;
    for (int i = 0; i < 40 && quickest >= limit; ++i) {
        Program program(MOVRA_PROGRAM, arguments, environment);
        if (!program.waitForEnd() || program.status != 1) {
            return -1;
        }
        const std::chrono::duration<double, std::milli> whole = program.ended - program.started;
        quickest = std::min(quickest, whole.count());
    }
    return quickest;
}

} // namespace

void tst_NoWait::requestsTakeHalfASecond()
{
    const FakeService service;
    const double quickest = quickestOf({ "com.varn.tul", "/", "NOPE" }, busEnvironment(), 900);
    QVERIFY2(quickest >= 500 && quickest < 900, QByteArray::number(quickest).constData());
}

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
    const double quickest = quickestOf(arguments, environment, 500);
    QVERIFY2(quickest >= 0 && quickest < 500, QByteArray::number(quickest).constData());
}

QTEST_GUILESS_MAIN(tst_NoWait)
#include "tst_nowait.moc"
