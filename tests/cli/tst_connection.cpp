// SPDX-License-Identifier: MIT
// Destinations, unknown words and the half second, through the built program.
#include "tests/support/movrarun.h"

#include <QTest>

#include <chrono>

namespace
{

const QByteArray unknownWord = "Error While Parsing Command -- use -h for help   err:1\n";

QByteArray notValid(const char *reason)
{
    return QByteArray("Client DBus Interface not valid, error: ") + reason + '\n';
}

void answerStatus(FakeService &service)
{
    service.answer("DBusServerStatus", "(5,)");
}

std::vector<MovraRow> rows()
{
    // clang-format off
    return {
        { "a name that nobody owns fails with an empty text",
          { "com.varn.nobody", "/", "SERVERSTAT" }, {}, notValid(""), {}, 1 },
        { "a malformed name", { "a..b", "/", "SERVERSTAT" }, {},
          notValid("Invalid service name: a..b"), {}, 1 },
        { "an empty name", { "", "/", "SERVERSTAT" }, {}, notValid(""), {}, 1 },
        { "a malformed path", { "@", "no/slash", "SERVERSTAT" }, {},
          notValid("Invalid object path: no/slash"), {}, 1 },
        { "a path that ends in a slash", { "@", "/a/", "SERVERSTAT" }, {},
          notValid("Invalid object path: /a/"), {}, 1 },
        { "a name with a byte above 0x7f", { "a.\xe9", "/", "SERVERSTAT" }, {},
          notValid("Invalid service name: a.\xe9"), {}, 1 },
        { "a path typed in UTF-8", { "@", "/\xc3\xa9", "SERVERSTAT" }, {},
          notValid("Invalid object path: /\xc3\xa9"), {}, 1 },
        { "formats in the path are text", { "@", "%s%n", "SERVERSTAT" }, {},
          notValid("Invalid object path: %s%n"), {}, 1 },
        { "a failed connection comes before an unknown word", { "com.varn.nobody", "/", "nope" },
          {}, notValid(""), {}, 1 },

        { "the path travels as typed", { "@", "/a/b_1", "SERVERSTAT" }, answerStatus, "5\n",
          { "/a/b_1 DBusServerStatus" }, 0 },

        { "an unknown word", { "@", "/", "NOPE" }, {}, unknownWord, {}, 1 },
        { "a command word in lower case", { "@", "/", "get" }, {}, unknownWord, {}, 1 },
        { "a longer word", { "@", "/", "SERVERSTATS" }, {}, unknownWord, {}, 1 },
        { "the beginning of a word", { "@", "/", "SERVER" }, {}, unknownWord, {}, 1 },
        { "an empty word", { "@", "/", "" }, {}, unknownWord, {}, 1 },
        { "-h as the command word is an unknown word", { "@", "/", "-h" }, {}, unknownWord, {}, 1 },
        { "--help as the command word is an unknown word", { "@", "/", "--help", "x" }, {},
          unknownWord, {}, 1 },
        { "-h as an argument is an argument", { "@", "/", "ACTION", "-h" }, {}, "",
          { "DoAction s ('-h',)" }, 0 },
        { "-H is a service", { "-H", "/", "SERVERSTAT" }, {}, notValid(""), {}, 1 },

        // QCoreApplication takes these words out of the vector.
        { "a debugger word in front changes nothing",
          { "-qmljsdebugger=x", "@", "/", "SERVERSTAT" }, answerStatus, "5\n",
          { "DBusServerStatus" }, 0 },
        { "a debugger word takes the one behind along",
          { "@", "-qmljsdebugger", "x", "/", "SERVERSTAT" }, answerStatus, "5\n",
          { "DBusServerStatus" }, 0 },
        { "a command word that was taken out is an unknown word", { "@", "/", "-qmljsdebugger=x" },
          {}, unknownWord, {}, 1 },
        { "a command word that went along is an unknown word",
          { "@", "/", "-qmljsdebugger", "SERVERSTAT" }, answerStatus, unknownWord, {}, 1 },
        { "a path that was taken out is empty, and what went along does not come back",
          { "@", "-qmljsdebugger", "SERVERSTAT" }, answerStatus, unknownWord, {}, 1 },
        { "a destination that was taken out is empty",
          { "--qmljsdebugger=a", "-qmljsdebugger=b", "-qmljsdebugger=c" }, {}, notValid(""), {},
          1 },
        { "an argument that was taken out is missing", { "@", "/", "ACTION", "-qmljsdebugger=x" },
          {}, "Error While Parsing Command -- use -h for help   err:3\n", {}, 3 },
    };
    // clang-format on
}

} // namespace

class tst_Connection : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void run_data() { table.addTestData(); }
    void run()
    {
        QFETCH(int, row);
        table.check(row);
    }
    void theHalfSecond_data();
    void theHalfSecond();

private:
    MovraRows table { rows() };
};

void tst_Connection::theHalfSecond_data()
{
    QTest::addColumn<QByteArrayList>("request");
    QTest::addColumn<QByteArray>("out");
    QTest::newRow("after an answer") << QByteArrayList { "SERVERSTAT" } << QByteArray("5\n");
    QTest::newRow("after a refused call")
        << QByteArrayList { "ACTION", "x" } << QByteArray("Reply Not Valid     err=\n");
    QTest::newRow("after an unknown word") << QByteArrayList { "NOPE" } << unknownWord;
    QTest::newRow("after a word that is not supported")
        << QByteArrayList { "SERVERCMD", "NO", "1" } << error("2");
    QTest::newRow("after GET") << QByteArrayList { "GET", "x" } << QByteArray("text\n");
    QTest::newRow("after LIST") << QByteArrayList { "LIST", "CONFIGS" } << QByteArray("a\n");
    QTest::newRow("after FILE") << QByteArrayList { "FILE", "SAVE", "x" } << QByteArray();
    QTest::newRow("after SET") << QByteArrayList { "SET", "x", "y" } << QByteArray();
    QTest::newRow("after SETARRAY")
        << QByteArrayList { "SETARRAY", "int32ARRAY", "1", "5" } << QByteArray();
    QTest::newRow("after NOTIFY") << QByteArrayList { "NOTIFY", "CONFIG", "START" } << QByteArray();
    QTest::newRow("after DBG") << QByteArrayList { "DBG", "SET", "x" } << QByteArray();
    QTest::newRow("after a missing argument") << QByteArrayList { "ACTION" } << error("3");
}

void tst_Connection::theHalfSecond()
{
    QFETCH(QByteArrayList, request);
    QFETCH(QByteArray, out);

    FakeService service;
    answerStatus(service);
    service.refuse("DoAction", "varn.pim.Error.Refused", "no");
    service.answer("GetValue", "(<'text'>,)");
    service.answer("ListConfigIds", "(['a'],)");
    service.answer("SaveConfig", "(true,)");
    Program program(MOVRA_PROGRAM, QByteArrayList { "com.varn.tul", "/" } + request,
                    busEnvironment());
    // The line comes through the pipe while the program stays.
    QVERIFY(program.waitForLines(out.count('\n')));
    QCOMPARE(program.out, out);
    QVERIFY(program.waitForEnd());
    QCOMPARE(program.out, out);
    const std::chrono::duration<double, std::milli> whole = program.ended - program.started;
    // The upper limit is wide because machines are busy.
    QVERIFY2(whole.count() >= 500 && whole.count() < 10000,
             QByteArray::number(whole.count()).constData());
}

QTEST_GUILESS_MAIN(tst_Connection)
#include "tst_connection.moc"
