// SPDX-License-Identifier: MIT
// Saved configurations: the written file, the loaded values, and what is refused.
#include "tests/sim/simrun.h"

#include <QDBusVariant>
#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QTest>

#include <csignal>

#include <unistd.h>

#include <sys/stat.h>

namespace
{

const QString port = text(":config:data:ftp:port:");

constexpr const char *smallCatalog = R"({
  "configs": [
    {"id": "s", "type": "string", "value": "\u00e4\n"}, {"id": "b", "type": "bool", "value": true},
    {"id": "i", "type": "int32", "value": -1}, {"id": "u", "type": "uint32", "value": 4294967295},
    {"id": "x", "type": "int64", "value": "-9007199254740993"},
    {"id": "t", "type": "uint64", "value": "18446744073709551615"},
    {"id": "d", "type": "double", "value": 0.1},
    {"id": "as", "type": "string[]", "value": ["a b", ""]},
    {"id": "ai", "type": "int32[]", "value": [-1]}, {"id": "au", "type": "uint32[]", "value": [1]},
    {"id": "ax", "type": "int64[]", "value": ["-9007199254740993"]},
    {"id": "at", "type": "uint64[]", "value": ["18446744073709551615"]},
    {"id": "ad", "type": "double[]", "value": [0.5, "nan", "-inf"]}],
  "results": [{"id": "r", "type": "int32", "value": 5}],
  "actions": [], "logs": [], "debugLogs": []
})";

constexpr const char *smallSaved = R"({
    "configs": {
        "ad": [
            0.5,
            "nan",
            "-inf"
        ],
        "ai": [
            -1
        ],
        "as": [
            "a b",
            ""
        ],
        "at": [
            "18446744073709551615"
        ],
        "au": [
            1
        ],
        "ax": [
            "-9007199254740993"
        ],
        "b": true,
        "d": 0.1,
        "i": -1,
        "s": ")"
                                   "\xc3\xa4"
                                   R"(\n",
        "t": "18446744073709551615",
        "u": 4294967295,
        "x": "-9007199254740993"
    },
    "format": 1
}
)";

} // namespace

class tst_Files : public SimTest
{
    Q_OBJECT

private Q_SLOTS:
    void savedValuesAreLoadedAlsoAfterARestart();
    void theSavedTextKeepsEveryTypeExact();
    void loadedChangesAreAnnounced();
    void aConfigThatIsNotInTheFileKeepsItsValue();
    void namesArePlain_data();
    void namesArePlain();
    void aDamagedFileChangesNothing_data();
    void aDamagedFileChangesNothing();
    void aFileThatIsNotThereIsRefused();
    void aFileThatIsTooLargeIsRefused();
    void onlyRegularFilesAreReadOrWritten_data();
    void onlyRegularFilesAreReadOrWritten();
    void anotherNameOfTheFileKeepsTheOldContents();
    void leftoversOfACrashDoNotPreventSaving();
    void twoSimulatorsDoNotShareADirectory();
    void theNextStartRemovesAnUnfinishedFile();
    void aConfigurationAndTheDebugLogDoNotReplaceEachOther();
    void theStateDirectoryIsMadeWhenFirstNeeded_data();
    void theStateDirectoryIsMadeWhenFirstNeeded();
    void withoutAStateDirectoryFilesAreRefused();

private:
    QString save(const QString &name) { return answerTo(service->SaveConfig(name)); }
    QString load(const QString &name) { return answerTo(service->LoadConfig(name)); }
    QString set(const QString &id, const char *value)
    {
        return answerTo(service->SetValue(id, QDBusVariant(text(value))));
    }
    bool restartWith(const QProcessEnvironment &environment, const QStringList &arguments)
    {
        const bool stopped = stop();
        simulator = std::make_unique<QProcess>();
        simulator->setProcessEnvironment(environment);
        return startSimulator(*simulator, arguments) && stopped;
    }
};

void tst_Files::savedValuesAreLoadedAlsoAfterARestart()
{
    set(port, "22");
    QCOMPARE(save(text("night")), text("b true"));
    QCOMPARE(takeHeard(),
             QStringList { text("SigInfo configuration saved to ") + pathOf(text("night")) });
    set(port, "23");
    QCOMPARE(load(text("night")), text("b true"));
    QCOMPARE(takeHeard(),
             QStringList { text("SigInfo configuration loaded from ") + pathOf(text("night")) });
    QCOMPARE(answerTo(service->GetValue(port)), text("v <22>"));
    QVERIFY(stop());
    QVERIFY(start());
    QCOMPARE(answerTo(service->GetValue(port)), text("v <21>"));
    QCOMPARE(load(text("night")), text("b true"));
    QCOMPARE(answerTo(service->GetValue(port)), text("v <22>"));
    QCOMPARE(QDir(state->path()).entryList(QDir::AllEntries | QDir::Hidden | QDir::NoDotAndDotDot),
             QStringList { text("night") });
}

void tst_Files::theSavedTextKeepsEveryTypeExact()
{
    QVERIFY(writeFile(text("catalog.json"), smallCatalog));
    QVERIFY(stop());
    QVERIFY(start({ text("--catalog"), pathOf(text("catalog.json")) }));
    QCOMPARE(save(text("a")), text("b true"));
    QCOMPARE(contentsOf(text("a")), QByteArray(smallSaved));
    QCOMPARE(load(text("a")), text("b true"));
    QCOMPARE(save(text("b")), text("b true"));
    QCOMPARE(contentsOf(text("b")), QByteArray(smallSaved));
}

void tst_Files::loadedChangesAreAnnounced()
{
    save(text("night"));
    set(port, "23");
    service->AddToNotifyList(QStringList { port, text(":config:data:ftp:userName:") });
    service->DBusServerCmd(text("SET_CFG_NOTIFY_TIMER"), QDBusVariant(QVariant(0)));
    service->StartConfigNotify();
    takeHeard();
    load(text("night"));
    QCOMPARE(takeHeard(),
             (QStringList { text("SigUpdate :config:data:ftp:port:=21"),
                            text("SigInfo configuration loaded from ") + pathOf(text("night")) }));
}

void tst_Files::aConfigThatIsNotInTheFileKeepsItsValue()
{
    set(port, "23");
    QVERIFY(writeFile(text("a"), R"({"format": 1, "configs": {":config:voip:jitter:": "1e3"}})"));
    QCOMPARE(load(text("a")), text("b true"));
    QCOMPARE(answerTo(service->GetValue(QStringList { port, text(":config:voip:jitter:") })),
             text("a(sv) [(':config:data:ftp:port:', <23>), (':config:voip:jitter:', <1000>)]"));
}

void tst_Files::namesArePlain_data()
{
    QTest::addColumn<QString>("name");
    QTest::addColumn<QString>("answer");
    const auto refused = [](const char *row, const QString &name, const char *reason) {
        QTest::newRow(row) << name << text("varn.pim.Error.BadName: ") + text(reason);
    };
    refused("empty", QString(), "\"\" cannot be the name of a file: it is empty.");
    refused("the directory", text("."),
            "\".\" cannot be the name of a file: it names a directory.");
    refused("its parent", text(".."), "\"..\" cannot be the name of a file: it names a directory.");
    refused("a path upwards", text("../night"),
            "\"../night\" cannot be the name of a file: it holds a slash.");
    refused("an absolute path", text("/tmp/night"),
            "\"/tmp/night\" cannot be the name of a file: it holds a slash.");
    refused("a slash at the end", text("night/"),
            "\"night/\" cannot be the name of a file: it holds a slash.");
    refused("a line end", text("a\nb"),
            "\"a b\" cannot be the name of a file: it holds a control character.");
    refused("a control character beyond ASCII", QString(QChar(0x85)),
            "\" \" cannot be the name of a file: it holds a control character.");
    refused("201 bytes", QString(199, QLatin1Char('a')) + QChar(0xe4),
            "\"aaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaa"
            "aaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaa"
            "aaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaa\xc3\xa4\" cannot be the name of a file: it is longer "
            "than 200 bytes.");
    refused(
        "a name of the simulator's own", text(".movra-sim.new"),
        "\".movra-sim.new\" cannot be the name of a file: names that begin with .movra-sim. are "
        "the simulator's own.");
    QTest::newRow("200 bytes") << QString(198, QLatin1Char('a')) + QChar(0xe4) << text("b true");
    QTest::newRow("three dots") << text("...") << text("b true");
    QTest::newRow("blanks and colons") << text(" a: b ") << text("b true");
}

void tst_Files::namesArePlain()
{
    QFETCH(QString, name);
    QFETCH(QString, answer);
    QCOMPARE(save(name), answer);
    QCOMPARE(load(name), answer);
    QCOMPARE(QDir(state->path()).entryList(QDir::AllEntries | QDir::Hidden | QDir::NoDotAndDotDot),
             answer == text("b true") ? QStringList { name } : QStringList());
}

void tst_Files::aDamagedFileChangesNothing_data()
{
    QTest::addColumn<QByteArray>("contents");
    QTest::addColumn<QString>("problem");
    const auto row = [](const char *name, const QByteArray &contents, const char *problem) {
        QTest::newRow(name) << contents << text(problem);
    };
    row("empty", "", "line 1, column 1: is empty");
    row("cut off", "{\n \"configs\": {\":config:data:ftp:port:\": 22",
        "line 2, column 42: syntax error while parsing object - unexpected end of input; expected "
        "'}'");
    row("not UTF-8", "{\"configs\": {\":config:data:ftp:port:\": \"\xff\"}}",
        "line 1, column 41: syntax error while parsing value - invalid string: ill-formed UTF-8 "
        "byte; "
        "last read: '\"\xef\xbf\xbd'");
    row("an array", "[]", "line 1, column 1: is an array, not an object");
    row("nested too deeply", QByteArray(100000, '['), "line 1, column 102: nested too deeply");
    row("without a format", R"({"configs": {":config:data:ftp:port:": 22}})", "format: is missing");
    row("of another format", R"({"format": 2, "configs": {":config:data:ftp:port:": 22}})",
        "format: is not 1");
    row("with a format as text", R"({"format": "1", "configs": {":config:data:ftp:port:": 22}})",
        "format: is not 1");
    row("without configs", R"({"format": 1})", "configs: is missing");
    row("with configs as a list", R"({"format": 1, "configs": [22]})",
        "configs: is an array, not an object");
    row("with a further field",
        R"({"format": 1, "configs": {":config:data:ftp:port:": 22}, "x": 1})",
        "x: is not known; fields are format, configs");
    row("with an unknown id",
        R"({"format": 1, "configs": {":config:data:ftp:port:": 22, ":config:none:": 1}})",
        "configs[\":config:none:\"]: is not a config here");
    row("with a result",
        R"({"format": 1, "configs": {":config:data:ftp:port:": 22, ":result:data:ftp:server:": ""}})",
        "configs[\":result:data:ftp:server:\"]: is not a config here");
    row("with a value out of range",
        R"({"format": 1, "configs": {":config:data:ftp:passive:": false, ":config:data:ftp:port:": 3000000000}})",
        "configs[\":config:data:ftp:port:\"]: 3000000000 does not fit int32");
    row("with a bad element",
        R"({"format": 1, "configs": {":config:data:ftp:port:": 22, ":config:data:ifnames:": ["a", 1]}})",
        "configs[\":config:data:ifnames:\"][1]: is a number, not a string");
}

void tst_Files::aDamagedFileChangesNothing()
{
    QFETCH(QByteArray, contents);
    QFETCH(QString, problem);
    QVERIFY(writeFile(text("damaged"), contents));
    QCOMPARE(load(text("damaged")),
             text("varn.pim.Error.File: \"") + pathOf(text("damaged")) + text("\" is damaged: ")
                 + problem + text("."));
    QCOMPARE(
        answerTo(service->GetValue(QStringList { port, text(":config:data:ftp:passive:") })),
        text("a(sv) [(':config:data:ftp:port:', <21>), (':config:data:ftp:passive:', <true>)]"));
    QCOMPARE(contentsOf(text("damaged")), contents);
    QCOMPARE(takeHeard(), QStringList());
}

void tst_Files::aFileThatIsNotThereIsRefused()
{
    QCOMPARE(load(text("none")),
             text("varn.pim.Error.File: Cannot read \"") + pathOf(text("none"))
                 + text("\": No such file or directory."));
}

void tst_Files::aFileThatIsTooLargeIsRefused()
{
    QFile file(pathOf(text("large")));
    QVERIFY(file.open(QIODevice::WriteOnly));
    QVERIFY(file.resize(16777217));
    QCOMPARE(load(text("large")),
             text("varn.pim.Error.File: Cannot read \"") + pathOf(text("large"))
                 + text("\": it is larger than 16 MiB."));
}

void tst_Files::onlyRegularFilesAreReadOrWritten_data()
{
    QTest::addColumn<QString>("name");
    QTest::newRow("a link to a file") << text("link");
    QTest::newRow("a link to nothing") << text("dangling");
    QTest::newRow("a pipe") << text("pipe");
    QTest::newRow("a directory") << text("folder");
}

void tst_Files::onlyRegularFilesAreReadOrWritten()
{
    QFETCH(QString, name);
    QVERIFY(writeFile(text("target"), R"({"format": 1, "configs": {}})"));
    QCOMPARE(symlink("target", qPrintable(pathOf(text("link")))), 0);
    QCOMPARE(symlink("nothing", qPrintable(pathOf(text("dangling")))), 0);
    QCOMPARE(mkfifo(qPrintable(pathOf(text("pipe"))), 0600), 0);
    QCOMPARE(mkdir(qPrintable(pathOf(text("folder"))), 0700), 0);
    QCOMPARE(save(name),
             text("varn.pim.Error.File: Cannot write \"") + pathOf(name)
                 + text("\": it is not a regular file."));
    QCOMPARE(load(name),
             text("varn.pim.Error.File: Cannot read \"") + pathOf(name)
                 + text("\": it is not a regular file."));
    QCOMPARE(contentsOf(text("target")), QByteArray(R"({"format": 1, "configs": {}})"));
    QVERIFY(!QFileInfo::exists(pathOf(text("nothing"))));
}

void tst_Files::anotherNameOfTheFileKeepsTheOldContents()
{
    QVERIFY(writeFile(text("night"), "old"));
    QCOMPARE(link(qPrintable(pathOf(text("night"))), qPrintable(pathOf(text("kept")))), 0);
    QCOMPARE(save(text("night")), text("b true"));
    QCOMPARE(contentsOf(text("kept")), QByteArray("old"));
    QCOMPARE(load(text("night")), text("b true"));
}

void tst_Files::leftoversOfACrashDoNotPreventSaving()
{
    const QString leftover = text(".movra-sim.%1.new").arg(simulator->processId());
    QVERIFY(writeFile(text("target"), "kept"));
    QCOMPARE(symlink("target", qPrintable(pathOf(leftover))), 0);
    QCOMPARE(save(text("night")), text("b true"));
    QCOMPARE(contentsOf(text("target")), QByteArray("kept"));
    QCOMPARE(load(text("night")), text("b true"));
    QVERIFY(!QFileInfo(pathOf(leftover)).isSymLink());
}

void tst_Files::twoSimulatorsDoNotShareADirectory()
{
    QProcess second;
    second.start(text(MOVRA_SIM_PROGRAM),
                 { text("--service"), text("com.varn.second"), text("--state"), state->path() });
    QVERIFY(second.waitForFinished(patienceMs));
    QCOMPARE(second.exitCode(), 6);
    QCOMPARE(QString::fromUtf8(second.readAllStandardError()),
             text("movra-sim: the state directory cannot be used: another simulator uses \"%1\"\n")
                 .arg(state->path()));
}

void tst_Files::theNextStartRemovesAnUnfinishedFile()
{
    QVERIFY(writeFile(text(".movra-sim.new"), "half"));
    simulator->kill();
    QVERIFY(simulator->waitForFinished(patienceMs));
    QVERIFY(start());
    QVERIFY(!QFileInfo::exists(pathOf(text(".movra-sim.new"))));
}

void tst_Files::aConfigurationAndTheDebugLogDoNotReplaceEachOther()
{
    QCOMPARE(save(text("night")), text("b true"));
    const QByteArray saved = contentsOf(text("night"));
    QCOMPARE(answerTo(service->DbgLogCmd(text("SAVE_TO"), text("night"))),
             text("varn.pim.Error.File: Cannot write \"") + pathOf(text("night"))
                 + text("\": it is a saved configuration."));
    QCOMPARE(contentsOf(text("night")), saved);
    QCOMPARE(answerTo(service->DbgLogCmd(text("SAVE_TO"), text("log"))), QString());
    QCOMPARE(save(text("log")),
             text("varn.pim.Error.File: Cannot write \"") + pathOf(text("log"))
                 + text("\": it is the debug log."));
    QCOMPARE(contentsOf(text("log")), QByteArray());
    QCOMPARE(answerTo(service->DbgLogCmd(text("SAVE_STOP"), {})), QString());
    QCOMPARE(save(text("log")), text("b true"));
}

void tst_Files::theStateDirectoryIsMadeWhenFirstNeeded_data()
{
    QTest::addColumn<QString>("stateHome");
    QTest::addColumn<QString>("home");
    QTest::addColumn<QString>("directory");
    QTest::newRow("in XDG_STATE_HOME")
        << text("%1/state") << text("%1/home") << text("%1/state/movra-sim");
    QTest::newRow("in HOME when XDG_STATE_HOME is empty")
        << text("") << text("%1/home") << text("%1/home/.local/state/movra-sim");
    QTest::newRow("in HOME when XDG_STATE_HOME is relative")
        << text("state") << text("%1/home") << text("%1/home/.local/state/movra-sim");
}

void tst_Files::theStateDirectoryIsMadeWhenFirstNeeded()
{
    QFETCH(QString, stateHome);
    QFETCH(QString, home);
    QFETCH(QString, directory);
    const auto here = [this](QString path) { return path.replace(text("%1"), state->path()); };
    auto environment = QProcessEnvironment::systemEnvironment();
    environment.insert(text("XDG_STATE_HOME"), here(stateHome));
    environment.insert(text("HOME"), here(home));
    QVERIFY(restartWith(environment, {}));
    QVERIFY(!QFileInfo::exists(here(directory)));
    QCOMPARE(load(text("night")),
             text("varn.pim.Error.File: Cannot read \"") + here(directory)
                 + text("/night\": No such file or directory."));
    QCOMPARE(save(text("night")), text("b true"));
    QVERIFY(QFileInfo(here(directory) + text("/night")).isFile());
    QCOMPARE(load(text("night")), text("b true"));
}

void tst_Files::withoutAStateDirectoryFilesAreRefused()
{
    auto environment = QProcessEnvironment::systemEnvironment();
    environment.remove(text("XDG_STATE_HOME"));
    environment.insert(text("HOME"), text("relative"));
    QVERIFY(restartWith(environment, {}));
    const QString reason = text("\"night\": neither XDG_STATE_HOME nor HOME says where.");
    QCOMPARE(save(text("night")), text("varn.pim.Error.File: Cannot write ") + reason);
    QCOMPARE(load(text("night")), text("varn.pim.Error.File: Cannot read ") + reason);
    QCOMPARE(answerTo(service->DbgLogCmd(text("SAVE_TO"), text("night"))),
             text("varn.pim.Error.File: Cannot write ") + reason);
}

QTEST_GUILESS_MAIN(tst_Files)
#include "tst_files.moc"
