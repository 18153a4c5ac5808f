// SPDX-License-Identifier: MIT
// The client object in this process: its meta-object, its connection and its lifetime.
#include "bus/proxies.h"
#include "tests/support/capture.h"
#include "tests/support/fakeservice.h"
#include "tests/support/openmovra.h"
#include "tests/support/patience.h"

#include <QCoreApplication>
#include <QMetaMethod>
#include <QPointer>
#include <QTest>
#include <QTimer>

#include <memory>

namespace
{

const char *const slotSignatures[] = {
    "generateDbgLogCmd(std::string,std::string)",
    "callDbgLogGetIds()",
    "quit()",
    "sigAlarmSlot(QString)",
    "sigDBusServerClosingSlot(QString)",
    "sigLogChangedNotificationSlot(QStringList)",
    "sigErrorSlot(QString)",
    "sigInfoSlot(QString)",
    "sigTestCompleteSlot(QString)",
    "sigUpdateSlot(QString)",
    "sigTestCompleteWithDataSlot(QString,std::vector<double>)",
    "sigTestCompleteWithDataSlot(QString,std::vector<uint32_t>)",
    "notifyConfigStart()",
    "notifyConfigStop()",
    "notifyConfigClear()",
    "notifyResultStart()",
    "notifyResultStop()",
    "notifyResultClear()",
    "notifyAdd(QString)",
    "notifyDelete(QString)",
    "notifyLogStart(QString)",
    "notifyLogStop(QString)",
    "notifyLogClear(QString)",
};

} // namespace

class tst_Client : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void initTestCase();
    void cleanup();

    void metaObject();
    void slotsHaveNoRegisteredArgumentTypes();
    void castsByName();
    void aNewClientIsNotConnected();

    void connects();
    void failedConnections_data();
    void failedConnections();
    void destroyingTheClientLeavesTheProxyAlive();
    void quitEndsTheEventLoop();
    void aFailedConnectionEndsTheEventLoop();

private:
    std::unique_ptr<FakeService> service;
};

void tst_Client::initTestCase()
{
    service = std::make_unique<FakeService>();
}

void tst_Client::cleanup()
{
    service->takeCalls();
}

void tst_Client::metaObject()
{
    const QMetaObject &meta = Movra::staticMetaObject;
    QCOMPARE(meta.className(), "Movra");
    QCOMPARE(meta.superClass()->className(), "QObject");
    QCOMPARE(meta.propertyCount(), meta.propertyOffset());
    QCOMPARE(meta.classInfoCount(), meta.classInfoOffset());
    QByteArrayList signatures;
    for (int i = meta.methodOffset(); i < meta.methodCount(); ++i) {
        QCOMPARE(meta.method(i).methodType(), QMetaMethod::Slot);
        QCOMPARE(meta.method(i).typeName(), "void");
        signatures.append(meta.method(i).methodSignature());
    }
    QByteArrayList expected;
    for (const char *signature : slotSignatures) {
        expected.append(signature);
    }
    QCOMPARE(signatures.size(), 23);
    QCOMPARE(signatures, expected);
}

void tst_Client::slotsHaveNoRegisteredArgumentTypes()
{
    OpenMovra movra;
    for (int index = 0; index < 23; ++index) {
        for (int argument = 0; argument < 3; ++argument) {
            int type = -2;
            void *arguments[] = { &type, &argument };
            const int left =
                movra.qt_metacall(QMetaObject::RegisterMethodArgumentMetaType,
                                  Movra::staticMetaObject.methodOffset() + index, arguments);
            QCOMPARE(left, index - 23);
            QCOMPARE(type, -1);
        }
    }
    void *none[] = { nullptr };
    QCOMPARE(movra.qt_metacall(QMetaObject::InvokeMetaMethod,
                               Movra::staticMetaObject.methodOffset() + 30, none),
             7);
}

void tst_Client::castsByName()
{
    OpenMovra movra;
    QCOMPARE(movra.qt_metacast("Movra"), static_cast<void *>(static_cast<Movra *>(&movra)));
    QCOMPARE(movra.qt_metacast("QObject"), static_cast<void *>(static_cast<QObject *>(&movra)));
    QVERIFY(movra.qt_metacast("KorAppInterface") == nullptr);
    QVERIFY(movra.qt_metacast(nullptr) == nullptr);
}

void tst_Client::aNewClientIsNotConnected()
{
    QObject parent;
    auto *movra = new Movra(&parent);
    QCOMPARE(movra->parent(), &parent);
    OpenMovra open;
    QVERIFY(open.iface == nullptr);
    QCOMPARE(open.lastErrorText, QString());
}

void tst_Client::connects()
{
    OpenMovra movra;
    bool connected = false;
    QCOMPARE(captureOutput([&] { connected = movra.connectToService("com.varn.tul", "/"); }),
             QByteArray());
    QVERIFY(connected);
    QVERIFY(movra.iface->isValid());
    QCOMPARE(movra.iface->interface(), QStringLiteral("varn.pim"));
    QVERIFY(movra.iface->parent() == nullptr);
    QCOMPARE(movra.iface->timeout(), -1); // Qt D-Bus's own
    QCOMPARE(movra.lastErrorText, QString());
    QCOMPARE(service->takeCalls(), QByteArrayList());
}

void tst_Client::failedConnections_data()
{
    QTest::addColumn<QByteArray>("name");
    QTest::addColumn<QByteArray>("path");
    QTest::addColumn<QByteArray>("out");
    QTest::addColumn<QString>("lastError");
    QTest::newRow("a name that nobody owns gives an empty text")
        << QByteArray("com.varn.nobody") << QByteArray("/")
        << QByteArray("Client DBus Interface not valid, error: \n") << QString();
    QTest::newRow("a malformed path")
        << QByteArray("com.varn.tul") << QByteArray("no path")
        << QByteArray("Client DBus Interface not valid, error: Invalid object path: no path\n")
        << QStringLiteral("Invalid object path: no path");
    QTest::newRow("bytes above 0x7f are Latin-1")
        << QByteArray("a.\xc3\xa9\xe9") << QByteArray("/")
        << QByteArray(
               "Client DBus Interface not valid, error: Invalid service name: a.\xc3\xa9\xe9\n")
        << QStringLiteral("Invalid service name: a.\u00c3\u00a9\u00e9");
}

void tst_Client::failedConnections()
{
    QFETCH(QByteArray, name);
    QFETCH(QByteArray, path);
    QFETCH(QByteArray, out);
    QFETCH(QString, lastError);

    OpenMovra movra;
    bool connected = true;
    const QByteArray printed = captureOutput(
        [&] { connected = movra.connectToService(name.toStdString(), path.toStdString()); });
    QVERIFY(!connected);
    QCOMPARE(printed, out);
    QVERIFY(movra.iface != nullptr);
    QVERIFY(!movra.iface->isValid());
    QCOMPARE(movra.lastErrorText, lastError);
}

void tst_Client::destroyingTheClientLeavesTheProxyAlive()
{
    auto movra = std::make_unique<OpenMovra>();
    QVERIFY(movra->connectToService("com.varn.tul", "/"));
    const QPointer<KorAppInterface> proxy = movra->iface;
    movra.reset();
    QVERIFY(!proxy.isNull());
    QVERIFY(proxy->isValid());
}

void tst_Client::quitEndsTheEventLoop()
{
    OpenMovra movra;
    QTimer::singleShot(0, &movra, SLOT(quit()));
    QTimer::singleShot(patienceMs, &movra, [] { QCoreApplication::exit(1); });
    QCOMPARE(QCoreApplication::exec(), 0);
}

void tst_Client::aFailedConnectionEndsTheEventLoop()
{
    OpenMovra movra;
    QTimer::singleShot(0, &movra, [&movra] {
        captureOutput([&movra] { movra.connectToService("com.varn.nobody", "/"); });
    });
    QTimer::singleShot(patienceMs, &movra, [] { QCoreApplication::exit(1); });
    QCOMPARE(QCoreApplication::exec(), 0);
}

QTEST_GUILESS_MAIN(tst_Client)
#include "tst_client.moc"
