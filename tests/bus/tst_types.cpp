// SPDX-License-Identifier: MIT
// The nine bus types: on the wire, back again, and in Qt's type system.
#include "bus/types.h"
#include "tests/support/fakeservice.h"
#include "tests/support/patience.h"

#include <QDBusConnection>
#include <QDBusMessage>
#include <QDBusVariant>
#include <QTest>

#include <algorithm>
#include <limits>
#include <memory>
#include <numeric>
#include <type_traits>

namespace
{

bool same(const IdValueStruct &a, const IdValueStruct &b)
{
    return a.id == b.id && a.value == b.value && a.value.userType() == b.value.userType();
}
bool same(const IdValueStatusStruct &a, const IdValueStatusStruct &b)
{
    return a.id == b.id && a.value == b.value && a.value.userType() == b.value.userType()
        && a.status == b.status;
}
template <typename T> bool same(const std::vector<T> &a, const std::vector<T> &b)
{
    return a == b;
}
template <typename T> bool same(const QList<T> &a, const QList<T> &b)
{
    return std::equal(a.begin(), a.end(), b.begin(), b.end(),
                      [](const T &left, const T &right) { return same(left, right); });
}

/// Sends a value alone; returns the first argument of the reply.
QVariant echo(const QVariant &value)
{
    QDBusMessage call =
        QDBusMessage::createMethodCall(QStringLiteral("com.varn.tul"), QStringLiteral("/"),
                                       QStringLiteral("varn.pim"), QStringLiteral("Echo"));
    call << value;
    const QDBusMessage reply = QDBusConnection::sessionBus().call(call, QDBus::Block, patienceMs);
    return reply.arguments().value(0);
}

template <typename T> constexpr T least = std::numeric_limits<T>::lowest();
template <typename T> constexpr T greatest = std::numeric_limits<T>::max();

const QString x = QStringLiteral(":x:");
const QString y = QStringLiteral(":y:");

} // namespace

class tst_Types : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void initTestCase();
    void defaultRecordsAreEmpty();

    void records();
    void recordsWithStatus();
    void valuesInsideRecords_data();
    void valuesInsideRecords();
    void anArrayInsideARecordStaysPacked();
    void aVariantInsideAVariantIsUnwrappedOnce();
    void listsOfRecords();
    void listsOfRecordsWithStatus();
    void doubles();
    void signed32();
    void unsigned32();
    void signed64();
    void unsigned64();
    void manyElements();

private:
    /// Sends the value, compares the wire with the text, and reads it back into a filled target.
    template <typename T> void roundTrip(const T &value, const char *wire, T target);

    /// Sends the result of `make` for a large number and reads it back.
    template <typename T> void manyRoundTrip(const T &make);

    std::unique_ptr<FakeService> service;
};

template <typename T> void tst_Types::roundTrip(const T &value, const char *wire, T target)
{
    const QVariant back = echo(QVariant::fromValue(value));
    QCOMPARE(service->takeCalls(), QByteArrayList { QByteArray("Echo ") + wire });
    QCOMPARE(back.userType(), qMetaTypeId<QDBusArgument>());
    back.value<QDBusArgument>() >> target;
    QVERIFY(same(target, value));
    QVERIFY(same(qdbus_cast<T>(echo(QVariant::fromValue(value))), value));
    service->takeCalls();
}

void tst_Types::initTestCase()
{
    registerBusTypes();
    service = std::make_unique<FakeService>();
}

void tst_Types::defaultRecordsAreEmpty()
{
    QVERIFY(!IdValueStruct().value.isValid());
    QVERIFY(!IdValueStatusStruct().value.isValid());
}

void tst_Types::records()
{
    const IdValueStruct filled { QStringLiteral("old"), 1 };
    roundTrip(IdValueStruct { x, QStringLiteral("text") }, "(sv) ((':x:', <'text'>),)", filled);
    roundTrip(IdValueStruct { QStringLiteral("\u00e9\u20ac"), QStringLiteral("\u00e9\u20ac") },
              "(sv) (('\xc3\xa9\xe2\x82\xac', <'\xc3\xa9\xe2\x82\xac'>),)", filled);
    roundTrip(IdValueStruct { QString(), QString() }, "(sv) (('', <''>),)", filled);
}

void tst_Types::recordsWithStatus()
{
    const IdValueStatusStruct filled { QStringLiteral("old"), 1, 9 };
    roundTrip(IdValueStatusStruct { x, QStringLiteral("text"), 0 }, "(svi) ((':x:', <'text'>, 0),)",
              filled);
    roundTrip(IdValueStatusStruct { x, true, least<int> }, "(svi) ((':x:', <true>, -2147483648),)",
              filled);
    roundTrip(IdValueStatusStruct { x, true, greatest<int> },
              "(svi) ((':x:', <true>, 2147483647),)", filled);
}

void tst_Types::valuesInsideRecords_data()
{
    QTest::addColumn<QVariant>("value");
    QTest::addColumn<QByteArray>("wire");
    QTest::newRow("a string") << QVariant(QStringLiteral("s")) << QByteArray("<'s'>");
    QTest::newRow("a string list")
        << QVariant(QStringList { x, y }) << QByteArray("<[':x:', ':y:']>");
    QTest::newRow("a number") << QVariant(0.1) << QByteArray("<0.10000000000000001>");
    QTest::newRow("an unsigned number") << QVariant(7U) << QByteArray("<uint32 7>");
    QTest::newRow("a variant is not flattened")
        << QVariant::fromValue(QDBusVariant(7)) << QByteArray("<<7>>");
    QTest::newRow("an array of doubles")
        << QVariant::fromValue(std::vector<double> { 1.5 }) << QByteArray("<[1.5]>");
    QTest::newRow("an empty array of doubles")
        << QVariant::fromValue(std::vector<double>()) << QByteArray("<@ad []>");
    QTest::newRow("an array of unsigned 64-bit numbers")
        << QVariant::fromValue(std::vector<quint64> { 1 }) << QByteArray("<[uint64 1]>");
}

void tst_Types::valuesInsideRecords()
{
    QFETCH(QVariant, value);
    QFETCH(QByteArray, wire);
    echo(QVariant::fromValue(IdValueStruct { x, value }));
    QCOMPARE(service->takeCalls(), QByteArrayList { "Echo (sv) ((':x:', " + wire + "),)" });
    echo(QVariant::fromValue(IdValueStatusStruct { x, value, 1 }));
    QCOMPARE(service->takeCalls(), QByteArrayList { "Echo (svi) ((':x:', " + wire + ", 1),)" });
}

void tst_Types::anArrayInsideARecordStaysPacked()
{
    const IdValueStatusStruct sent { x, QVariant::fromValue(std::vector<double> { 0.5, 2 }), 1 };
    const auto record = qdbus_cast<IdValueStatusStruct>(echo(QVariant::fromValue(sent)));
    QCOMPARE(record.id, x);
    QCOMPARE(record.status, 1);
    QCOMPARE(record.value.typeName(), "QDBusArgument");
    QCOMPARE(qdbus_cast<std::vector<double>>(record.value), (std::vector<double> { 0.5, 2 }));
    service->takeCalls();
}

void tst_Types::aVariantInsideAVariantIsUnwrappedOnce()
{
    const IdValueStruct sent { x, QVariant::fromValue(QDBusVariant(7)) };
    const auto record = qdbus_cast<IdValueStruct>(echo(QVariant::fromValue(sent)));
    QCOMPARE(record.value.userType(), qMetaTypeId<QDBusVariant>());
    QCOMPARE(record.value.value<QDBusVariant>().variant(), QVariant(7));
    service->takeCalls();
}

void tst_Types::listsOfRecords()
{
    using List = QList<IdValueStruct>;
    const List filled { { y, 1 }, { y, 2 }, { y, 3 } };
    roundTrip(List(), "a(sv) (@a(sv) [],)", filled);
    roundTrip(List { { x, 5 } }, "a(sv) ([(':x:', <5>)],)", filled);
    roundTrip(List { { x, 5 }, { y, QStringLiteral("t") } },
              "a(sv) ([(':x:', <5>), (':y:', <'t'>)],)", filled);
}

void tst_Types::listsOfRecordsWithStatus()
{
    using List = QList<IdValueStatusStruct>;
    const List filled { { y, 1, 1 }, { y, 2, 2 }, { y, 3, 3 } };
    roundTrip(List(), "a(svi) (@a(svi) [],)", filled);
    roundTrip(List { { x, 5, -1 } }, "a(svi) ([(':x:', <5>, -1)],)", filled);
    roundTrip(List { { x, 5, 0 }, { y, QStringLiteral("t"), 1 } },
              "a(svi) ([(':x:', <5>, 0), (':y:', <'t'>, 1)],)", filled);
}

void tst_Types::doubles()
{
    using Array = std::vector<double>;
    const Array filled { 9, 9, 9 };
    roundTrip(Array(), "ad (@ad [],)", filled);
    roundTrip(Array { 1.5 }, "ad ([1.5],)", filled);
    roundTrip(Array { least<double>, greatest<double>, -0.0,
                      std::numeric_limits<double>::denorm_min(),
                      std::numeric_limits<double>::infinity() },
              "ad ([-1.7976931348623157e+308, 1.7976931348623157e+308, -0.0, "
              "4.9406564584124654e-324, inf],)",
              filled);
}

void tst_Types::signed32()
{
    using Array = std::vector<int32_t>;
    const Array filled { 9, 9, 9 };
    roundTrip(Array(), "ai (@ai [],)", filled);
    roundTrip(Array { -1 }, "ai ([-1],)", filled);
    roundTrip(Array { least<int32_t>, 0, greatest<int32_t> }, "ai ([-2147483648, 0, 2147483647],)",
              filled);
}

void tst_Types::unsigned32()
{
    using Array = std::vector<uint32_t>;
    const Array filled { 9, 9, 9 };
    roundTrip(Array(), "au (@au [],)", filled);
    roundTrip(Array { 1 }, "au ([uint32 1],)", filled);
    roundTrip(Array { 0, greatest<uint32_t> }, "au ([uint32 0, 4294967295],)", filled);
}

void tst_Types::signed64()
{
    using Array = std::vector<qint64>;
    const Array filled { 9, 9, 9 };
    roundTrip(Array(), "ax (@ax [],)", filled);
    roundTrip(Array { -1 }, "ax ([int64 -1],)", filled);
    roundTrip(Array { least<qint64>, greatest<qint64> },
              "ax ([int64 -9223372036854775808, 9223372036854775807],)", filled);
}

void tst_Types::unsigned64()
{
    using Array = std::vector<quint64>;
    const Array filled { 9, 9, 9 };
    roundTrip(Array(), "at (@at [],)", filled);
    roundTrip(Array { 1 }, "at ([uint64 1],)", filled);
    roundTrip(Array { 0, greatest<quint64> }, "at ([uint64 0, 18446744073709551615],)", filled);
}

template <typename T> void tst_Types::manyRoundTrip(const T &make)
{
    using Container = std::decay_t<decltype(make(0))>;
    const Container many = make(100000);
    QVERIFY(same(qdbus_cast<Container>(echo(QVariant::fromValue(many))), many));
    service->takeCalls();
}

void tst_Types::manyElements()
{
    const auto numbers = [](auto first) {
        return [first](std::size_t count) {
            std::vector<decltype(first)> made(count);
            std::iota(made.begin(), made.end(), first);
            return made;
        };
    };
    manyRoundTrip(numbers(0.5));
    manyRoundTrip(numbers(int32_t { -50000 }));
    manyRoundTrip(numbers(uint32_t { 4294867295U }));
    manyRoundTrip(numbers(qint64 { -50000 }));
    manyRoundTrip(numbers(quint64 { 1 } << 63U));
    manyRoundTrip([](int count) {
        QList<IdValueStruct> made;
        for (int i = 0; i < count; ++i) {
            made.append({ QString::number(i), i });
        }
        return made;
    });
    manyRoundTrip([](int count) {
        QList<IdValueStatusStruct> made;
        for (int i = 0; i < count; ++i) {
            made.append({ QString::number(i), i, -i });
        }
        return made;
    });
}

QTEST_GUILESS_MAIN(tst_Types)
#include "tst_types.moc"
