// SPDX-License-Identifier: MIT
// The simulator on a bus that dies, and with messages that are together larger than the default
// limit of libdbus.
#include "bus/proxies.h"
#include "tests/support/cutbus.h"
#include "tests/support/movrarun.h"
#include "tests/support/privatebus.h"

#include <QTest>

#include <csignal>
#include <vector>

class tst_BusFailures : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void aBusThatDiesAtTheStart_data();
    void aBusThatDiesAtTheStart();
    void aBusThatDiesLater_data();
    void aBusThatDiesLater();
    void aBusThatDiesDuringACapture();
    void manyCallsThatWait();
    void aCallAbove63MiB();
};

void tst_BusFailures::aBusThatDiesAtTheStart_data()
{
    QTest::addColumn<QByteArray>("text");
    QTest::newRow("while it authenticates") << QByteArray("AUTH");
    QTest::newRow("while it assigns a unique name") << QByteArray("Hello");
    QTest::newRow("while it assigns the name of the service") << QByteArray("RequestName");
}

void tst_BusFailures::aBusThatDiesAtTheStart()
{
    QFETCH(QByteArray, text);
    const PrivateBus bus;
    const CutBus dying(bus.address, text, CutBus::Cut::Close);
    Program simulator(MOVRA_SIM_PROGRAM, {}, busEnvironment(dying.address));
    QVERIFY(simulator.waitForEnd());
    QCOMPARE(simulator.out, QByteArray());
    QVERIFY2(simulator.err.startsWith("movra-sim: there is no session bus: "),
             simulator.err.constData());
    QCOMPARE(simulator.err.count('\n'), 1);
    QCOMPARE(simulator.status, 3);
}

void tst_BusFailures::aBusThatDiesLater_data()
{
    QTest::addColumn<int>("number");
    QTest::newRow("a bus that ends") << SIGTERM;
    QTest::newRow("a bus that is killed") << SIGKILL;
}

void tst_BusFailures::aBusThatDiesLater()
{
    QFETCH(int, number);
    const PrivateBus bus;
    Program simulator(MOVRA_SIM_PROGRAM, {}, busEnvironment(bus.address));
    QVERIFY(simulator.waitForLines(1));
    bus.daemon->send(number);
    QVERIFY(simulator.waitForEnd());
    QCOMPARE(simulator.err, QByteArray("movra-sim: the session bus went away\n"));
    QCOMPARE(simulator.status, 3);
}

void tst_BusFailures::aBusThatDiesDuringACapture()
{
    const PrivateBus bus;
    FakeService service("com.varn.tul", bus.address);
    service.ignore("ListConfigIds");
    Program capture(MOVRA_SIM_PROGRAM, { "--capture", "com.varn.tul" },
                    busEnvironment(bus.address));
    QCOMPARE(service.waitForCalls(1), QByteArrayList { "ListConfigIds" });
    bus.daemon->send(SIGKILL);
    QVERIFY(capture.waitForEnd());
    QCOMPARE(capture.out, QByteArray());
    QCOMPARE(capture.err,
             QByteArray("movra-sim: there is no session bus: Not connected to D-Bus server\n"));
    QCOMPARE(capture.status, 3);
}

void tst_BusFailures::manyCallsThatWait()
{
    Program simulator(MOVRA_SIM_PROGRAM,
                      { "--service", "com.varn.many", "--fault", "DbgLogCmd=delay:2000" },
                      busEnvironment());
    QVERIFY(simulator.waitForLines(1));
    KorAppInterface service(QStringLiteral("com.varn.many"), QStringLiteral("/"),
                            QDBusConnection::sessionBus(), nullptr);
    service.setTimeout(patienceMs);
    const QString text(100 * 1024, QLatin1Char('x'));
    constexpr std::size_t calls = 700;
    std::vector<QDBusPendingReply<>> delayed;
    delayed.reserve(calls);
    while (delayed.size() < calls) {
        delayed.push_back(service.DbgLogCmd(QStringLiteral("SET"), text));
    }
    for (QDBusPendingReply<> &reply : delayed) {
        reply.waitForFinished();
        // The service refuses such a value, and continues.
        QCOMPARE(reply.error().name(), QStringLiteral("varn.pim.Error.BadValue"));
    }
    QDBusPendingReply<int> status = service.DBusServerStatus();
    status.waitForFinished();
    QVERIFY2(status.isValid(), qPrintable(status.error().message()));
}

void tst_BusFailures::aCallAbove63MiB()
{
    Program simulator(MOVRA_SIM_PROGRAM, { "--service", "com.varn.large" }, busEnvironment());
    QVERIFY(simulator.waitForLines(1));
    KorAppInterface service(QStringLiteral("com.varn.large"), QStringLiteral("/"),
                            QDBusConnection::sessionBus(), nullptr);
    service.setTimeout(patienceMs);
    const QString text(64 * 1024 * 1024, QLatin1Char('x'));
    // The call gets an answer or a refusal, and later calls are answered.
    service.SetValue(QStringLiteral(":config:data:ftp:userName:"), QDBusVariant(text))
        .waitForFinished();
    QDBusPendingReply<int> status = service.DBusServerStatus();
    status.waitForFinished();
    QVERIFY2(status.isValid(), qPrintable(status.error().message()));
}

QTEST_GUILESS_MAIN(tst_BusFailures)
#include "tst_busfailures.moc"
