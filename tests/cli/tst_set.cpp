// SPDX-License-Identifier: MIT
// SET and SETARRAY through the built program: output, calls and status.
#include "tests/support/movrarun.h"

#include <QTest>

namespace
{

/// A record as it is sent: the id and the variant, both as GVariant text.
QByteArray record(const QByteArray &id, const QByteArray &variant)
{
    return "SetValue a(sv) ([('" + id + "', <" + variant + ">)],)";
}

/// A SETARRAY that is accepted: what is typed from the id on, and what the variant contains.
MovraRow arrayRow(const char *name, const QByteArrayList &typed, const char *sent)
{
    return sends(name, QByteArrayList { "SETARRAY" } + typed, record(typed.first(), sent));
}

/// A SETARRAY that is rejected: what is typed from the id on, and the printed length.
MovraRow unsupported(const char *name, const QByteArrayList &typed, const QByteArray &length = {})
{
    const QByteArray line =
        length.isEmpty() ? QByteArray() : "Unsupported  array size " + length + '\n';
    return { name, QByteArrayList { "@", "/", "SETARRAY" } + typed, {}, line + error(2), {}, 2 };
}

std::vector<MovraRow> rows()
{
    return {
        sends("SET sends a text", { "SET", ":config:data:ftp:userName:", "pordo_user" },
              record(":config:data:ftp:userName:", "'pordo_user'")),
        sends("SET sends a number as a text", { "SET", ":a:", "42" }, record(":a:", "'42'")),
        sends("SET ignores kind words", { "SET", ":a:doubleARRAY:", "1.5" },
              record(":a:doubleARRAY:", "'1.5'")),
        sends("SET ignores further words", { "SET", ":a:", "1", "2" }, record(":a:", "'1'")),
        sends("SET with an empty value", { "SET", ":a:", "" }, record(":a:", "''")),
        sends("SET with an empty id", { "SET", "", "x" }, record("", "'x'")),
        sends("SET trims nothing", { "SET", " :a: ", "  x\t" }, record(" :a: ", "'  x\\t'")),
        asks("SET does not wait for the reply", { "SET", ":a:", "x" }, refuses("SetValue"), "",
             record(":a:", "'x'")),
        sends("SET: the id is read as UTF-8, the value is Latin-1",
              { "SET", ":\xc3\xa9:", "\xc3\xa9" }, record(":é:", "'Ã©'")),
        sends("SET: a lone byte 0xe9 in the id is a replacement character",
              { "SET", ":\xe9:", "\xe9" }, record(":\xef\xbf\xbd:", "'é'")),
        sends("SET: a euro sign", { "SET", "€", "\xa4" }, record("€", "'¤'")),
        arrayRow("doubles",
                 { ":config:voip:delay:doubleARRAY:", "5", "1.1", "2.2", "3.3", "4.4", "5.5" },
                 "[1.1000000000000001, 2.2000000000000002, 3.2999999999999998, 4.4000000000000004, "
                 "5.5]"),
        arrayRow("floats are doubles", { ":x:floatARRAY:", "1", "0.5" }, "[0.5]"),
        arrayRow("texts", { ":x:stringARRAY:", "2", "wifi", "bluetooth" }, "['wifi', 'bluetooth']"),
        arrayRow("one text stays a list", { ":x:stringARRAY:", "1", "wifi" }, "['wifi']"),
        arrayRow("an empty text", { ":x:stringARRAY:", "2", "", " a " }, "['', ' a ']"),
        arrayRow("uint32: what does not convert is 0",
                 { ":x:uint32ARRAY:", "3", "10", "-1", "abc" }, "[uint32 10, 0, 0]"),
        arrayRow("uint32: greatest and beyond",
                 { ":x:uint32ARRAY:", "2", "4294967295", "4294967296" }, "[uint32 4294967295, 0]"),
        arrayRow(
            "int32: extremes and beyond",
            { ":x:int32ARRAY:", "4", "-2147483648", "2147483647", "2147483648", "-2147483649" },
            "[-2147483648, 2147483647, 0, 0]"),
        arrayRow("uint64: greatest and beyond",
                 { ":x:uint64ARRAY:", "2", "18446744073709551615", "18446744073709551616" },
                 "[uint64 18446744073709551615, 0]"),
        arrayRow("int64: extremes and beyond",
                 { ":x:int64ARRAY:", "3", "-9223372036854775808", "9223372036854775807",
                   "9223372036854775808" },
                 "[int64 -9223372036854775808, 9223372036854775807, 0]"),
        arrayRow("integers: fractions, hexadecimals, commas and nothing are 0",
                 { ":x:int32ARRAY:", "5", "1.5", "0x10", "1,000", "", "010" }, "[0, 0, 0, 0, 10]"),
        arrayRow("uint32: always decimal", { ":x:uint32ARRAY:", "2", "0x10", "010" },
                 "[uint32 0, 10]"),
        arrayRow("int64: always decimal", { ":x:int64ARRAY:", "2", "0x10", "010" },
                 "[int64 0, 10]"),
        arrayRow("uint64: always decimal", { ":x:uint64ARRAY:", "2", "0x10", "010" },
                 "[uint64 0, 10]"),
        arrayRow("the length is always decimal",
                 { ":x:int32ARRAY:", "010", "1", "2", "3", "4", "5", "6", "7", "8", "9", "10" },
                 "[1, 2, 3, 4, 5, 6, 7, 8, 9, 10]"),
        arrayRow("integers: blanks around and a sign", { ":x:int32ARRAY:", "2", " 7 ", "+8" },
                 "[7, 8]"),
        arrayRow("doubles: words, commas and nothing are 0",
                 { ":x:doubleARRAY:", "4", "abc", "1,5", "", "1e3" }, "[0.0, 0.0, 0.0, 1000.0]"),
        arrayRow("doubles: infinity, and what is too great for a double",
                 { ":x:doubleARRAY:", "3", "inf", "-inf", "1e999" }, "[inf, -inf, inf]"),
        arrayRow("only the announced length is sent", { ":x:int32ARRAY:", "2", "1", "2", "3" },
                 "[1, 2]"),
        arrayRow("a length of one", { ":x:int32ARRAY:", "1", "1", "2", "3" }, "[1]"),
        arrayRow("the length may have blanks and a sign", { ":x:int32ARRAY:", " +1 ", "1" }, "[1]"),
        arrayRow("the unsigned word contains the signed one: 64 bits",
                 { ":x:uint64ARRAY:", "1", "-1" }, "[uint64 0]"),
        arrayRow("the first kind in the order of the search wins",
                 { ":x:stringARRAY:int64ARRAY:uint32ARRAY:", "1", "5" }, "[uint32 5]"),
        arrayRow("an id with uint64ARRAY and int32ARRAY is signed 32-bit",
                 { ":a:uint64ARRAY:int32ARRAY:", "1", "-1" }, "[-1]"),
        arrayRow("a kind word may be anywhere in the id", { "doubleARRAY", "1", "2" }, "[2.0]"),
        sends("SETARRAY: the id is read as UTF-8, the texts are Latin-1",
              { "SETARRAY", ":\xc3\xa9:stringARRAY", "2", "\xc3\xa9", "\xe9" },
              record(":é:stringARRAY", "['Ã©', 'é']")),
        sends("SET: a byte order mark before the id is dropped", { "SET", "\xef\xbb\xbf:x:", "a" },
              record(":x:", "'a'")),
        sends("SETARRAY: a lone byte 0xe9 in the id", { "SETARRAY", "\xe9stringARRAY", "1", "a" },
              record("\xef\xbf\xbdstringARRAY", "['a']")),

        unsupported("a length of 0", { ":x:int32ARRAY:", "0", "1" }, "0"),
        unsupported("a length of 513", { ":x:int32ARRAY:", "513", "1" }, "513"),
        unsupported("a length that is a word", { ":x:int32ARRAY:", "five", "1" }, "0"),
        unsupported("a hexadecimal length", { ":x:int32ARRAY:", "0x1", "1" }, "0"),
        unsupported("a negative length", { ":x:int32ARRAY:", "-1", "1" }, "0"),
        unsupported("an empty length", { ":x:int32ARRAY:", "", "1" }, "0"),
        unsupported("the greatest length", { ":x:int32ARRAY:", "4294967295", "1" }, "4294967295"),
        unsupported("a length beyond 32 bits", { ":x:int32ARRAY:", "4294967297", "1" }, "0"),
        unsupported("the length is tested before the kind", { ":x:", "0", "1" }, "0"),
        unsupported("no kind word is an error, not texts", { ":x:", "1", "1" }),
        unsupported("a kind word in capitals is none", { ":x:INT32ARRAY:", "1", "1" }),
        unsupported("the usage text's first example has no kind word",
                    { ":config:voip:delay:", "5", "1.1", "2.2", "3.3", "4.4", "5.5" }),
        unsupported("the usage text's second example has no kind word",
                    { ":config:data:ifnames:", "2", "wifi", "bluetooth" }),
        unsupported("the usage text's third example has no kind word",
                    { ":config:data:threshold:", "3", "10", "21", "40" }),
    };
}

/// "['a', 'b', ...]" in GVariant text.
QByteArray listOf(const QByteArrayList &texts)
{
    return "['" + texts.join("', '") + "']";
}

} // namespace

class tst_Set : public MovraRowsTest
{
    Q_OBJECT

public:
    tst_Set()
        : MovraRowsTest(rows())
    {
    }

private Q_SLOTS:
    void theGreatestLength();
    void oneMoreThanTheGreatestLength();
    void aLengthBeyondTheValuesReadsTheEnvironment_data();
    void aLengthBeyondTheValuesReadsTheEnvironment();
    void aMegabyteArrivesWhole();
};

void tst_Set::theGreatestLength()
{
    FakeService service;
    QByteArrayList values;
    for (int i = 0; i < 512; ++i) {
        values.append("v" + QByteArray::number(i));
    }
    Program program(MOVRA_PROGRAM,
                    QByteArrayList { "com.varn.tul", "/", "SETARRAY", ":x:stringARRAY:", "512" }
                        + values + QByteArrayList { "one too many" },
                    busEnvironment());
    QVERIFY(program.waitForEnd());
    QCOMPARE(program.status, 0);
    QCOMPARE(program.out + program.err, QByteArray());
    QCOMPARE(service.waitForCalls(1), QByteArrayList { record(":x:stringARRAY:", listOf(values)) });
}

void tst_Set::oneMoreThanTheGreatestLength()
{
    FakeService service;
    Program program(MOVRA_PROGRAM,
                    QByteArrayList { "com.varn.tul", "/", "SETARRAY", ":x:stringARRAY:", "513" }
                        + QVector<QByteArray>(513, "v").toList(),
                    busEnvironment());
    QVERIFY(program.waitForEnd());
    QCOMPARE(program.status, 2);
    QCOMPARE(program.out, "Unsupported  array size 513\n" + error(2));
    QCOMPARE(service.takeCalls(), QByteArrayList());
}

void tst_Set::aLengthBeyondTheValuesReadsTheEnvironment_data()
{
    QTest::addColumn<QByteArrayList>(
        "takenOut"); ///< removed by QCoreApplication before the handler runs
    QTest::addColumn<QByteArray>("id");
    QTest::addColumn<QByteArrayList>("lengthAndValues");
    QTest::addColumn<QByteArray>(
        "sent"); ///< %BUS% is replaced by the first entry of the environment

    const auto row = [](const char *name, const QByteArrayList &takenOut, const char *id,
                        const QByteArrayList &lengthAndValues, const char *sent) {
        QTest::newRow(name) << takenOut << QByteArray(id) << lengthAndValues << QByteArray(sent);
    };
    row("one more than given reads the null at the end of the vector", {},
        ":x:stringARRAY:", { "2", "wifi" }, "['wifi']");
    row("the null is one position", {}, ":x:stringARRAY:", { "3", "wifi" }, "['wifi', '%BUS%']");
    row("up to the length", {}, ":x:stringARRAY:", { "4", "wifi" }, "['wifi', '%BUS%', 'A=1']");
    row("up to the end of the environment", {}, ":x:stringARRAY:", { "512", "wifi", "bt" },
        "['wifi', 'bt', '%BUS%', 'A=1', 'B=é']");
    row("variables are no numbers", {}, ":x:int32ARRAY:", { "512", "7" }, "[7, 0, 0, 0]");
    row("a removed word leaves one more null", { "-qmljsdebugger=x" },
        ":x:stringARRAY:", { "512", "wifi", "bt" }, "['wifi', 'bt', '%BUS%', 'A=1', 'B=é']");
    row("two removed words leave a stale one and one more null", { "-qmljsdebugger", "x" },
        ":x:stringARRAY:", { "512", "wifi", "bt" }, "['wifi', 'bt', 'bt', '%BUS%', 'A=1', 'B=é']");
}

void tst_Set::aLengthBeyondTheValuesReadsTheEnvironment()
{
    QFETCH(QByteArrayList, takenOut);
    QFETCH(QByteArray, id);
    QFETCH(QByteArrayList, lengthAndValues);
    QFETCH(QByteArray, sent);

    FakeService service;
    const QByteArray bus = "DBUS_SESSION_BUS_ADDRESS=" + qgetenv("DBUS_SESSION_BUS_ADDRESS");
    Program program(MOVRA_PROGRAM,
                    QByteArrayList { "com.varn.tul", "/", "SETARRAY" } + takenOut
                        + QByteArrayList { id } + lengthAndValues,
                    { bus, "A=1", "B=\xe9" });
    QVERIFY(program.waitForEnd());
    QCOMPARE(program.status, 0);
    QCOMPARE(program.out + program.err, QByteArray());
    QCOMPARE(service.waitForCalls(1), QByteArrayList { record(id, sent.replace("%BUS%", bus)) });
}

void tst_Set::aMegabyteArrivesWhole()
{
    FakeService service;
    QByteArrayList values;
    for (int i = 0; i < 512; ++i) {
        values.append(QByteArray(2048, static_cast<char>('a' + i % 26)));
    }
    Program program(MOVRA_PROGRAM,
                    QByteArrayList { "com.varn.tul", "/", "SETARRAY", ":x:stringARRAY:", "512" }
                        + values,
                    busEnvironment());
    QVERIFY(program.waitForEnd());
    QCOMPARE(program.status, 0);
    QCOMPARE(program.out + program.err, QByteArray());
    const QByteArrayList sent { record(":x:stringARRAY:", listOf(values)) };
    QVERIFY(service.waitForCalls(1) == sent);
}

QTEST_GUILESS_MAIN(tst_Set)
#include "tst_set.moc"
