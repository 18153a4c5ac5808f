// SPDX-License-Identifier: MIT
// The reader of catalogues: its error messages, and the built-in catalogue.
#include "sim/catalog.h"

#include <QRegularExpression>
#include <QSet>
#include <QTest>

namespace
{

constexpr const char *emptyCatalog =
    R"({"configs": [], "results": [], "actions": [], "logs": [], "debugLogs": []})";

/// The error message for a catalogue; empty if it is valid.
QString problemOf(const QByteArray &text)
{
    try {
        readCatalog(text);
        return {};
    } catch (const Refusal &refusal) {
        return refusal.sentence;
    }
}

/// A catalogue whose list `key` is `list`, and whose other lists are empty.
QByteArray catalogWith(const char *key, const QByteArray &list)
{
    const QByteArray field = QByteArray("\"") + key + "\": []";
    return QByteArray(emptyCatalog).replace(field, field.chopped(2) + list);
}

} // namespace

class tst_Catalog : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void everyErrorHasItsPlace_data();
    void everyErrorHasItsPlace();
    void manyNamesAreReadInTime();
    void anEmptyCatalogIsACatalog();
    void leftOutFieldsHaveDefaults();
    void everyFieldIsRead();
    void theBuiltInCatalogCoversEveryType();
    void theBuiltInCatalogCanRaiseEverySignalOfAnAction();
};

void tst_Catalog::everyErrorHasItsPlace_data()
{
    QTest::addColumn<QByteArray>("text");
    QTest::addColumn<QString>("problem");
    const auto row = [](const char *name, const QByteArray &text, const char *problem) {
        QTest::newRow(name) << text << QString::fromUtf8(problem);
    };
    row("an empty text", "", "line 1, column 1: is empty");
    row("an array", "[]", "line 1, column 1: is an array, not an object");
    row("a word after the end", "{}\n x",
        "line 2, column 2: syntax error while parsing value - invalid literal; last read: "
        "'{}<U+000A> x'; expected end of input");
    row("a comma before a brace", "{\n  \"configs\": [],\n}",
        "line 3, column 1: syntax error while parsing object key - unexpected '}'; expected string "
        "literal");
    row("columns are characters", "{\"\xc3\xa4\": \xc3\xb6}",
        "line 1, column 7: syntax error while parsing value - invalid literal; last read: "
        "'\"\xc3\xa4\": \xef\xbf\xbd'");
    row("a text that is no UTF-8", "{\"\xff\": 1}",
        "line 1, column 3: syntax error while parsing object key - invalid string: ill-formed "
        "UTF-8 "
        "byte; last read: '\"\xef\xbf\xbd'; expected string literal");
    row("a repeated key", "{\"configs\": [],\n \"c\\u006fnfigs\": []}",
        "line 2, column 15: the key \"configs\" is there already");
    row("a repeated key in an inner object", "{\"a\":{\"b\":1,\"b\":2}}",
        "line 1, column 15: the key \"b\" is there already");
    row("U+0000 after the end", QByteArray("{}\n\0", 4),
        "line 2, column 1: U+0000 is no character of JSON");
    row("a lone surrogate", R"({"configs": [{"id": "\ud800"}]})",
        "line 1, column 28: syntax error while parsing value - invalid string: surrogate "
        "U+D800..U+DBFF must be followed by U+DC00..U+DFFF; last read: '\"\\ud800\"'");
    row("a number beyond every type", R"({"configs": 1e999})",
        "line 1, column 18: number overflow parsing '1e999'");
    row("nested too deeply", QByteArray(200000, '['), "line 1, column 102: nested too deeply");
    row("a byte order mark", "\xef\xbb\xbf{}", "configs: is missing");
    row("a missing list", "{}", "configs: is missing");
    row("a list that is an object",
        R"({"configs": [], "results": {}, "actions": [], "logs": [], "debugLogs": []})",
        "results: is an object, not an array");
    row("an unknown list",
        R"({"configs": [], "results": [], "actions": [], "logs": [], "debugLogs": [], "x": 1})",
        "x: is not known; fields are configs, results, actions, logs, debugLogs, timeline, "
        "$schema");

    const auto config = [row](const char *name, const QByteArray &list, const char *problem) {
        row(name, catalogWith("configs", list), problem);
    };
    config("a config that is text", R"(["a"])", "configs[0]: is a string, not an object");
    config("a config without an id", R"([{"type": "bool", "value": true}])",
           "configs[0].id: is missing");
    config("an empty id", R"([{"id": "", "type": "bool", "value": true}])",
           "configs[0].id: is empty");
    config("an id that is a number", R"([{"id": 5, "type": "bool", "value": true}])",
           "configs[0].id: is a number, not a string");
    config("an id with U+0000", R"([{"id": "\u0000", "type": "bool", "value": true}])",
           "configs[0].id: the text holds the character U+0000, which the bus cannot carry");
    config(
        "an id used twice",
        R"([{"id": "a", "type": "bool", "value": true}, {"id": "a", "type": "bool", "value": true}])",
        "configs[1].id: \"a\" is there already");
    config("a config without a type", R"([{"id": "a", "value": true}])",
           "configs[0].type: is missing");
    config(
        "an unknown type", R"([{"id": "a", "type": "float", "value": 1}])",
        "configs[0].type: \"float\" is not a type; types are string, bool, int32, uint32, int64, "
        "uint64, double, string[], int32[], uint32[], int64[], uint64[], double[]");
    config("a config without a value", R"([{"id": "a", "type": "bool"}])",
           "configs[0].value: is missing");
    config("a value out of range", R"([{"id": "a", "type": "int32", "value": 300000000000}])",
           "configs[0].value: 300000000000 does not fit int32");
    config("an element of the wrong kind",
           R"([{"id": "a", "type": "string[]", "value": ["x", 1]}])",
           "configs[0].value[1]: is a number, not a string");
    config("a status that is text",
           R"([{"id": "a", "type": "bool", "value": true, "status": "x"}])",
           "configs[0].status: is a string, not a number");
    config("a status with a fraction",
           R"([{"id": "a", "type": "bool", "value": true, "status": 1.5}])",
           "configs[0].status: 1.5 is not a whole number");
    config("an unknown field", R"([{"id": "a", "type": "bool", "value": true, "colour": 1}])",
           "configs[0].colour: is not known; fields are id, type, value, "
           "status, description");
    row("an id of a config used by a result",
        R"({"configs": [{"id": "a", "type": "bool", "value": true}],
            "results": [{"id": "a", "type": "bool", "value": true}],
            "actions": [], "logs": [], "debugLogs": []})",
        "results[0].id: \"a\" is there already");

    const auto action = [row](const char *name, const QByteArray &list, const char *problem) {
        row(name, catalogWith("actions", list), problem);
    };
    action("an action that is null", "[null]", "actions[0]: is null, not an object");
    action("an action without an id", "[{}]", "actions[0].id: is missing");
    action("a reply that is a number", R"([{"id": "a", "reply": 5}])",
           "actions[0].reply: is a number, not a string");
    action("a negative duration", R"([{"id": "a", "duration": -1}])",
           "actions[0].duration: -1 is not in 0 to 3600000");
    action("a duration beyond an hour", R"([{"id": "a", "duration": 3600001}])",
           "actions[0].duration: 3600001 is not in 0 to 3600000");
    action("a driven item that is not there", R"([{"id": "a", "drive": "b"}])",
           "actions[0].drive: \"b\" is not a result with a single number");
    row("a driven config",
        R"({"configs": [{"id": "b", "type": "int32", "value": 0}], "results": [],
            "actions": [{"id": "a", "drive": "b"}], "logs": [], "debugLogs": []})",
        "actions[0].drive: \"b\" is not a result with a single number");
    row("a driven text",
        R"({"configs": [], "results": [{"id": "b", "type": "string", "value": ""}],
            "actions": [{"id": "a", "drive": "b"}], "logs": [], "debugLogs": []})",
        "actions[0].drive: \"b\" is not a result with a single number");
    action("ends that are an object", R"([{"id": "a", "ends": {}}])",
           "actions[0].ends: is an object, not an array");
    action("an end that is text", R"([{"id": "a", "ends": ["SigInfo"]}])",
           "actions[0].ends[0]: is a string, not an object");
    action(
        "an end with another signal",
        R"([{"id": "a", "ends": [{"signal": "SigDBusServerClosing", "message": ""}]}])",
        "actions[0].ends[0].signal: \"SigDBusServerClosing\" is not a signal to send; signals are "
        "SigAlarm, SigError, SigInfo, SigTestComplete, SigTestCompleteWithData, SigUpdate");
    action("an end without a message", R"([{"id": "a", "ends": [{"signal": "SigInfo"}]}])",
           "actions[0].ends[0].message: is missing");
    action("an end with data that its signal has not",
           R"([{"id": "a", "ends": [{"signal": "SigInfo", "message": "", "data": []}]}])",
           "actions[0].ends[0].data: is not known; fields are signal, message, description");
    action("an end without the type of its data",
           R"([{"id": "a", "ends": [{"signal": "SigTestCompleteWithData", "message": ""}]}])",
           "actions[0].ends[0].type: is missing");
    action(
        "an end with data of another type",
        R"([{"id": "a", "ends": [{"signal": "SigTestCompleteWithData", "message": "", "type": "int32[]", "data": []}]}])",
        "actions[0].ends[0].type: \"int32[]\" is neither double[] nor uint32[]");
    action(
        "an end with data out of range",
        R"([{"id": "a", "ends": [{"signal": "SigTestCompleteWithData", "message": "", "type": "uint32[]", "data": [1, -1]}]}])",
        "actions[0].ends[0].data[1]: -1 does not fit uint32");

    const auto moment = [row](const char *name, const QByteArray &list, const char *problem) {
        row(name,
            R"({"configs": [{"id": "c", "type": "int32", "value": 0}], "results": [],
                "actions": [{"id": "a"}], "logs": [], "debugLogs": [], "timeline": )"
                + list + '}',
            problem);
    };
    moment("a moment without a time", R"([{"id": "c", "value": 1}])", "timeline[0].at: is missing");
    moment("a moment that is too late", R"([{"at": 3600001, "id": "c", "value": 1}])",
           "timeline[0].at: 3600001 is not in 0 to 3600000");
    moment("a moment without end", R"([{"every": 0, "id": "c", "value": 1}])",
           "timeline[0].every: 0 is not in 1 to 3600000");
    moment("a moment of an action", R"([{"at": 1, "id": "a", "value": 1}])",
           "timeline[0].id: \"a\" is not a config or a result");
    moment("a moment that changes nothing", R"([{"at": 1, "id": "c"}])",
           "timeline[0].value: is missing");
    moment("a moment with a value of another type", R"([{"at": 1, "id": "c", "value": "x"}])",
           "timeline[0].value: \"x\" is not a whole number");
    moment("a moment with an item and a signal",
           R"([{"at": 1, "id": "c", "status": 1, "signal": "SigInfo", "message": ""}])",
           "timeline[0].message: is not known; fields are every, at, id, status, value, "
           "description");
    moment("a moment with another signal", R"([{"at": 1, "signal": "Sig", "message": ""}])",
           "timeline[0].signal: \"Sig\" is not a signal to send; signals are SigAlarm, SigError, "
           "SigInfo, SigTestComplete, SigTestCompleteWithData, SigUpdate");

    row("a log that is a number", catalogWith("logs", "[5]"),
        "logs[0]: is not a name without blanks and colons");
    row("a log with a blank", catalogWith("logs", R"(["a b"])"),
        "logs[0]: is not a name without blanks and colons");
    row("a log with U+0000", catalogWith("logs", R"(["a\u0000b"])"),
        "logs[0]: is not a name without blanks and colons");
    row("a log named twice", catalogWith("logs", R"(["a", "a"])"),
        "logs[1]: \"a\" is there already");
    row("a debug log in lower case", catalogWith("debugLogs", R"(["LOG_data"])"),
        "debugLogs[0]: is not LOG_ and a name in upper case");
    row("a debug log without a name", catalogWith("debugLogs", R"(["LOG_"])"),
        "debugLogs[0]: is not LOG_ and a name in upper case");
    row("a debug log with a comma", catalogWith("debugLogs", R"(["LOG_A,B"])"),
        "debugLogs[0]: is not LOG_ and a name in upper case");
}

void tst_Catalog::everyErrorHasItsPlace()
{
    QFETCH(QByteArray, text);
    QFETCH(QString, problem);
    QCOMPARE(problemOf(text), problem);
}

void tst_Catalog::manyNamesAreReadInTime()
{
    QByteArray names = "[\"LOG_0\"";
    for (int number = 1; number < 80000; ++number) {
        names += ",\"LOG_" + QByteArray::number(number) + '"';
    }
    QCOMPARE(readCatalog(catalogWith("debugLogs", names + ']')).debugLogs.size(), 80000);
}

void tst_Catalog::anEmptyCatalogIsACatalog()
{
    const Catalog read = readCatalog(emptyCatalog);
    QVERIFY(read.items.isEmpty());
    QVERIFY(read.actions.isEmpty());
}

void tst_Catalog::leftOutFieldsHaveDefaults()
{
    const Catalog read = readCatalog(
        R"({"configs": [{"id": "a", "type": "bool", "value": true}], "results": [],
            "actions": [{"id": "b"}], "logs": [], "debugLogs": []})");
    QCOMPARE(read.items.at(0).status, 0);
    const Action &action = read.actions.at(0);
    QCOMPARE(action.reply, QStringLiteral("started"));
    QCOMPARE(action.duration, 0);
    QCOMPARE(action.drivenItem, -1);
    QCOMPARE(action.ends.size(), 1);
    QCOMPARE(action.ends.at(0).member, QStringLiteral("SigTestComplete"));
    QCOMPARE(action.ends.at(0).arguments, QVariantList { QStringLiteral("b") });
}

void tst_Catalog::everyFieldIsRead()
{
    const Catalog read = readCatalog(
        R"({"configs": [{"id": "a", "type": "string", "value": "x", "status": -3}],
            "results": [{"id": "r", "type": "double", "value": 1}],
            "actions": [{"id": "b", "reply": "r %1", "duration": 3600000, "drive": "r", "ends": []}],
            "logs": ["config", "result"], "debugLogs": ["LOG_DATA"]})");
    const Item &item = read.items.at(0);
    QCOMPARE(item.id, QStringLiteral("a"));
    QCOMPARE(item.kind, ItemKind::Config);
    QCOMPARE(item.type, typeNamed(QStringLiteral("string")));
    QCOMPARE(item.value, QVariant(QStringLiteral("x")));
    QCOMPARE(item.status, -3);
    QCOMPARE(read.items.at(1).kind, ItemKind::Result);
    const Action &action = read.actions.at(0);
    QCOMPARE(action.reply, QStringLiteral("r %1"));
    QCOMPARE(action.duration, 3600000);
    QCOMPARE(action.drivenItem, 1);
    QVERIFY(action.ends.isEmpty());
    QCOMPARE(read.logs, (QStringList { QStringLiteral("config"), QStringLiteral("result") }));
    QCOMPARE(read.debugLogs, QStringList { QStringLiteral("LOG_DATA") });
}

void tst_Catalog::theBuiltInCatalogCoversEveryType()
{
    const Catalog read = loadCatalog({});
    QStringList types;
    bool hasStatus = false;
    for (const Item &item : read.items) {
        const QString type = QString::fromLatin1(item.type->name);
        if (item.kind == ItemKind::Config && !types.contains(type)) {
            types.append(type);
        }
        hasStatus = hasStatus || item.status != 0;
    }
    types.sort();
    QCOMPARE(
        types.join(QLatin1Char(' ')),
        QStringLiteral("bool double double[] int32 int32[] int64 int64[] string string[] uint32 "
                       "uint32[] uint64 uint64[]"));
    QVERIFY(hasStatus);
}

void tst_Catalog::theBuiltInCatalogCanRaiseEverySignalOfAnAction()
{
    QSet<QString> members;
    int driven = 0;
    const Catalog read = loadCatalog({});
    for (const Action &action : read.actions) {
        driven += action.drivenItem >= 0 ? 1 : 0;
        for (const Signal &end : action.ends) {
            const QVariant data = end.arguments.value(1);
            members.insert(end.member + QString::fromLatin1(data.isValid() ? data.typeName() : ""));
        }
    }
    QCOMPARE(driven, 1);
    for (const char *member :
         { "SigAlarm", "SigError", "SigTestComplete", "SigTestCompleteWithDatastd::vector<double>",
           "SigTestCompleteWithDatastd::vector<uint32_t>" }) {
        QVERIFY2(members.contains(QString::fromLatin1(member)), member);
    }
}

QTEST_GUILESS_MAIN(tst_Catalog)
#include "tst_catalog.moc"
