// SPDX-License-Identifier: MIT
// A sample of the random replies through the built program, and replies at the limits of the bus.
#include "tests/hostile/randomreply.h"
#include "tests/hostile/requests.h"
#include "tests/support/movrarun.h"
#include "tests/support/setting.h"

#include <QTest>

#include <memory>
#include <vector>

namespace
{

std::vector<MovraRow> extremes()
{
    const QByteArray megabyte(1000000, 'x');
    const int many = 100000;
    const QByteArray aHundredThousandTexts =
        "['id'" + QByteArray(", 'id'").repeated(many - 1) + "]";
    const QByteArray aHundredThousandLines = QByteArray("id\n").repeated(many);
    const auto nested = [](int levels, const char *open, const char *close) {
        return "(<" + QByteArray(open).repeated(levels) + "byte 7"
            + QByteArray(close).repeated(levels) + ">,)";
    };
    const QByteArray structure = "Error:  value QDBusArgument StructureType\n";
    // clang-format off
    return {
        { "GET of a text of 1 MB", { "@", "/", "GET", "x" },
          answers("GetValue", "(<'" + megabyte + "'>,)"), megabyte + '\n',
          { "GetValue s ('x',)" }, 0 },
        { "ACTION answered with 1 MB", { "@", "/", "ACTION", "x", "y" },
          answers("DoAction", "('" + megabyte + "',)"), megabyte + '\n',
          { "DoAction ss ('x', 'y')" }, 0 },
        { "LIST of 100,000 ids", { "@", "/", "LIST", "CONFIGS" },
          answers("ListConfigIds", "(" + aHundredThousandTexts + ",)"), aHundredThousandLines,
          { "ListConfigIds" }, 0 },
        { "an error with 1 MB of text", { "@", "/", "SERVERSTAT" },
          [=](FakeService &service) {
              service.refuse("DBusServerStatus", "varn.pim.Error.Long", megabyte);
          }, "Reply Not Valid     err=\n", { "DBusServerStatus" }, 0 },
        { "an error with line ends and formats", { "@", "/", "GET", "x" },
          [](FakeService &service) {
              service.refuse("GetValue", "varn.pim.Error.Odd", "%s%n\n\r\t\x1b[2J");
          }, "Reply Not Valid   err=\n", { "GetValue s ('x',)" }, 0 },
        { "an error with a name of 255 bytes", { "@", "/", "LIST", "LOGS" },
          [](FakeService &service) {
              service.refuse("LogGetIds", "a." + QByteArray(253, 'b'), "");
          }, error(3), { "LogGetIds" }, 3 },
        { "arrays 31 deep", { "@", "/", "GET", "x" },
          answers("GetValue", nested(31, "[", "]")), "", { "GetValue s ('x',)" }, 0 },
        { "structures 31 deep", { "@", "/", "GET", "x" },
          answers("GetValue", nested(31, "(", ",)")), structure, { "GetValue s ('x',)" }, 0 },
        { "variants 60 deep", { "@", "/", "GET", "x" },
          answers("GetValue", nested(60, "<", ">")), "\n", { "GetValue s ('x',)" }, 0 },
    };
    // clang-format on
}

} // namespace

class tst_Program : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void extreme_data() { table.addTestData(); }
    void extreme()
    {
        QFETCH(int, row);
        table.check(row);
    }
    void randomReplies();

private:
    MovraRows table { extremes() };
};

void tst_Program::randomReplies()
{
    struct Run {
        RandomReply reply;
        std::unique_ptr<FakeService> service;
        std::unique_ptr<Program> program;
    };
    RandomReplies replies(static_cast<unsigned>(setting("MOVRA_HOSTILE_SEED", 1)));
    for (int round = setting("MOVRA_HOSTILE_RUNS", 200) / 100; round >= 0; --round) {
        // The half seconds of all requests overlap.
        std::vector<Run> runs;
        for (const CommandForm &request : requests()) {
            const QByteArray destination =
                "com.varn.random" + QByteArray::number(static_cast<int>(runs.size()));
            Run run { replies.next(request.signature), nullptr, nullptr };
            run.service = std::make_unique<FakeService>(destination);
            run.service->answer(request.member, run.reply.text);
            run.program = std::make_unique<Program>(
                MOVRA_PROGRAM, QByteArrayList { destination, "/" } + request.words,
                busEnvironment());
            runs.push_back(std::move(run));
        }
        for (std::size_t i = 0; i < runs.size(); ++i) {
            const CommandForm &request = requests()[i];
            const QByteArray &signature = runs[i].reply.signature;
            Program &program = *runs[i].program;
            QVERIFY2(program.waitForEnd(), runs[i].reply.text.left(2000).constData());
            const QByteArray fault = faultOf(request, { program.status, program.out, program.err },
                                             signature.startsWith(request.signature));
            QVERIFY2(fault.isEmpty(),
                     QByteArray(fault + " after " + runs[i].reply.text.left(2000)).constData());
        }
    }
}

QTEST_GUILESS_MAIN(tst_Program)
#include "tst_program.moc"
