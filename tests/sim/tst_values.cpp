// SPDX-License-Identifier: MIT
// The values of items: every way in and out, at the edges of every type.
#include "bus/types.h"
#include "sim/value.h"

#include <QDBusObjectPath>
#include <QDBusVariant>
#include <QTest>

#include <cmath>
#include <cstdint>
#include <nlohmann/json.hpp>
#include <vector>

namespace
{

Json jsonOf(const QString &text)
{
    return Json::parse(text.toStdString());
}

/// The value's text, or "! " and the sentence that refuses it.
template <typename Convert> QString outcome(const ValueType &type, Convert convert)
{
    try {
        return type.toText(convert(Place { {}, {}, QStringLiteral("here"), {}, {} }));
    } catch (const Refusal &refusal) {
        return QStringLiteral("! ") + refusal.sentence;
    }
}

QString outcomeFromBus(const ValueType &type, const QVariant &given)
{
    return outcome(type, [&](const Place &place) { return type.fromBus(given, place); });
}

const ValueType &typeOf(const QString &name)
{
    const ValueType *type = typeNamed(name);
    return type == nullptr ? throw Refusal { name, name } : *type;
}

void addRow(const char *name, const char *type, const QString &given, const QString &expected)
{
    QTest::newRow(name) << QString::fromLatin1(type) << given << expected;
}

} // namespace

class tst_Values : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void initTestCase();
    void everyTypeHasANameAndASignature_data();
    void everyTypeHasANameAndASignature();
    void unknownTypeNamesAreNotTypes();
    void jsonBecomesAValue_data();
    void jsonBecomesAValue();
    void textBecomesAValue_data();
    void textBecomesAValue();
    void nanHasNoSign();
    void busValuesMustHaveTheVeryType_data();
    void busValuesMustHaveTheVeryType();
    void limitsHoldForWhatComesFromTheBus();
    void jsonGivesBackTheSameValue_data();
    void jsonGivesBackTheSameValue();
    void jsonKnowsEveryDifference();
    void sizesCountEveryElement();
};

void tst_Values::initTestCase()
{
    registerBusTypes();
}

void tst_Values::everyTypeHasANameAndASignature_data()
{
    QTest::addColumn<QString>("name");
    QTest::addColumn<QString>("signature");
    QTest::addColumn<bool>("array");
    QTest::addColumn<bool>("number");
    const auto row = [](const char *name, const char *signature, bool array, bool number) {
        QTest::newRow(name) << QString::fromLatin1(name) << QString::fromLatin1(signature) << array
                            << number;
    };
    row("string", "s", false, false);
    row("bool", "b", false, false);
    row("int32", "i", false, true);
    row("uint32", "u", false, true);
    row("int64", "x", false, true);
    row("uint64", "t", false, true);
    row("double", "d", false, true);
    row("string[]", "as", true, false);
    row("int32[]", "ai", true, false);
    row("uint32[]", "au", true, false);
    row("int64[]", "ax", true, false);
    row("uint64[]", "at", true, false);
    row("double[]", "ad", true, false);
}

void tst_Values::everyTypeHasANameAndASignature()
{
    QFETCH(QString, name);
    QFETCH(QString, signature);
    QFETCH(bool, array);
    QFETCH(bool, number);
    const ValueType *type = typeNamed(name);
    QVERIFY(type != nullptr);
    QCOMPARE(QString::fromLatin1(type->name), name);
    QCOMPARE(QString::fromLatin1(type->signature), signature);
    QCOMPARE(typeWithSignature(signature), type);
    QCOMPARE(type->isArray, array);
    QCOMPARE(type->isNumber, number);
}

void tst_Values::unknownTypeNamesAreNotTypes()
{
    for (const char *name : { "", "Int32", "int", "float", "int32[", "int32[][]", "bool[]" }) {
        QVERIFY2(typeNamed(QString::fromLatin1(name)) == nullptr, name);
    }
}

void tst_Values::jsonBecomesAValue_data()
{
    QTest::addColumn<QString>("type");
    QTest::addColumn<QString>("given");
    QTest::addColumn<QString>("expected");
    const auto row = [](const char *name, const char *type, const char *json,
                        const char *expected) {
        addRow(name, type, QString::fromUtf8(json), QString::fromUtf8(expected));
    };
    row("a string", "string", "\"pordo\"", "pordo");
    row("an empty string", "string", "\"\"", "");
    row("a string beyond ASCII", "string", "\"\xc3\xa4\xe2\x82\xac\"", "\xc3\xa4\xe2\x82\xac");
    row("a string may not hold U+0000", "string", "\"a\\u0000b\"",
        "! here: the text holds the character U+0000, which the bus cannot carry");
    row("a number is no string", "string", "5", "! here: is a number, not a string");
    row("null is no string", "string", "null", "! here: is null, not a string");
    row("an object is no string", "string", "{}", "! here: is an object, not a string");
    row("true", "bool", "true", "true");
    row("false", "bool", "false", "false");
    row("a number is no truth value", "bool", "1", "! here: is a number, not true or false");
    row("the text true is no truth value", "bool", "\"true\"",
        "! here: is a string, not true or false");
    row("the least int32", "int32", "-2147483648", "-2147483648");
    row("the greatest int32", "int32", "2147483647", "2147483647");
    row("one below int32", "int32", "-2147483649", "! here: -2147483649 does not fit int32");
    row("one above int32", "int32", "2147483648", "! here: 2147483648 does not fit int32");
    row("an int32 as text", "int32", "\"-7\"", "-7");
    row("an int32 as text out of range", "int32", "\"2147483648\"",
        "! here: \"2147483648\" does not fit int32");
    row("a whole number written with a point", "int32", "21.0", "21");
    row("a whole number written with an exponent", "int32", "2e3", "2000");
    row("a fraction is no int32", "int32", "1.5", "! here: 1.5 is not a whole number");
    row("an empty text is no int32", "int32", "\"\"", "! here: \"\" is not a whole number");
    row("a truth value is no int32", "int32", "true", "! here: is a truth value, not a number");
    row("an array is no int32", "int32", "[1]", "! here: is an array, not a number");
    row("the least uint32", "uint32", "0", "0");
    row("the greatest uint32", "uint32", "4294967295", "4294967295");
    row("one below uint32", "uint32", "-1", "! here: -1 does not fit uint32");
    row("one above uint32", "uint32", "4294967296", "! here: 4294967296 does not fit uint32");
    row("the least int64 as text", "int64", "\"-9223372036854775808\"", "-9223372036854775808");
    row("the greatest int64 as text", "int64", "\"9223372036854775807\"", "9223372036854775807");
    row("the least int64 as a number", "int64", "-9223372036854775808", "-9223372036854775808");
    row("the greatest int64 as a number", "int64", "9223372036854775807", "9223372036854775807");
    row("an int64 with a fraction may have been rounded", "int64", "9007199254740993.0",
        "! here: 9007199254740992 is not exact as a JSON number; write it between quotes");
    row("the greatest exact int64 with a fraction", "int64", "9007199254740991.0",
        "9007199254740991");
    row("one below int64", "int64", "\"-9223372036854775809\"",
        "! here: \"-9223372036854775809\" does not fit int64");
    row("one above int64", "int64", "\"9223372036854775808\"",
        "! here: \"9223372036854775808\" does not fit int64");
    row("an odd int64 beyond 53 bits", "int64", "\"9007199254740993\"", "9007199254740993");
    row("the least uint64", "uint64", "0", "0");
    row("the greatest uint64 as text", "uint64", "\"18446744073709551615\"",
        "18446744073709551615");
    row("one below uint64", "uint64", "-1", "! here: -1 does not fit uint64");
    row("one above uint64", "uint64", "\"18446744073709551616\"",
        "! here: \"18446744073709551616\" does not fit uint64");
    row("the greatest uint64 as a number", "uint64", "18446744073709551615",
        "18446744073709551615");
    row("a number too large to be exact", "uint64", "18446744073709551616",
        "! here: 18446744073709552000 is not exact as a JSON number; write it between quotes");
    row("a double", "double", "1.1", "1.1");
    row("a whole double", "double", "5", "5");
    row("the greatest double", "double", "1.7976931348623157e308", "1.7976931348623157e+308");
    row("the least positive double", "double", "5e-324", "5e-324");
    row("infinity as text", "double", "\"inf\"", "inf");
    row("minus infinity as text", "double", "\"-inf\"", "-inf");
    row("nan as text", "double", "\"nan\"", "nan");
    row("a double as text out of range", "double", "\"1e309\"",
        "! here: \"1e309\" does not fit double");
    row("a word is no double", "double", "\"ten\"", "! here: \"ten\" is not a number");
    row("null is no double", "double", "null", "! here: is null, not a number");
    row("strings", "string[]", "[\"wifi\", \"\", \"a b\"]", "wifi  a b");
    row("no strings", "string[]", "[]", "");
    row("a string is no array", "string[]", "\"wifi\"", "! here: is a string, not an array");
    row("a number among strings", "string[]", "[\"a\", 1]", "! here[1]: is a number, not a string");
    row("int32 at both ends", "int32[]", "[-2147483648, 2147483647]", "-2147483648 2147483647");
    row("an array element out of range", "int32[]", "[1, 2, 3000000000]",
        "! here[2]: 3000000000 does not fit int32");
    row("uint32 at both ends", "uint32[]", "[0, 4294967295]", "0 4294967295");
    row("a negative element", "uint32[]", "[-1]", "! here[0]: -1 does not fit uint32");
    row("int64 at both ends", "int64[]", "[\"-9223372036854775808\", \"9223372036854775807\"]",
        "-9223372036854775808 9223372036854775807");
    row("an int64 element that is a word", "int64[]", "[\"x\"]",
        "! here[0]: \"x\" is not a whole number");
    row("uint64 at both ends", "uint64[]", "[0, \"18446744073709551615\"]",
        "0 18446744073709551615");
    row("an uint64 element out of range", "uint64[]", "[\"18446744073709551616\"]",
        "! here[0]: \"18446744073709551616\" does not fit uint64");
    row("doubles", "double[]", "[1.1, 1e300, \"nan\", \"-inf\"]", "1.1 1e+300 nan -inf");
    row("no doubles", "double[]", "[]", "");
    row("an object is no array", "double[]", "{}", "! here: is an object, not an array");
    row("an array among doubles", "double[]", "[1, [2]]", "! here[1]: is an array, not a number");
}

void tst_Values::jsonBecomesAValue()
{
    QFETCH(QString, type);
    QFETCH(QString, given);
    QFETCH(QString, expected);
    const Json json = jsonOf(given);
    const auto convert = [&](const Place &place) { return typeOf(type).fromJson(json, place); };
    QCOMPARE(outcome(typeOf(type), convert), expected);
}

void tst_Values::textBecomesAValue_data()
{
    QTest::addColumn<QString>("type");
    QTest::addColumn<QString>("given");
    QTest::addColumn<QString>("expected");
    const auto row = [](const char *name, const char *type, const char *text,
                        const char *expected) {
        addRow(name, type, QString::fromUtf8(text), QString::fromUtf8(expected));
    };
    row("text stays text", "string", " 007 ", " 007 ");
    row("the word true", "bool", "true", "true");
    row("the word false", "bool", "false", "false");
    row("one is true", "bool", "1", "true");
    row("zero is false", "bool", "0", "false");
    row("another case is no truth value", "bool", "True",
        "! here: \"True\" is not true, false, 1 or 0");
    row("yes is no truth value", "bool", "yes", "! here: \"yes\" is not true, false, 1 or 0");
    row("nothing is no truth value", "bool", "", "! here: \"\" is not true, false, 1 or 0");
    row("leading zeros are decimal", "int32", "-0010", "-10");
    row("a plus sign is refused", "int32", "+5", "! here: \"+5\" is not a whole number");
    row("blanks are refused", "int32", " 5", "! here: \" 5\" is not a whole number");
    row("a line end is refused", "int32", "5\n", "! here: \"5 \" is not a whole number");
    row("a fraction is refused", "int32", "5.0", "! here: \"5.0\" is not a whole number");
    row("an exponent is refused", "int32", "5e0", "! here: \"5e0\" is not a whole number");
    row("hexadecimal is refused", "uint32", "0x10", "! here: \"0x10\" is not a whole number");
    row("digits of another script are refused", "int32", "\xd9\xa5",
        "! here: \"\xd9\xa5\" is not a whole number");
    row("more digits than any type", "int64", "99999999999999999999999",
        "! here: \"99999999999999999999999\" does not fit int64");
    row("minus zero is zero", "uint64", "-0", "0");
    row("a double without a whole part", "double", ".5", "0.5");
    row("a double without a fraction", "double", "5.", "5");
    row("an exponent with a sign", "double", "1.5E+3", "1500");
    row("a comma is no decimal point", "double", "1,5", "! here: \"1,5\" is not a number");
    row("a group separator is refused", "double", "1,000", "! here: \"1,000\" is not a number");
    row("infinity spelt out is refused", "double", "infinity",
        "! here: \"infinity\" is not a number");
    row("plus infinity is refused", "double", "+inf", "! here: \"+inf\" is not a number");
    row("a double below the least one", "double", "1e-400",
        "! here: \"1e-400\" does not fit double");
    row("a point alone is no number", "double", ".", "! here: \".\" is not a number");
    row("no text is an array", "int32[]", "1 2", "! here: is an array, not a single value");
}

void tst_Values::textBecomesAValue()
{
    QFETCH(QString, type);
    QFETCH(QString, given);
    QFETCH(QString, expected);
    const auto convert = [&](const Place &place) { return typeOf(type).fromText(given, place); };
    QCOMPARE(outcome(typeOf(type), convert), expected);
}

void tst_Values::nanHasNoSign()
{
    for (const char *text : { "nan", "-nan" }) {
        const QVariant value =
            typeOf(QStringLiteral("double")).fromText(QString::fromLatin1(text), {});
        QVERIFY2(qIsNaN(value.toDouble()) && !std::signbit(value.toDouble()), text);
    }
}

void tst_Values::busValuesMustHaveTheVeryType_data()
{
    QTest::addColumn<QString>("type");
    QTest::addColumn<QVariant>("given");
    QTest::addColumn<QString>("expected");
    const auto row = [](const char *name, const char *type, const QVariant &given,
                        const char *expected) {
        QTest::newRow(name) << QString::fromLatin1(type) << given << QString::fromLatin1(expected);
    };
    row("s for a string", "string", QStringLiteral("a"), "a");
    row("b for a bool", "bool", true, "true");
    row("i for an int32", "int32", -5, "-5");
    row("u for an uint32", "uint32", 5U, "5");
    row("x for an int64", "int64", QVariant::fromValue(qint64 { -5 }), "-5");
    row("t for an uint64", "uint64", QVariant::fromValue(quint64 { 5 }), "5");
    row("d for a double", "double", 0.1, "0.1");
    row("as for strings", "string[]", QStringList { QStringLiteral("a"), QStringLiteral("b") },
        "a b");
    row("ai for int32", "int32[]", QVariant::fromValue(std::vector<int32_t> { -1, 2 }), "-1 2");
    row("au for uint32", "uint32[]", QVariant::fromValue(std::vector<uint32_t> { 1, 2 }), "1 2");
    row("ax for int64", "int64[]", QVariant::fromValue(std::vector<qint64> { -1, 2 }), "-1 2");
    row("at for uint64", "uint64[]", QVariant::fromValue(std::vector<quint64> { 1, 2 }), "1 2");
    row("ad for doubles", "double[]", QVariant::fromValue(std::vector<double> { 1.5, 2 }), "1.5 2");
    row("i for a string", "string", 5, "! here: a value of D-Bus type \"i\" is not of type \"s\"");
    row("u for an int32", "int32", 5U, "! here: a value of D-Bus type \"u\" is not of type \"i\"");
    row("i for a double", "double", 5, "! here: a value of D-Bus type \"i\" is not of type \"d\"");
    row("d for an int32", "int32", 5.0, "! here: a value of D-Bus type \"d\" is not of type \"i\"");
    row("y for an int32", "int32", QVariant::fromValue(uchar { 5 }),
        "! here: a value of D-Bus type \"y\" is not of type \"i\"");
    row("o for a string", "string", QVariant::fromValue(QDBusObjectPath(QStringLiteral("/a"))),
        "! here: a value of D-Bus type \"o\" is not of type \"s\"");
    row("v for a string", "string",
        QVariant::fromValue(QDBusVariant(QVariant(QStringLiteral("a")))),
        "! here: a value of D-Bus type \"v\" is not of type \"s\"");
    row("ai for uint32", "uint32[]", QVariant::fromValue(std::vector<int32_t> { 1 }),
        "! here: a value of D-Bus type \"ai\" is not of type \"au\"");
    row("as for doubles", "double[]", QStringList {},
        "! here: a value of D-Bus type \"as\" is not of type \"ad\"");
    row("nothing for a string", "string", QVariant(),
        "! here: a value of D-Bus type \"\" is not of type \"s\"");
}

void tst_Values::busValuesMustHaveTheVeryType()
{
    QFETCH(QString, type);
    QFETCH(QVariant, given);
    QFETCH(QString, expected);
    QCOMPARE(outcomeFromBus(typeOf(type), given), expected);
}

void tst_Values::limitsHoldForWhatComesFromTheBus()
{
    const QString longest(1048576, QLatin1Char('a'));
    QCOMPARE(outcomeFromBus(typeOf(QStringLiteral("string")), longest), longest);
    QCOMPARE(outcomeFromBus(typeOf(QStringLiteral("string")), longest + QLatin1Char('a')),
             QStringLiteral("! here: the text is longer than 1048576 characters"));
    QCOMPARE(outcomeFromBus(typeOf(QStringLiteral("string[]")),
                            QStringList { longest, QStringLiteral("a") }),
             QStringLiteral("! here: the texts are longer than 1048576 characters"));
    std::vector<double> most(65536);
    QCOMPARE(outcomeFromBus(typeOf(QStringLiteral("double[]")), QVariant::fromValue(most)).size(),
             131071);
    most.push_back(0);
    QCOMPARE(outcomeFromBus(typeOf(QStringLiteral("double[]")), QVariant::fromValue(most)),
             QStringLiteral("! here: there are more than 65536 elements"));
}

void tst_Values::jsonGivesBackTheSameValue_data()
{
    QTest::addColumn<QString>("type");
    QTest::addColumn<QString>("json");
    const auto row = [](const char *name, const char *type, const char *json) {
        QTest::newRow(name) << QString::fromLatin1(type) << QString::fromUtf8(json);
    };
    row("a string", "string", "\"\xc3\xa4\\n\\\"\"");
    row("a bool", "bool", "true");
    row("an int32", "int32", "-2147483648");
    row("an uint32", "uint32", "4294967295");
    row("an int64 is a text", "int64", "\"-9223372036854775808\"");
    row("a uint64 is a text", "uint64", "\"18446744073709551615\"");
    row("a double", "double", "0.1");
    row("minus zero keeps its sign", "double", "\"-0\"");
    row("infinity is a text", "double", "\"-inf\"");
    row("nan is a text", "double", "\"nan\"");
    row("strings", "string[]", "[\"a b\",\"\"]");
    row("int32s", "int32[]", "[-1,0]");
    row("uint32s", "uint32[]", "[4294967295]");
    row("int64s", "int64[]", "[\"9007199254740993\"]");
    row("uint64s", "uint64[]", "[\"18446744073709551615\"]");
    row("doubles", "double[]", "[1.1,\"inf\"]");
    row("an empty array", "double[]", "[]");
}

void tst_Values::jsonGivesBackTheSameValue()
{
    QFETCH(QString, type);
    QFETCH(QString, json);
    const QVariant value = typeOf(type).fromJson(jsonOf(json), {});
    QVERIFY(typeOf(type).toJson(value) == jsonOf(json));
}

void tst_Values::jsonKnowsEveryDifference()
{
    const auto sameJson = [](const char *type, const QVariant &left, const QVariant &right) {
        const ValueType &found = typeOf(QString::fromLatin1(type));
        return found.toJson(left) == found.toJson(right);
    };
    const auto strings = [](const char *text) {
        return QString::fromLatin1(text).split(QLatin1Char(','));
    };
    QVERIFY(sameJson("string[]", strings("a,b"), strings("a,b")));
    QVERIFY(!sameJson("string[]", strings("a b"), strings("a,b")));
    QVERIFY(sameJson("double", qQNaN(), qQNaN()));
    QVERIFY(!sameJson("int64", QVariant::fromValue(qint64 { 9007199254740992 }),
                      QVariant::fromValue(qint64 { 9007199254740993 })));
    QVERIFY(sameJson("double[]", QVariant::fromValue(std::vector<double> { 1, 2 }),
                     QVariant::fromValue(std::vector<double> { 1, 2 })));
    QVERIFY(!sameJson("double[]", QVariant::fromValue(std::vector<double> { 1, 2 }),
                      QVariant::fromValue(std::vector<double> { 1 })));
}

void tst_Values::sizesCountEveryElement()
{
    QCOMPARE(typeOf(QStringLiteral("int32")).busSize(5), qint64 { 8 });
    QCOMPARE(typeOf(QStringLiteral("string")).busSize(QStringLiteral("abc")), qint64 { 17 });
    QCOMPARE(
        typeOf(QStringLiteral("string[]")).busSize(QStringList { QStringLiteral("a"), QString() }),
        qint64 { 27 });
    QCOMPARE(
        typeOf(QStringLiteral("double[]")).busSize(QVariant::fromValue(std::vector<double>(10))),
        qint64 { 88 });
}

QTEST_GUILESS_MAIN(tst_Values)
#include "tst_values.moc"
