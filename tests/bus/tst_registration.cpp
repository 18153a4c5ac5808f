// SPDX-License-Identifier: MIT
// The bus types in Qt's type system. Only the connection of the client registers them here.
#include "app/movra.h"
#include "bus/types.h"
#include "tests/support/capture.h"

#include <QDBusMetaType>
#include <QSequentialIterable>
#include <QTest>

namespace
{

const char *const names[] = {
    "IdValueStruct",         "QList<IdValueStruct>",
    "IdValueStatusStruct",   "QList<IdValueStatusStruct>",
    "std::vector<double>",   "std::vector<int32_t>",
    "std::vector<uint32_t>", "std::vector<qint64>",
    "std::vector<quint64>",
};

} // namespace

class tst_Registration : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void connectingRegistersTheTypesInOrder();
    void namesLeadToTypes_data();
    void namesLeadToTypes();
    void registrationMayBeRepeated();
    void onlyContainersCanBeIterated();
    void containersAreIterated_data();
    void containersAreIterated();
};

// This test is the first, because it needs a process without registered types.
void tst_Registration::connectingRegistersTheTypesInOrder()
{
    for (const char *name : names) {
        QVERIFY2(!QMetaType::isRegistered(QMetaType::type(name)), name);
    }
    Movra movra(nullptr);
    bool connected = true;
    captureOutput([&] { connected = movra.connectToService("com.varn.nobody", "/"); });
    QVERIFY(!connected);

    int before = 0;
    for (const char *name : names) {
        const int id = QMetaType::type(name);
        QVERIFY2(id > before, name);
        before = id;
    }
}

void tst_Registration::namesLeadToTypes_data()
{
    QTest::addColumn<int>("id");
    QTest::addColumn<QByteArray>("signature");
    const auto row = [](int index, int id, const char *signature) {
        QTest::newRow(names[index]) << id << QByteArray(signature);
    };
    row(0, qMetaTypeId<IdValueStruct>(), "(sv)");
    row(1, qMetaTypeId<QList<IdValueStruct>>(), "a(sv)");
    row(2, qMetaTypeId<IdValueStatusStruct>(), "(svi)");
    row(3, qMetaTypeId<QList<IdValueStatusStruct>>(), "a(svi)");
    row(4, qMetaTypeId<std::vector<double>>(), "ad");
    row(5, qMetaTypeId<std::vector<int32_t>>(), "ai");
    row(6, qMetaTypeId<std::vector<uint32_t>>(), "au");
    row(7, qMetaTypeId<std::vector<qint64>>(), "ax");
    row(8, qMetaTypeId<std::vector<quint64>>(), "at");
}

void tst_Registration::namesLeadToTypes()
{
    QFETCH(int, id);
    QFETCH(QByteArray, signature);
    // Connections of signals use the first, QVariant the second, replies the third.
    QCOMPARE(QMetaType::type(QTest::currentDataTag()), id);
    QCOMPARE(QByteArray(QMetaType::typeName(id)), QByteArray(QTest::currentDataTag()));
    QCOMPARE(QByteArray(QDBusMetaType::typeToSignature(id)), signature);
}

void tst_Registration::registrationMayBeRepeated()
{
    QList<int> before;
    for (const char *name : names) {
        before.append(QMetaType::type(name));
    }
    registerBusTypes();
    QList<int> after;
    for (const char *name : names) {
        after.append(QMetaType::type(name));
    }
    QCOMPARE(after, before);
    QCOMPARE(QDBusMetaType::typeToSignature(after.last()), "at");
}

void tst_Registration::onlyContainersCanBeIterated()
{
    const int iterable = qMetaTypeId<QtMetaTypePrivate::QSequentialIterableImpl>();
    for (const char *name : names) {
        const bool isRecord = name[0] == 'I';
        QVERIFY2(QMetaType::hasRegisteredConverterFunction(QMetaType::type(name), iterable)
                     != isRecord,
                 name);
    }
}

void tst_Registration::containersAreIterated_data()
{
    QTest::addColumn<QVariant>("container");
    QTest::addColumn<QString>("second"); ///< of two elements, as text
    const auto row = [](const char *name, const QVariant &container, const char *second) {
        QTest::newRow(name) << container << QString::fromLatin1(second);
    };
    row("records", QVariant::fromValue(QList<IdValueStruct> { {}, { QStringLiteral("a"), 1 } }),
        "");
    row("records with status",
        QVariant::fromValue(QList<IdValueStatusStruct> { {}, { QStringLiteral("a"), 1, 2 } }), "");
    row("doubles", QVariant::fromValue(std::vector<double> { 1, 0.5 }), "0.5");
    row("signed 32", QVariant::fromValue(std::vector<int32_t> { 1, -2 }), "-2");
    row("unsigned 32", QVariant::fromValue(std::vector<uint32_t> { 1, 4294967295U }), "4294967295");
    row("signed 64", QVariant::fromValue(std::vector<qint64> { 1, -2 }), "-2");
    row("unsigned 64",
        QVariant::fromValue(std::vector<quint64> { 1, Q_UINT64_C(18446744073709551615) }),
        "18446744073709551615");
}

void tst_Registration::containersAreIterated()
{
    QFETCH(QVariant, container);
    QFETCH(QString, second);
    const auto iterable = container.value<QSequentialIterable>();
    QCOMPARE(iterable.size(), 2);
    QCOMPARE(iterable.at(1).toString(), second);
}

QTEST_GUILESS_MAIN(tst_Registration)
#include "tst_registration.moc"
