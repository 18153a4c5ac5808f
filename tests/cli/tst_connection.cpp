// SPDX-License-Identifier: MIT
// Destinations and the half second, through the built program.
#include "tests/support/commandforms.h"
#include "tests/support/movrarun.h"

#include <QTest>

#include <algorithm>
#include <chrono>
#include <memory>

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
        { "the bus itself is no service", { "org.freedesktop.DBus", "/", "SERVERSTAT" }, {},
          notValid(""), {}, 1 },
        { "a unique name is not looked up", { ":1", "/", "SERVERSTAT" }, {},
          "Reply Not Valid     err=\n", {}, 0 },
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

        { "the path is sent as typed", { "@", "/a/b_1", "SERVERSTAT" }, answerStatus, "5\n",
          { "/a/b_1 DBusServerStatus" }, 0 },

        sends("-h as an argument is an argument", { "ACTION", "-h" }, "DoAction s ('-h',)"),
        { "-H is a service", { "-H", "/", "SERVERSTAT" }, {}, notValid(""), {}, 1 },

        // QCoreApplication removes these words from the vector.
        { "a debugger word before the destination changes nothing",
          { "-qmljsdebugger=x", "@", "/", "SERVERSTAT" }, answerStatus, "5\n",
          { "DBusServerStatus" }, 0 },
        { "a debugger word is removed with the next word",
          { "@", "-qmljsdebugger", "x", "/", "SERVERSTAT" }, answerStatus, "5\n",
          { "DBusServerStatus" }, 0 },
        { "a command word that was removed is an unknown word", { "@", "/", "-qmljsdebugger=x" },
          {}, unknownWord, {}, 1 },
        { "a command word that was removed with it is an unknown word",
          { "@", "/", "-qmljsdebugger", "SERVERSTAT" }, answerStatus, unknownWord, {}, 1 },
        { "a removed path is empty, and the command word removed with it is unknown",
          { "@", "-qmljsdebugger", "SERVERSTAT" }, answerStatus, unknownWord, {}, 1 },
        { "a removed destination is empty",
          { "--qmljsdebugger=a", "-qmljsdebugger=b", "-qmljsdebugger=c" }, {}, notValid(""), {},
          1 },
        { "a removed argument is missing", { "@", "/", "ACTION", "-qmljsdebugger=x" },
          {}, "Error While Parsing Command -- use -h for help   err:3\n", {}, 3 },
    };
    // clang-format on
}

} // namespace

class tst_Connection : public MovraRowsTest
{
    Q_OBJECT

public:
    tst_Connection()
        : MovraRowsTest(rows())
    {
    }

private Q_SLOTS:
    void theHalfSecond();
};

void tst_Connection::theHalfSecond()
{
    FakeService service;
    answerAll(service);
    std::vector<CommandForm> forms = firstForms();
    for (const QByteArrayList &rejected : { QByteArrayList { "NOPE" }, { "GET" } }) {
        forms.push_back(formOf(rejected));
        forms.back().words = rejected;
        forms.back().out = forms.back().failed;
    }
    std::vector<std::unique_ptr<Program>> programs;
    programs.reserve(forms.size());
    for (const CommandForm &form : forms) {
        programs.push_back(
            std::make_unique<Program>(MOVRA_PROGRAM, requestOf(form), busEnvironment()));
    }
    double quickest = 1e9;
    for (std::size_t i = 0; i < forms.size(); ++i) {
        Program &program = *programs[i];
        QVERIFY(program.waitForEnd());
        QCOMPARE(program.out, forms[i].out);
        const std::chrono::duration<double, std::milli> whole = program.ended - program.started;
        QVERIFY2(whole.count() >= 500, forms[i].words.join(' ').constData());
        quickest = std::min(quickest, whole.count());
    }
    // One run below a wide limit is enough, because the machine may be busy.
    QVERIFY2(quickest < 10000, QByteArray::number(quickest).constData());
}

QTEST_GUILESS_MAIN(tst_Connection)
#include "tst_connection.moc"
