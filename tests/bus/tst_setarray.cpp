// SPDX-License-Identifier: MIT
// SETARRAY in this process: vectors that no shell can make, and more than a command line can hold.
#include "app/movra.h"
#include "tests/support/argumentvector.h"
#include "tests/support/fakeservice.h"

#include <QCoreApplication>
#include <QElapsedTimer>
#include <QTest>

#include <memory>

class tst_SetArray : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void initTestCase();
    void readingBeyondTheVector_data();
    void readingBeyondTheVector();
    void sixteenMegabytesArriveWhole();

private:
    std::unique_ptr<FakeService> service;
    std::unique_ptr<Movra> movra;
};

void tst_SetArray::initTestCase()
{
    service = std::make_unique<FakeService>();
    movra = std::make_unique<Movra>(nullptr);
    QVERIFY(movra->connectToService("com.varn.tul", "/"));
}

void tst_SetArray::readingBeyondTheVector_data()
{
    QTest::addColumn<QByteArrayList>("environment");
    QTest::addColumn<QByteArray>("sent");
    QTest::newRow("an empty environment") << QByteArrayList() << QByteArray("['wifi']");
    QTest::newRow("one variable") << QByteArrayList { "A=1" } << QByteArray("['wifi', 'A=1']");
    QTest::newRow("an empty variable")
        << QByteArrayList { "", "B" } << QByteArray("['wifi', '', 'B']");
}

void tst_SetArray::readingBeyondTheVector()
{
    QFETCH(QByteArrayList, environment);
    QFETCH(QByteArray, sent);

    ArgumentVector vector(
        { "movra", "com.varn.tul", "/", "SETARRAY", ":x:stringARRAY:", "512", "wifi" },
        environment);
    QCOMPARE(movra->setArrayCommand(vector.argv()), 0);
    QCOMPARE(service->waitForCalls(1),
             QByteArrayList { "SetValue a(sv) ([(':x:stringARRAY:', <" + sent + ">)],)" });
}

void tst_SetArray::sixteenMegabytesArriveWhole()
{
    constexpr int count = 512;
    constexpr int size = 32768;
    QByteArrayList words { "movra", "com.varn.tul", "/", "SETARRAY", ":x:stringARRAY:", "512" };
    for (int i = 0; i < count; ++i) {
        words.append(QByteArray(size, 'x'));
    }
    ArgumentVector vector(words);

    QElapsedTimer sinceTheCall;
    sinceTheCall.start();
    QCOMPARE(movra->setArrayCommand(vector.argv()), 0);
    // The program would now stay in its event loop for 500 ms.
    while (sinceTheCall.elapsed() < 500) {
        QCoreApplication::processEvents(QEventLoop::AllEvents, 50);
    }
    const QByteArrayList calls = service->waitForCalls(1);
    QCOMPARE(calls.size(), 1);
    QCOMPARE(calls.first().count('x'), count * size + 1); // one more in the id
}

QTEST_GUILESS_MAIN(tst_SetArray)
#include "tst_setarray.moc"
