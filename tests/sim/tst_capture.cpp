// SPDX-License-Identifier: MIT
// The copy of a service: the catalogue gives the same answers. Invalid answers never become a
// catalogue.
#include "tests/support/fakeservice.h"
#include "tests/support/program.h"

#include <QFile>
#include <QTemporaryDir>
#include <QTest>

#include <functional>

using Prepare = std::function<void(FakeService &)>;
Q_DECLARE_METATYPE(Prepare)

namespace
{

constexpr const char *everything = R"({
  "configs": [
    {"id": ":s:", "type": "string", "value": "\u00e4\n\"\u0001", "status": -2147483648},
    {"id": ":b:", "type": "bool", "value": true}, {"id": ":i:", "type": "int32", "value": -2147483648},
    {"id": ":u:", "type": "uint32", "value": 4294967295},
    {"id": ":x:", "type": "int64", "value": -9223372036854775808},
    {"id": ":t:", "type": "uint64", "value": 18446744073709551615},
    {"id": ":d:", "type": "double", "value": 0.1}, {"id": ":-0:", "type": "double", "value": "-0"},
    {"id": ":as:stringARRAY:", "type": "string[]", "value": ["a b", ""]},
    {"id": ":ai:int32ARRAY:", "type": "int32[]", "value": [-1]},
    {"id": ":au:uint32ARRAY:", "type": "uint32[]", "value": [4294967295]},
    {"id": ":ax:int64ARRAY:", "type": "int64[]", "value": ["-9007199254740993"]},
    {"id": ":at:uint64ARRAY:", "type": "uint64[]", "value": []},
    {"id": ":ad:doubleARRAY:", "type": "double[]", "value": [0.5, "nan", "-inf"]}],
  "results": [{"id": ":r:", "type": "int32", "value": 5, "status": 2147483647}],
  "actions": [{"id": ":a:"}, {"id": ":b 2:"}], "logs": ["config", "\u00e4"],
  "debugLogs": ["LOG_A", "LOG_\u00c4"]
})";

// Asks for everything that GET, LIST and DBG GET_IDS can show.
constexpr const char *questions = R"(
ask() { dbus-send --session --print-reply=literal --dest=com.varn.tul / "varn.pim.$@"; }
for member in ListConfigIds ListResultIds ListActionIds LogGetIds DbgLogGetIds; do ask $member; done
for id in :s: :b: :i: :u: :x: :t: :d: :-0: :as:stringARRAY: :ai:int32ARRAY: :au:uint32ARRAY: \
    :ax:int64ARRAY: :at:uint64ARRAY: :ad:doubleARRAY: :r:; do
    ask GetValueStatus string:$id
done)";

constexpr const char *emptyCatalog =
    "{\n  \"configs\": [],\n  \"results\": [],\n  \"actions\": [],\n"
    "  \"logs\": [],\n  \"debugLogs\": []\n}\n";

} // namespace

class tst_Capture : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void initTestCase();
    void aCaptureAnswersAsTheOriginal();
    void itemsThatACatalogueCannotExpressAreSkipped();
    void nonsenseIsAnError_data();
    void nonsenseIsAnError();
    void aMissingServiceIsNotCaptured_data();
    void aMissingServiceIsNotCaptured();
    void thousandsOfIdsShowProgressOnATerminal();

private:
    /// Runs the simulator to its end: status, standard output, standard error.
    QByteArray run(const QByteArrayList &arguments)
    {
        Program program(MOVRA_SIM_PROGRAM, arguments, environment);
        program.waitForEnd();
        return QByteArray::number(program.status) + '|' + program.out + '|' + program.err;
    }
    QByteArray capture() { return run({ "--capture", "com.varn.tul" }); }
    static void answerNothing(FakeService &service)
    {
        for (const char *member :
             { "ListConfigIds", "ListResultIds", "ListActionIds", "DbgLogGetIds" }) {
            service.answer(member, "(@as [],)");
        }
        service.answer("LogGetIds", "('',)");
    }

    QTemporaryDir scratch;
    QByteArrayList environment;
};

void tst_Capture::initTestCase()
{
    for (const char *name : { "PATH", "LSAN_OPTIONS", "DBUS_SESSION_BUS_ADDRESS" }) {
        environment.append(QByteArray(name) + '=' + qgetenv(name));
    }
    environment += { "HOME=/nonexistent", "LC_ALL=C.UTF-8", "PROGRAM=" MOVRA_SIM_PROGRAM };
}

void tst_Capture::aCaptureAnswersAsTheOriginal()
{
    const QByteArray original = QFile::encodeName(scratch.filePath(QStringLiteral("original")));
    const QByteArray copy = QFile::encodeName(scratch.filePath(QStringLiteral("copy")));
    QFile file(QFile::decodeName(original));
    QVERIFY(file.open(QIODevice::WriteOnly));
    file.write(everything);
    file.close();
    const QByteArray made = run({ "--catalog", original, "--", "sh", "-c",
                                  "\"$PROGRAM\" --capture com.varn.tul >\"$0\"; echo $?", copy });
    QCOMPARE(made, QByteArray("0|0\n|"));
    const QByteArray wanted = run({ "--catalog", original, "--", "sh", "-c", questions });
    QCOMPARE(wanted.count("struct {"), 15);
    QVERIFY2(wanted.endsWith("int32 5\n      int32 2147483647\n   }\n|"), wanted.constData());
    QCOMPARE(run({ "--catalog", copy, "--", "sh", "-c", questions }), wanted);
}

void tst_Capture::itemsThatACatalogueCannotExpressAreSkipped()
{
    FakeService service;
    answerNothing(service);
    service.answer("ListConfigIds", "([':a:', '', ':a:'],)");
    service.answer("ListResultIds", "([':r:'],)");
    service.answer("ListActionIds", "([':a:', ':go:'],)");
    service.answer("GetValueStatus", "((':a:', <{'k': <1>}>, 0),)");
    service.answer("LogGetIds", "('config  a:b',)");
    service.answer("DbgLogGetIds", "(['LOG_A', 'LOG_A', 'low'],)");
    service.answer("ListResultIds", "(@as [],)");
    QCOMPARE(capture(),
             QByteArray("0|{\n  \"configs\": [],\n  \"results\": [],\n  \"actions\": [\n"
                        "    {\"id\":\":go:\"}\n  ],\n  \"logs\": [\n    \"config\"\n  ],\n"
                        "  \"debugLogs\": [\n    \"LOG_A\"\n  ]\n}\n|"
                        "movra-sim: skipped \":a:\": a catalogue has no type for a value of D-Bus "
                        "type \"a{sv}\"\n"
                        "movra-sim: skipped \"\": an id is empty\n"
                        "movra-sim: skipped \":a:\": it is there already\n"
                        "movra-sim: skipped \":a:\": it is there already\n"
                        "movra-sim: skipped \"a:b\": no catalogue can have this log\n"
                        "movra-sim: skipped \"LOG_A\": no catalogue can have this log\n"
                        "movra-sim: skipped \"low\": no catalogue can have this log\n"));
    service.answer("ListConfigIds", "([':a:'],)");
    service.answer("ListActionIds", "(@as [],)");
    service.answer("LogGetIds", "('',)");
    service.refuse("DbgLogGetIds", "varn.pim.Error.Any", "not today");
    service.refuse("GetValueStatus", "varn.pim.Error.Any", "locked");
    QCOMPARE(capture(),
             QByteArray("0|") + emptyCatalog
                 + "|movra-sim: skipped \":a:\": locked\n"
                   "movra-sim: skipped \"DbgLogGetIds\": not today\n");
    const QByteArray longText(1048577, 'a');
    service.answer("DbgLogGetIds", "(@as [],)");
    service.answer("GetValueStatus", "((':a:', <'" + longText + "'>, 0),)");
    QCOMPARE(capture(),
             QByteArray("0|") + emptyCatalog
                 + "|movra-sim: skipped \":a:\": its value: the text is longer than 1048576 "
                   "characters\n");
}

void tst_Capture::nonsenseIsAnError_data()
{
    QTest::addColumn<Prepare>("prepare");
    QTest::addColumn<QByteArray>("reason");
    const auto row = [](const char *name, const Prepare &prepare, const char *reason) {
        QTest::newRow(name) << prepare << QByteArray(reason);
    };
    row(
        "a list that is a text",
        [](FakeService &service) { service.answer("ListConfigIds", "('a',)"); },
        "\"ListConfigIds\": the answer has D-Bus type \"s\" instead of \"as\"");
    row(
        "an answer without a value",
        [](FakeService &service) { service.answer("LogGetIds", "()"); },
        "\"LogGetIds\": the answer has D-Bus type \"\" instead of \"s\"");
    row(
        "a record of another form",
        [](FakeService &service) { service.answer("GetValueStatus", "((':a:', 5, 0),)"); },
        "\":a:\": the answer has D-Bus type \"(sii)\" instead of \"(svi)\"");
    row(
        "an answer about another item",
        [](FakeService &service) { service.answer("GetValueStatus", "((':b:', <5>, 0),)"); },
        "\":a:\": the answer is about \":b:\"");
    row(
        "a service that leaves", [](FakeService &service) { service.leaveOn("GetValueStatus"); },
        "\":a:\": Message recipient disconnected from message bus without replying");
    row(
        "a service that leaves between two answers",
        [](FakeService &service) {
            service.answer("GetValueStatus", "((':a:', <5>, 0),)");
            service.leaveOn("ListActionIds");
        },
        "\"ListActionIds\": Message recipient disconnected from message bus without replying");
}

void tst_Capture::nonsenseIsAnError()
{
    QFETCH(Prepare, prepare);
    QFETCH(QByteArray, reason);
    FakeService service;
    answerNothing(service);
    service.answer("ListConfigIds", "([':a:'],)");
    service.answer("GetValueStatus", "((':a:', <5>, 0),)");
    prepare(service);
    QCOMPARE(capture(), "8||movra-sim: the service cannot be captured: " + reason + '\n');
}

void tst_Capture::aMissingServiceIsNotCaptured_data()
{
    QTest::addColumn<QByteArrayList>("arguments");
    QTest::addColumn<QByteArray>("expected");
    QTest::newRow("a name without an owner")
        << QByteArrayList { "--capture", "com.varn.nobody" }
        << QByteArray("8||movra-sim: the service cannot be captured: nobody "
                      "owns the bus name \"com.varn.nobody\"\n");
    QTest::newRow("an empty name")
        << QByteArrayList { "--capture", "" }
        << QByteArray("8||movra-sim: the service cannot be captured: nobody "
                      "owns the bus name \"\"\n");
    QTest::newRow("a malformed path")
        << QByteArrayList { "--capture", "com.varn.tul", "--path", "x" }
        << QByteArray("5||movra-sim: \"x\" is not an object path\n");
    QTest::newRow("no object at the path")
        << QByteArrayList { "--", "sh", "-c", "\"$PROGRAM\" --capture com.varn.tul --path /x" }
        << QByteArray("8||movra-sim: the service cannot be captured: \"ListConfigIds\": No such "
                      "object path '/x'\n");
}

void tst_Capture::aMissingServiceIsNotCaptured()
{
    QFETCH(QByteArrayList, arguments);
    QFETCH(QByteArray, expected);
    QCOMPARE(run(arguments), expected);
}

void tst_Capture::thousandsOfIdsShowProgressOnATerminal()
{
    FakeService service;
    answerNothing(service);
    QByteArray ids;
    for (int number = 0; number < 250; ++number) {
        ids += "':" + QByteArray::number(number) + ":', ";
    }
    service.answer("ListConfigIds", "([" + ids.chopped(2) + "],)");
    service.refuse("GetValueStatus", "varn.pim.Error.Any", "locked");
    // script gives the program a terminal.
    Program program("script",
                    { "-qec", "\"$PROGRAM\" --capture com.varn.tul >/dev/null", "/dev/null" },
                    environment);
    QVERIFY(program.waitForEnd());
    QCOMPARE(program.status, 0);
    for (const char *shown : { "\r0 of 250", "\r100 of 250", "\r200 of 250" }) {
        QVERIFY2(program.out.contains(shown), shown);
    }
    QVERIFY(program.out.endsWith("\r\033[K"));
}

QTEST_GUILESS_MAIN(tst_Capture)
#include "tst_capture.moc"
