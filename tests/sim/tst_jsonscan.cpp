// SPDX-License-Identifier: MIT
// The strict look at JSON texts: where a fault lies, in which words, and that Qt reads what passes.
#include "sim/jsonscan.h"

#include <QJsonDocument>
#include <QtTest>

class TestJsonScan : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void theFirstFaultIsToldWithItsPlace_data();
    void theFirstFaultIsToldWithItsPlace();
    void goodTextsPass_data();
    void goodTextsPass();
    void whatPassesIsReadByQt();
};

void TestJsonScan::theFirstFaultIsToldWithItsPlace_data()
{
    QTest::addColumn<QByteArray>("text");
    QTest::addColumn<int>("offset");
    QTest::addColumn<QString>("reason");
    const auto row = [](const char *text, int offset, const char *reason) {
        QTest::newRow(text) << QByteArray(text) << offset << QString::fromUtf8(reason);
    };
    row(" ", 1, "expected a value, found the end");
    row("nul", 0, "expected a value, found \"n\"");
    row("truely", 4, "expected the end, found \"l\"");
    row("NaN", 0, "expected a value, found \"N\"");
    row("{} {}", 3, "expected the end, found \"{\"");
    row("{1", 1, "expected a key or \"}\", found \"1\"");
    row("{", 1, "expected a key or \"}\", found the end");
    row("{\"a\" 1}", 5, "expected \":\", found \"1\"");
    row("{\"a\":}", 5, "expected a value, found \"}\"");
    row("{\"a\":1,}", 7, "expected a key, found \"}\"");
    row("{\"a\":1 \"b\":2}", 7, "expected \",\" or \"}\", found \"\"\"");
    row("{\"a\":1]", 6, "expected \",\" or \"}\", found \"]\"");
    row("{\"a\":1", 6, "expected \",\" or \"}\", found the end");
    row("[1,]", 3, "expected a value, found \"]\"");
    row("[1 2]", 3, "expected \",\" or \"]\", found \"2\"");
    row("[1}", 2, "expected \",\" or \"]\", found \"}\"");
    row("[", 1, "expected a value, found the end");
    row("\"a", 2, "expected the closing quote, found the end");
    row("\"a\n\"", 2, "expected the closing quote, found \" \"");
    row("\"\\x\"", 2, "expected one of \"\\/bfnrtu, found \"x\"");
    row("\"\\u12G4\"", 5, "expected a hexadecimal digit, found \"G\"");
    row("-", 1, "expected a digit, found the end");
    row("01", 1, "expected the end, found \"1\"");
    row(".5", 0, "expected a value, found \".\"");
    row("+5", 0, "expected a value, found \"+\"");
    row("5.", 2, "expected a digit, found the end");
    row("5e+", 3, "expected a digit, found the end");
    row("{\"a\":{\"b\":1,\"b\":2}}", 12, "the key \"b\" is there already");
    row("{\"\\u0061\":1, \"a\":2}", 13, "the key \"a\" is there already");
    row("\xf0\x9f\x98\x80", 0, "expected a value, found \"\xf0\x9f\x98\x80\"");
    QTest::newRow("nested once too deeply")
        << QByteArray(101, '[') + '1' << 101 << QStringLiteral("nested too deeply");
}

void TestJsonScan::theFirstFaultIsToldWithItsPlace()
{
    QFETCH(QByteArray, text);
    QFETCH(int, offset);
    QFETCH(QString, reason);
    const auto fault = findJsonFault(text);
    QVERIFY(fault);
    QCOMPARE(fault->reason, reason);
    QCOMPARE(fault->offset, offset);
}

void TestJsonScan::goodTextsPass_data()
{
    QTest::addColumn<QByteArray>("text");
    const auto row = [](const QByteArray &text) {
        QTest::newRow(text.left(40).constData()) << text;
    };
    row("{}");
    row(" [ ] \t\r\n");
    row("\xef\xbb\xbf{}");
    row("[true,false,null,\"\",-0,0.5,1e5,1E-5,10.25e+10]");
    row(R"({"":{"a":[{"a":1},{"a":"\"\\\/\b\f\n\r\t\u00e4"}]},"a":2})");
    row(QByteArray(100, '[') + '1' + QByteArray(100, ']'));
}

void TestJsonScan::goodTextsPass()
{
    QFETCH(QByteArray, text);
    const auto fault = findJsonFault(text);
    QVERIFY2(!fault, fault ? qPrintable(fault->reason) : "");
}

void TestJsonScan::whatPassesIsReadByQt()
{
    const QByteArray good =
        R"({"a": [true, false, null, -1.25, 0, 7], "b": {"\u00e4\n": "c", "": []}})";
    QVERIFY(!findJsonFault(good));
    int passed = 0;
    int refused = 0;
    for (int at = 0; at < good.size(); ++at) {
        for (char other = 0; other < 127; ++other) {
            QByteArray text = good;
            text[at] = other;
            if (findJsonFault(text)) {
                ++refused;
                continue;
            }
            QJsonParseError error;
            QJsonDocument::fromJson(text, &error);
            QVERIFY2(error.error == QJsonParseError::NoError, text.constData());
            ++passed;
        }
    }
    QVERIFY(passed > 500);
    QVERIFY(refused > 1000);
}

QTEST_GUILESS_MAIN(TestJsonScan)
#include "tst_jsonscan.moc"
