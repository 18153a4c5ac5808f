// SPDX-License-Identifier: MIT
// SETARRAY in this process: vectors that no shell can make, and more than a command line can hold.
#include "app/movra.h"
#include "tests/support/fakeservice.h"

#include <QCoreApplication>
#include <QElapsedTimer>
#include <QTest>

#include <memory>
#include <vector>

class tst_SetArray : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void initTestCase();
    void readingBehindTheVector_data();
    void readingBehindTheVector();
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

void tst_SetArray::readingBehindTheVector_data()
{
    QTest::addColumn<QByteArrayList>("environment");
    QTest::addColumn<QByteArray>("sent");
    QTest::newRow("an empty environment") << QByteArrayList() << QByteArray("['wifi']");
    QTest::newRow("one variable") << QByteArrayList { "A=1" } << QByteArray("['wifi', 'A=1']");
    QTest::newRow("an empty variable")
        << QByteArrayList { "", "B" } << QByteArray("['wifi', '', 'B']");
}

void tst_SetArray::readingBehindTheVector()
{
    QFETCH(QByteArrayList, environment);
    QFETCH(QByteArray, sent);

    // The last entry is the last that may be read: the sanitizer sees any further step.
    QByteArrayList words { "movra",           "com.varn.tul", "/",   "SETARRAY",
                           ":x:stringARRAY:", "512",          "wifi" };
    std::vector<char *> argv;
    for (QByteArray &word : words) {
        argv.push_back(word.data());
    }
    argv.push_back(nullptr);
    for (QByteArray &variable : environment) {
        argv.push_back(variable.data());
    }
    argv.push_back(nullptr);
    argv.shrink_to_fit();

    QCOMPARE(movra->setArrayCommand(argv.data()), 0);
    QCOMPARE(service->waitForCalls(1),
             QByteArrayList { "SetValue a(sv) ([(':x:stringARRAY:', <" + sent + ">)],)" });
}

void tst_SetArray::sixteenMegabytesArriveWhole()
{
    constexpr int count = 512;
    constexpr int size = 32768;
    std::vector<QByteArray> words { "movra",    "com.varn.tul",    "/",
                                    "SETARRAY", ":x:stringARRAY:", "512" };
    words.resize(words.size() + count, QByteArray(size, 'x'));
    std::vector<char *> argv;
    argv.reserve(words.size() + 2);
    for (QByteArray &word : words) {
        argv.push_back(word.data());
    }
    argv.push_back(nullptr);
    argv.push_back(nullptr);

    QElapsedTimer sinceTheCall;
    sinceTheCall.start();
    QCOMPARE(movra->setArrayCommand(argv.data()), 0);
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
