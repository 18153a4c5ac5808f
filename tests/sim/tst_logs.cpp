// SPDX-License-Identifier: MIT
// The logs and the debug log: their entries, signals and files.
#include "tests/sim/simrun.h"

#include <QDBusVariant>
#include <QFileInfo>
#include <QTest>

#include <unistd.h>

#include <sys/stat.h>

namespace
{

const QString port = text(":config:data:ftp:port:");
const QString ping = text(":action:data:ftp:ping:");
const QString percent = text(":result:data:ftp:percentTransfered:0:");

} // namespace

class tst_Logs : public SimTest
{
    Q_OBJECT

private Q_SLOTS:
    void everyEntryOfAStartedLogIsAnnounced();
    void theFirstFieldChoosesTheLog();
    void logsAreStartedAndStoppedSeparately();
    void anUnknownLogIsRefused();
    void theDebugLogIsInTheStateDirectory_data();
    void theDebugLogIsInTheStateDirectory();
    void theDebugLogHasOneLineForEachEntry();
    void theReportingLevelChoosesTheEntries_data();
    void theReportingLevelChoosesTheEntries();
    void debugLogsAreSwitchedByInstance();
    void debugLogsAreSwitchedAsAWhole();
    void theDebugLogEndsAt16MiB();
    void aNewFileReplacesTheOldOne();
    void savingStops();
    void commandsAreChecked_data();
    void commandsAreChecked();
    void anotherKindOfFileIsNotReplaced();

private:
    QString command(const char *word, const char *value)
    {
        return answerTo(service->DbgLogCmd(text(word), text(value)));
    }
};

void tst_Logs::everyEntryOfAStartedLogIsAnnounced()
{
    QCOMPARE(answerTo(service->LogStartNotify(text("config"))), QString());
    service->GetValue(port);
    service->GetStatus(QStringList { port, port });
    service->SetValue(port, QDBusVariant(text("22")));
    service->SetValue(port, QDBusVariant(text("x\ny")));
    service->GetValue(text(":config:nothing:"));
    service->AddToNotifyList(port);
    service->DeleteFromNotifyList(port);
    service->GetValue(percent);
    const QString refusal =
        text("\":config:data:ftp:port:\" cannot be set: \"x y\" is not a whole number.");
    QCOMPARE(takeHeard(),
             (QStringList {
                 text("SigInfo log config: :config:data:ftp:port: read"),
                 text("SigInfo log config: :config:data:ftp:port: read"),
                 text("SigInfo log config: :config:data:ftp:port: read"),
                 text("SigInfo log config: :config:data:ftp:port: set to 22"),
                 text("SigInfo log config: :config:data:ftp:port: refused: ") + refusal,
                 text("SigError ") + refusal,
                 text("SigInfo log config: :config:nothing: refused: There is no "
                      "\":config:nothing:\" here."),
                 text("SigInfo log config: :config:data:ftp:port: put on the notify list"),
                 text("SigInfo log config: :config:data:ftp:port: taken off the notify list"),
             }));
}

void tst_Logs::theFirstFieldChoosesTheLog()
{
    QCOMPARE(answerTo(service->LogStartNotify(text("result"))), QString());
    for (const char *id :
         { ":other:", "", ":", ":results:", ":a:result:", "result", "::result::b:" }) {
        service->GetValue(text(id));
    }
    service->GetValue(text(":result:a\nb:") + QString(300, QLatin1Char('x')));
    const QString longId = text(":result:a b:") + QString(188, QLatin1Char('x')) + text("...");
    QCOMPARE(
        takeHeard(),
        (QStringList {
            text("SigInfo log result: result refused: There is no \"result\" here."),
            text("SigInfo log result: ::result::b: refused: There is no \"::result::b:\" here."),
            text("SigInfo log result: ") + longId + text(" refused: There is no \"") + longId
                + text("\" here."),
        }));
}

void tst_Logs::logsAreStartedAndStoppedSeparately()
{
    service->LogStartNotify(text("result"));
    service->LogStartNotify(text("action"));
    service->LogStopNotify(text("result"));
    QCOMPARE(answerTo(service->LogClear(text("action"))), QString());
    service->GetValue(percent);
    service->DoAction(ping, text("5"));
    service->DoAction(text(":action:none:"));
    QVERIFY(hear(text("SigTestComplete :action:data:ftp:ping:")));
    const QStringList lines = takeHeard();
    QVERIFY(lines.contains(
        text("SigInfo log action: :action:none: refused: There is no \":action:none:\" here.")));
    QCOMPARE(lines.filter(text(":action:data:")),
             (QStringList { text("SigInfo log action: :action:data:ftp:ping: started with 5"),
                            text("SigInfo :action:data:ftp:ping: started with 5"),
                            text("SigInfo log action: :action:data:ftp:ping: ended"),
                            text("SigTestComplete :action:data:ftp:ping:") }));
    QCOMPARE(lines.size(), 5);
}

void tst_Logs::anUnknownLogIsRefused()
{
    const QString refusal = text("varn.pim.Error.UnknownId: There is no \"Config\" here.");
    QCOMPARE(answerTo(service->LogStartNotify(text("Config"))), refusal);
    QCOMPARE(answerTo(service->LogStopNotify(text("Config"))), refusal);
    QCOMPARE(answerTo(service->LogClear(text("Config"))), refusal);
}

void tst_Logs::theDebugLogIsInTheStateDirectory_data()
{
    QTest::addColumn<QString>("value");
    QTest::addColumn<QString>("name");
    QTest::newRow("a name") << text("capture.txt") << text("capture.txt");
    QTest::newRow("an absolute path") << text("/tmp/capture1.txt") << text("capture1.txt");
    QTest::newRow("a path upwards") << text("../../capture2.txt") << text("capture2.txt");
    QTest::newRow("a name beyond ASCII") << text("a\xc3\xa4 b") << text("a\xc3\xa4 b");
}

void tst_Logs::theDebugLogIsInTheStateDirectory()
{
    QFETCH(QString, value);
    QFETCH(QString, name);
    QCOMPARE(answerTo(service->DbgLogCmd(text("SAVE_TO"), value)), QString());
    QCOMPARE(takeHeard(), QStringList { text("SigInfo debug log goes to ") + pathOf(name) });
    // The marker of takeHeard() is in no debug log.
    QCOMPARE(contentsOf(name), QByteArray());
}

void tst_Logs::theDebugLogHasOneLineForEachEntry()
{
    command("SAVE_TO", "capture.txt");
    service->SetValue(port, QDBusVariant(text("22")));
    service->SetValue(port, QDBusVariant(text("ftp\n")));
    service->SetValue(text(":config:xdsl:line:profile:"), QDBusVariant(text("a\nb")));
    service->GetValue(port);
    QCOMPARE(command("SET_REPORTING_LEVEL", "DEBUG"), QString());
    service->GetValue(text(":config:voip:jitter:"));
    QCOMPARE(answerTo(service->GetValue(text(":config:other:x:"))),
             text("varn.pim.Error.UnknownId: There is no \":config:other:x:\" here."));
    QCOMPARE(
        contentsOf(text("capture.txt")),
        QByteArray("INFO LOG_DATA :config:data:ftp:port: set to 22\n"
                   "ERROR LOG_DATA :config:data:ftp:port: refused: "
                   "\":config:data:ftp:port:\" cannot be set: \"ftp \" is not a whole number.\n"
                   "INFO LOG_XDSL :config:xdsl:line:profile: set to a b\n"
                   "DEBUG LOG_VOIP :config:voip:jitter: read\n"));
}

void tst_Logs::theReportingLevelChoosesTheEntries_data()
{
    QTest::addColumn<QString>("level");
    QTest::addColumn<QByteArray>("contents");
    const QByteArray error = "ERROR LOG_DATA :config:data:nothing: refused: There is no "
                             "\":config:data:nothing:\" here.\n";
    const QByteArray info = "INFO LOG_DATA :config:data:ftp:port: set to 22\n";
    const QByteArray debug = "DEBUG LOG_DATA :config:data:ftp:port: read\n";
    QTest::newRow("errors") << text("ERROR") << error;
    QTest::newRow("information") << text("INFO") << error + info;
    QTest::newRow("debugging") << text("DEBUG") << error + info + debug;
    QTest::newRow("level 1") << text("DEBUG1") << error + info + debug;
    QTest::newRow("level 2") << text("DEBUG2") << error + info + debug;
    QTest::newRow("level 3") << text("DEBUG3") << error + info + debug;
    QTest::newRow("level 4") << text("DEBUG4") << error + info + debug;
}

void tst_Logs::theReportingLevelChoosesTheEntries()
{
    QFETCH(QString, level);
    QFETCH(QByteArray, contents);
    command("SAVE_TO", "capture.txt");
    QCOMPARE(answerTo(service->DbgLogCmd(text("SET_REPORTING_LEVEL"), level)), QString());
    service->GetValue(text(":config:data:nothing:"));
    service->SetValue(port, QDBusVariant(text("22")));
    service->GetValue(port).waitForFinished();
    QCOMPARE(contentsOf(text("capture.txt")), contents);
}

void tst_Logs::debugLogsAreSwitchedByInstance()
{
    command("SAVE_TO", "capture.txt");
    command("SET_REPORTING_LEVEL", "DEBUG");
    const QStringList ids { text(":result:xdsl:line:rate:0:"), text(":config:xdsl:line:profile:"),
                            percent };
    QCOMPARE(command("SET", "LOG_XDSL, 1, DISABLED"), QString());
    service->GetValue(ids);
    QCOMPARE(command("SET", "LOG_XDSL,0,DISABLED"), QString());
    service->GetValue(ids);
    QCOMPARE(command("SET", " LOG_XDSL , 0 , ENABLED "), QString());
    service->GetValue(ids).waitForFinished();
    QCOMPARE(contentsOf(text("capture.txt")),
             QByteArray("DEBUG LOG_XDSL :result:xdsl:line:rate:0: read\n"
                        "DEBUG LOG_XDSL :config:xdsl:line:profile: read\n"
                        "DEBUG LOG_DATA :result:data:ftp:percentTransfered:0: read\n"
                        "DEBUG LOG_DATA :result:data:ftp:percentTransfered:0: read\n"
                        "DEBUG LOG_XDSL :result:xdsl:line:rate:0: read\n"
                        "DEBUG LOG_XDSL :config:xdsl:line:profile: read\n"
                        "DEBUG LOG_DATA :result:data:ftp:percentTransfered:0: read\n"));
}

void tst_Logs::debugLogsAreSwitchedAsAWhole()
{
    command("SAVE_TO", "capture.txt");
    QCOMPARE(command("SET_ALL", "LOG_DATA, DISABLED"), QString());
    service->SetValue(port, QDBusVariant(text("22")));
    QCOMPARE(command("SET_ALL", "LOG_DATA, ENABLED"), QString());
    service->SetValue(port, QDBusVariant(text("23"))).waitForFinished();
    QCOMPARE(contentsOf(text("capture.txt")),
             QByteArray("INFO LOG_DATA :config:data:ftp:port: set to 23\n"));
}

void tst_Logs::theDebugLogEndsAt16MiB()
{
    const QByteArray entry = "DEBUG LOG_DATA :result:data:ftp:percentTransfered:0: read\n";
    QCOMPARE(entry.size(), 58);
    constexpr int mostEntries = 289262;
    command("SAVE_TO", "capture.txt");
    QCOMPARE(command("SET_REPORTING_LEVEL", "DEBUG"), QString());
    QStringList ids;
    for (int count = 0; count < mostEntries; ++count) {
        ids.append(percent);
    }
    service->GetStatus(ids);
    QCOMPARE(takeHeard(),
             QStringList { text("SigInfo debug log goes to ") + pathOf(text("capture.txt")) });
    QVERIFY(contentsOf(text("capture.txt")) == entry.repeated(mostEntries));
    service->GetStatus(percent);
    service->GetStatus(percent);
    QCOMPARE(takeHeard(),
             QStringList { text("SigError the debug log cannot be written and is closed: it would "
                                "be larger than 16 MiB") });
    QCOMPARE(QFileInfo(pathOf(text("capture.txt"))).size(), qint64(16777196));
}

void tst_Logs::aNewFileReplacesTheOldOne()
{
    QVERIFY(writeFile(text("capture.txt"), "old\n"));
    // The old file keeps its contents under its other name.
    QCOMPARE(link(qPrintable(pathOf(text("capture.txt"))), qPrintable(pathOf(text("kept.txt")))),
             0);
    command("SAVE_TO", "capture.txt");
    service->SetValue(port, QDBusVariant(text("22"))).waitForFinished();
    QCOMPARE(contentsOf(text("capture.txt")),
             QByteArray("INFO LOG_DATA :config:data:ftp:port: set to 22\n"));
    QCOMPARE(contentsOf(text("kept.txt")), QByteArray("old\n"));
    command("SAVE_TO", "next.txt");
    service->SetValue(port, QDBusVariant(text("23"))).waitForFinished();
    QCOMPARE(contentsOf(text("capture.txt")),
             QByteArray("INFO LOG_DATA :config:data:ftp:port: set to 22\n"));
    QCOMPARE(contentsOf(text("next.txt")),
             QByteArray("INFO LOG_DATA :config:data:ftp:port: set to 23\n"));
}

void tst_Logs::savingStops()
{
    QCOMPARE(command("SAVE_STOP", ""), QString());
    command("SAVE_TO", "capture.txt");
    QCOMPARE(command("SAVE_STOP", ""), QString());
    service->SetValue(port, QDBusVariant(text("22"))).waitForFinished();
    QCOMPARE(contentsOf(text("capture.txt")), QByteArray());
}

void tst_Logs::commandsAreChecked_data()
{
    QTest::addColumn<QString>("word");
    QTest::addColumn<QString>("value");
    QTest::addColumn<QString>("answer");
    const auto row = [](const char *name, const char *word, const char *value, const char *answer) {
        QTest::newRow(name) << text(word) << text(value) << text("varn.pim.Error.") + text(answer);
    };
    row("another word", "GET_IDS", "", "UnknownCommand: There is no command \"GET_IDS\".");
    row("another case", "set", "LOG_XDSL, 0, ENABLED",
        "UnknownCommand: There is no command \"set\".");
    row("SET of nothing", "SET", "",
        "BadValue: \"\" is not of the form \"<log>, <instance 0 to 255>, ENABLED|DISABLED\".");
    row("SET without an instance", "SET", "LOG_XDSL, ENABLED",
        "BadValue: \"LOG_XDSL, ENABLED\" is not of the form \"<log>, <instance 0 to 255>, "
        "ENABLED|DISABLED\".");
    row("SET of a negative instance", "SET", "LOG_XDSL, -1, ENABLED",
        "BadValue: \"LOG_XDSL, -1, ENABLED\" is not of the form \"<log>, <instance 0 to 255>, "
        "ENABLED|DISABLED\".");
    row("SET of an instance beyond the last", "SET", "LOG_XDSL, 256, ENABLED",
        "BadValue: \"LOG_XDSL, 256, ENABLED\" is not of the form \"<log>, <instance 0 to 255>, "
        "ENABLED|DISABLED\".");
    row("SET to another word", "SET", "LOG_XDSL, 0, on",
        "BadValue: \"LOG_XDSL, 0, on\" is not of the form \"<log>, <instance 0 to 255>, "
        "ENABLED|DISABLED\".");
    row("SET with a part too many", "SET", "LOG_XDSL, 0, 0, ENABLED",
        "BadValue: \"LOG_XDSL, 0, 0, ENABLED\" is not of the form \"<log>, <instance 0 to 255>, "
        "ENABLED|DISABLED\".");
    row("SET of an unknown log", "SET", "LOG_NONE, 0, ENABLED",
        "UnknownId: There is no \"LOG_NONE\" here.");
    row("SET_ALL with an instance", "SET_ALL", "LOG_XDSL, 0, ENABLED",
        "BadValue: \"LOG_XDSL, 0, ENABLED\" is not of the form \"<log>, ENABLED|DISABLED\".");
    row("SET_ALL of an unknown log", "SET_ALL", "LOG_NONE, ENABLED",
        "UnknownId: There is no \"LOG_NONE\" here.");
    row("a level in lower case", "SET_REPORTING_LEVEL", "debug",
        "BadValue: \"debug\" is not of the form "
        "\"ERROR|INFO|DEBUG|DEBUG1|DEBUG2|DEBUG3|DEBUG4\".");
    row("a level beyond the last", "SET_REPORTING_LEVEL", "DEBUG5",
        "BadValue: \"DEBUG5\" is not of the form "
        "\"ERROR|INFO|DEBUG|DEBUG1|DEBUG2|DEBUG3|DEBUG4\".");
    row("SAVE_TO an empty name", "SAVE_TO", "",
        "BadName: \"\" cannot be the name of a file: it is empty.");
    row("SAVE_TO a directory", "SAVE_TO", "/tmp/",
        "BadName: \"\" cannot be the name of a file: it is empty.");
    row("SAVE_TO the parent", "SAVE_TO", "/tmp/..",
        "BadName: \"..\" cannot be the name of a file: it names a directory.");
    row("SAVE_STOP with a value", "SAVE_STOP", "x",
        "BadValue: SAVE_STOP takes no value, but \"x\" came with it.");
}

void tst_Logs::commandsAreChecked()
{
    QFETCH(QString, word);
    QFETCH(QString, value);
    QFETCH(QString, answer);
    QCOMPARE(answerTo(service->DbgLogCmd(word, value)), answer);
}

void tst_Logs::anotherKindOfFileIsNotReplaced()
{
    QVERIFY(writeFile(text("target"), "kept"));
    QCOMPARE(symlink("target", qPrintable(pathOf(text("link")))), 0);
    QCOMPARE(mkfifo(qPrintable(pathOf(text("pipe"))), 0600), 0);
    QCOMPARE(mkdir(qPrintable(pathOf(text("folder"))), 0700), 0);
    for (const char *name : { "link", "pipe", "folder" }) {
        QCOMPARE(command("SAVE_TO", name),
                 text("varn.pim.Error.File: Cannot write \"") + pathOf(text(name))
                     + text("\": it is not a regular file."));
    }
    QCOMPARE(contentsOf(text("target")), QByteArray("kept"));
    QVERIFY(QFileInfo(pathOf(text("link"))).isSymLink());
}

QTEST_GUILESS_MAIN(tst_Logs)
#include "tst_logs.moc"
