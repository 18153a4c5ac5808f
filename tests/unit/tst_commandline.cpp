// SPDX-License-Identifier: MIT
// Reading the argument vector: words at positions, and requests for the usage text.
#include "app/commandline.h"
#include "app/usage.h"

#include "tests/support/argumentvector.h"

#include <QTest>

class tst_CommandLine : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void wordAt_data();
    void wordAt();
    void asksForUsage_data();
    void asksForUsage();
};

void tst_CommandLine::wordAt_data()
{
    QTest::addColumn<QByteArrayList>("words");
    QTest::addColumn<int>("position");
    QTest::addColumn<QByteArray>("word");

    const QByteArrayList full { "movra", "com.varn.tul", "/", "GET" };
    QTest::newRow("the service") << full << 1 << QByteArray("com.varn.tul");
    QTest::newRow("the path") << full << 2 << QByteArray("/");
    QTest::newRow("the command word") << full << 3 << QByteArray("GET");
    QTest::newRow("bytes stay as they are")
        << QByteArrayList { "movra", "\xe9\xc3\xa9" } << 1 << QByteArray("\xe9\xc3\xa9");
    QTest::newRow("an empty word") << QByteArrayList { "movra", "" } << 1 << QByteArray();
    QTest::newRow("the end of the vector")
        << QByteArrayList { "movra", "com.varn.tul", "/" } << 3 << QByteArray();
    QTest::newRow("what follows the end is not a word")
        << QByteArrayList { "movra", "com.varn.tul" } << 3 << QByteArray();
    QTest::newRow("an empty vector") << QByteArrayList {} << 1 << QByteArray();
}

void tst_CommandLine::wordAt()
{
    QFETCH(QByteArrayList, words);
    QFETCH(int, position);
    QFETCH(QByteArray, word);

    ArgumentVector vector(words);
    QCOMPARE(QByteArray::fromStdString(::wordAt(vector.argv(), static_cast<Position>(position))),
             word);
}

void tst_CommandLine::asksForUsage_data()
{
    QTest::addColumn<QByteArrayList>("words");
    QTest::addColumn<bool>("asked");

    const auto request = [](const char *service) {
        return QByteArrayList { "movra", service, "/", "GET" };
    };
    QTest::newRow("no program name") << QByteArrayList {} << true;
    QTest::newRow("no arguments") << QByteArrayList { "movra" } << true;
    QTest::newRow("one argument") << QByteArrayList { "movra", "com.varn.tul" } << true;
    QTest::newRow("two arguments") << QByteArrayList { "movra", "com.varn.tul", "/" } << true;
    QTest::newRow("three arguments") << request("com.varn.tul") << false;
    QTest::newRow("three empty arguments") << QByteArrayList { "movra", "", "", "" } << false;
    QTest::newRow("-h alone") << QByteArrayList { "movra", "-h" } << true;
    QTest::newRow("-h") << request("-h") << true;
    QTest::newRow("-help") << request("-help") << true;
    QTest::newRow("-hx") << request("-hx") << true;
    QTest::newRow("--h") << request("--h") << true;
    QTest::newRow("--help") << request("--help") << true;
    QTest::newRow("--hx") << request("--hx") << true;
    QTest::newRow("-H is a service") << request("-H") << false;
    QTest::newRow("--Help is a service") << request("--Help") << false;
    QTest::newRow("- is a service") << request("-") << false;
    QTest::newRow("-- is a service") << request("--") << false;
    QTest::newRow("---h is a service") << request("---h") << false;
    QTest::newRow("h is a service") << request("h") << false;
    QTest::newRow("a blank before -h") << request(" -h") << false;
    QTest::newRow("-h as the path") << QByteArrayList { "movra", "a.b", "-h", "GET" } << false;
    QTest::newRow("-h as the command") << QByteArrayList { "movra", "a.b", "/", "-h" } << false;
    QTest::newRow("-h as an argument")
        << QByteArrayList { "movra", "a.b", "/", "GET", "-h" } << false;
}

void tst_CommandLine::asksForUsage()
{
    QFETCH(QByteArrayList, words);
    QFETCH(bool, asked);

    ArgumentVector vector(words);
    QCOMPARE(::asksForUsage(vector.argv()), asked);
}

QTEST_APPLESS_MAIN(tst_CommandLine)
#include "tst_commandline.moc"
