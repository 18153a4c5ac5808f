// SPDX-License-Identifier: MIT
// The built program: its options, exit statuses, messages and end.
#include "tests/sim/simrun.h"
#include "tests/support/openbus.h"
#include "tests/support/patience.h"

#include <QDBusConnection>
#include <QDBusConnectionInterface>
#include <QDBusServiceWatcher>
#include <QFileInfo>
#include <QRegularExpression>
#include <QSignalSpy>
#include <QTest>

#include <csignal>

namespace
{

constexpr const char *help =
    "Usage: movra-sim [--service NAME] [--path PATH] [--catalog FILE] [--state DIR]\n"
    "                 [--log FILE] [--fault MEMBER=FAULT]... [-- COMMAND [ARGUMENT]...]\n"
    "       movra-sim --capture NAME [--path PATH]\n"
    "       movra-sim --check FILE\n"
    "\n"
    "A simulated service for movra. It owns a name on the session bus, implements the\n"
    "interface \"varn.pim\" and prints \"ready\" when it can be called. It ends on SIGINT,\n"
    "SIGTERM or SIGHUP, after the signal SigDBusServerClosing.\n"
    "\n"
    "With a command, it starts a private session bus and runs the command there, with\n"
    "DBUS_SESSION_BUS_ADDRESS and MOVRA_SIM_STATE (the state directory) set. It ends when\n"
    "the command ends. This needs dbus-daemon.\n"
    "\n"
    "Options:\n"
    "  --service NAME  the bus name to own (default com.varn.tul)\n"
    "  --path PATH     the object path (default /)\n"
    "  --catalog FILE  the items, actions and logs, as JSON\n"
    "                  (default: a built-in catalogue with items of every type)\n"
    "  --state DIR     the directory of saved configurations and debug-log files\n"
    "                  (default $XDG_STATE_HOME/movra-sim,\n"
    "                  else $HOME/.local/state/movra-sim; with a command,\n"
    "                  a temporary one)\n"
    "  --log FILE      writes each call and each signal to the file (-: standard output),\n"
    "                  one JSON object on each line\n"
    "  --fault MEMBER[(ID)]=FAULT[@N]\n"
    "                  changes the replies to calls of this member (*: of every member):\n"
    "                  only to calls whose first argument names the ID, only to the N-th\n"
    "                  call. May be repeated. The faults:\n"
    "                    delay:MS       executed MS milliseconds later, then a reply\n"
    "                    refuse[:TEXT]  the error varn.pim.Error.Refused\n"
    "                    error:NAME[:TEXT]\n"
    "                                   the bus error of this name\n"
    "                    wrong-type     a reply of another type\n"
    "                    silence        no reply\n"
    "                    vanish         no reply, and the simulator ends immediately\n"
    "  --capture NAME  asks the service with this bus name for all its items, and prints a\n"
    "                  catalogue with the same items and values\n"
    "  --check FILE    reads a catalogue and prints the first error in it; needs no bus\n"
    "  -h, --help      print this text\n"
    "  --version       print the version\n"
    "\n"
    "Exit status:\n"
    "  0  ended by a signal or by the fault vanish, or printed what was requested, or the\n"
    "     catalogue is valid\n"
    "  1  wrong options or arguments, or the output cannot be written\n"
    "  2  the catalogue cannot be read or is malformed\n"
    "  3  there is no session bus, or it has ended\n"
    "  4  the bus name is malformed, taken or not allowed\n"
    "  5  the object path is malformed\n"
    "  6  the directory of --state cannot be used\n"
    "  7  the file of --log cannot be written\n"
    "  8  the service cannot be captured\n"
    "With a command, its own status: 126 if it cannot be executed, 127 if it is not found,\n"
    "128 plus the signal's number if a signal ended it.\n";

} // namespace

class tst_Program : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init();
    void helpAndVersionNeedNoBus_data();
    void helpAndVersionNeedNoBus();
    void theManualNamesEveryOptionAndStatus();
    void everyErrorHasItsLineAndItsStatus_data();
    void everyErrorHasItsLineAndItsStatus();
    void aTakenNameStaysWithItsOwner();
    void withoutABusThereIsAnError();
    void aSignalEndsTheProgramInOrder_data();
    void aSignalEndsTheProgramInOrder();
    void callsBeforeTheEndAreExecuted();
    void signalsIgnoredAtTheStartStayIgnored();
    void optionsSetNameAndPath();
    void aRelativeStateDirectoryIsMadeAtTheStart();
    void noFileIsMadeWithoutNeed();

private:
    /// Runs the program to its end: status, standard output, standard error.
    QString run(const QStringList &arguments)
    {
        QProcess process;
        process.setWorkingDirectory(directory->path());
        process.setProcessEnvironment(environment);
        process.start(text(MOVRA_SIM_PROGRAM), arguments);
        if (!process.waitForFinished(patienceMs) || process.exitStatus() != QProcess::NormalExit) {
            process.kill();
            process.waitForFinished(patienceMs);
            return text("did not end well");
        }
        return text("%1|%2|%3")
            .arg(process.exitCode())
            .arg(QString::fromLocal8Bit(process.readAllStandardOutput()),
                 QString::fromLocal8Bit(process.readAllStandardError()));
    }

    std::unique_ptr<QTemporaryDir> directory;
    QProcessEnvironment environment;
};

void tst_Program::init()
{
    directory = std::make_unique<QTemporaryDir>();
    environment = QProcessEnvironment::systemEnvironment();
    environment.insert(text("HOME"), directory->path());
    environment.remove(text("XDG_STATE_HOME"));
}

void tst_Program::helpAndVersionNeedNoBus_data()
{
    QTest::addColumn<QStringList>("arguments");
    QTest::addColumn<QString>("expected");
    const QString helpOutcome = text("0|") + text(help) + text("|");
    QTest::newRow("help") << QStringList { text("--help") } << helpOutcome;
    QTest::newRow("help by its short option") << QStringList { text("-h") } << helpOutcome;
    QTest::newRow("help wins over the version")
        << QStringList { text("--version"), text("--help") } << helpOutcome;
    QTest::newRow("help with other options")
        << QStringList { text("--path"), text("x"), text("--help") } << helpOutcome;
    QTest::newRow("version") << QStringList { text("--version") }
                             << text("0|movra-sim " MOVRA_SIM_VERSION "\n|");
}

void tst_Program::helpAndVersionNeedNoBus()
{
    QFETCH(QStringList, arguments);
    QFETCH(QString, expected);
    environment.insert(text("DBUS_SESSION_BUS_ADDRESS"), text("unix:path=/nonexistent"));
    QCOMPARE(run(arguments), expected);
}

void tst_Program::theManualNamesEveryOptionAndStatus()
{
    QFile file(text(MOVRA_SIM_MANUAL));
    QVERIFY(file.open(QIODevice::ReadOnly));
    const QString manual = QString::fromUtf8(file.readAll()).replace(text("\\-"), text("-"));
    QRegularExpression word(text("--[a-z]+|^ {20}[a-z-]+|^  [0-9](?=  )"),
                            QRegularExpression::MultilineOption);
    QStringList words;
    for (auto found = word.globalMatch(run({ text("--help") })); found.hasNext();) {
        words.append(found.next().captured().trimmed());
    }
    words.removeDuplicates();
    QCOMPARE(words.size(), 10 + 6 + 9);
    for (const QString &each : qAsConst(words)) {
        // An option or a fault is in bold, a status begins a line of the table.
        const QString wanted =
            text("(\\.[A-Z]+ |\\\\fB|, |^)%1\\b").arg(QRegularExpression::escape(each));
        QVERIFY2(manual.contains(QRegularExpression(wanted, QRegularExpression::MultilineOption)),
                 qPrintable(each));
    }
}

void tst_Program::everyErrorHasItsLineAndItsStatus_data()
{
    QTest::addColumn<QStringList>("arguments");
    QTest::addColumn<QString>("expected");
    const auto row = [](const char *name, const QStringList &arguments, const char *expected) {
        QTest::newRow(name) << arguments << text(expected);
    };
    row("an unknown option", { text("--verbose") },
        "1||movra-sim: Unknown option 'verbose'. See movra-sim --help.\n");
    row("an option without its value", { text("--service") },
        "1||movra-sim: Missing value after '--service'. See movra-sim --help.\n");
    row("a value for a switch", { text("--help=x") },
        "1||movra-sim: Unexpected value after '--help'. See movra-sim --help.\n");
    row("a stray argument", { text("com.varn.tul"), text("/") },
        "1||movra-sim: \"com.varn.tul\" is one argument too many. See movra-sim --help.\n");
    row("a fault without its member", { text("--fault"), text("silence") },
        "1||movra-sim: The fault \"silence\" is not valid: it is not of the form "
        "MEMBER[(ID)]=FAULT[@N]. See movra-sim --help.\n");
    row("a fault of an unknown member", { text("--fault"), text("getvalue=silence") },
        "1||movra-sim: The fault \"getvalue=silence\" is not valid: the interface has no member "
        "\"getvalue\". See movra-sim --help.\n");
    row("a fault of a signal", { text("--fault"), text("SigInfo=silence") },
        "1||movra-sim: The fault \"SigInfo=silence\" is not valid: the interface has no member "
        "\"SigInfo\". See movra-sim --help.\n");
    row("an unknown fault", { text("--fault"), text("*=explode") },
        "1||movra-sim: The fault \"*=explode\" is not valid: \"explode\" is not delay:MS, refuse, "
        "refuse:TEXT, error:NAME, error:NAME:TEXT, wrong-type, vanish or silence. See movra-sim "
        "--help.\n");
    row("a fault with an unwanted value", { text("--fault"), text("*=vanish:5") },
        "1||movra-sim: The fault \"*=vanish:5\" is not valid: \"vanish:5\" is not delay:MS, "
        "refuse, "
        "refuse:TEXT, error:NAME, error:NAME:TEXT, wrong-type, vanish or silence. See movra-sim "
        "--help.\n");
    row("an error without a name", { text("--fault"), text("*=error:") },
        "1||movra-sim: The fault \"*=error:\" is not valid: \"\" is not the name of a bus error. "
        "See "
        "movra-sim --help.\n");
    row("an error whose name has no dot", { text("--fault"), text("*=error:Locked:text") },
        "1||movra-sim: The fault \"*=error:Locked:text\" is not valid: \"Locked\" is not the name "
        "of "
        "a bus error. See movra-sim --help.\n");
    row("a delay without its time", { text("--fault"), text("GetValue=delay") },
        "1||movra-sim: The fault \"GetValue=delay\" is not valid: \"delay\" is not delay:MS, "
        "refuse, "
        "refuse:TEXT, error:NAME, error:NAME:TEXT, wrong-type, vanish or silence. See movra-sim "
        "--help.\n");
    row("a delay that is no number", { text("--fault"), text("GetValue=delay:5s") },
        "1||movra-sim: The fault \"GetValue=delay:5s\" is not valid: \"5s\" is not in 0 to 3600000 "
        "milliseconds. See movra-sim --help.\n");
    row("a negative delay", { text("--fault"), text("GetValue=delay:-1") },
        "1||movra-sim: The fault \"GetValue=delay:-1\" is not valid: \"-1\" is not in 0 to 3600000 "
        "milliseconds. See movra-sim --help.\n");
    row("a delay above an hour", { text("--fault=*=delay:0"), text("--fault=*=delay:3600001") },
        "1||movra-sim: The fault \"*=delay:3600001\" is not valid: \"3600001\" is not in 0 to "
        "3600000 milliseconds. See movra-sim --help.\n");
    row("a catalogue without a name", { text("--catalog"), QString() },
        "1||movra-sim: The name of the catalogue is empty. See movra-sim --help.\n");
    row("a log without a name", { text("--log"), QString() },
        "1||movra-sim: The name of the log is empty. See movra-sim --help.\n");
    row("a missing catalogue", { text("--catalog"), text("none.json") },
        "2||movra-sim: the catalogue \"none.json\" is not valid: No such file or directory\n");
    row("a catalogue that is a directory", { text("--catalog"), text(".") },
        "2||movra-sim: the catalogue \".\" is not valid: file to open is a directory\n");
    row("a catalogue with a syntax error", { text("--catalog"), text("syntax.json") },
        "2||movra-sim: the catalogue \"syntax.json\" is not valid: line 2, column 1: syntax "
        "error while parsing object key - unexpected '}'; expected string literal\n");
    row("a catalogue with a wrong value", { text("--catalog"), text("value.json") },
        "2||movra-sim: the catalogue \"value.json\" is not valid: configs[0].value: 300000000000 "
        "does "
        "not fit int32\n");
    row("a catalogue of infinite size", { text("--catalog"), text("/dev/zero") },
        "2||movra-sim: the catalogue \"/dev/zero\" is not valid: is larger than 16 MiB\n");
    row("a checked catalogue without a name", { text("--check"), QString() },
        "1||movra-sim: The name of the catalogue is empty. See movra-sim --help.\n");
    row("a missing checked catalogue", { text("--check"), text("none.json") },
        "2||movra-sim: the catalogue \"none.json\" is not valid: No such file or directory\n");
    row("a checked catalogue with a wrong value", { text("--check"), text("value.json") },
        "2||movra-sim: the catalogue \"value.json\" is not valid: configs[0].value: 300000000000 "
        "does not fit int32\n");
    row("a checked catalogue that is good", { text("--check"), text("good.json") }, "0||");
    row("a name without a dot", { text("--service"), text("varn") },
        "4||movra-sim: the bus name \"varn\" cannot be owned: Requested bus name \"varn\" is not "
        "valid\n");
    row("an empty name", { text("--service"), QString() },
        "4||movra-sim: the bus name \"\" cannot be owned: Requested bus name \"\" is not valid\n");
    row("a unique name", { text("--service"), text(":1.1") },
        "4||movra-sim: the bus name \":1.1\" cannot be owned: Cannot acquire a service starting "
        "with "
        "':' such as \":1.1\"\n");
    row("a path without a slash", { text("--path"), text("tul") },
        "5||movra-sim: \"tul\" is not an object path\n");
    row("a path with a slash at its end", { text("--path"), text("/tul/") },
        "5||movra-sim: \"/tul/\" is not an object path\n");
    row("a path with an empty part", { text("--path"), text("//tul") },
        "5||movra-sim: \"//tul\" is not an object path\n");
    row("a path with another character", { text("--path"), text("/t-l") },
        "5||movra-sim: \"/t-l\" is not an object path\n");
    row("a path with a line end", { text("--path"), text("/tul\n") },
        "5||movra-sim: \"/tul \" is not an object path\n");
    row("an empty path", { text("--path"), QString() },
        "5||movra-sim: \"\" is not an object path\n");
    row("a state directory that is a file", { text("--state"), text("/dev/null") },
        "6||movra-sim: the state directory cannot be used: \"/dev/null\" is no directory and "
        "cannot "
        "be created\n");
    row("a state directory below a file", { text("--state"), text("/dev/null/state") },
        "6||movra-sim: the state directory cannot be used: \"/dev/null/state\" is no directory and "
        "cannot be created\n");
    row("a state directory without a name", { text("--state"), QString() },
        "6||movra-sim: the state directory cannot be used: its name is empty\n");
}

void tst_Program::everyErrorHasItsLineAndItsStatus()
{
    QFETCH(QStringList, arguments);
    QFETCH(QString, expected);
    const auto write = [this](const char *name, const QByteArray &contents) {
        QFile file(directory->filePath(text(name)));
        return file.open(QIODevice::WriteOnly) && file.write(contents) == contents.size();
    };
    QVERIFY(write("syntax.json", "{\"configs\": [],\n}"));
    QVERIFY(write("value.json",
                  R"({"configs": [{"id": "a", "type": "int32", "value": 300000000000}]})"));
    QVERIFY(write("good.json",
                  R"({"configs": [], "results": [], "actions": [], "logs": [], "debugLogs": []})"));
    QCOMPARE(run(arguments), expected);
}

void tst_Program::aTakenNameStaysWithItsOwner()
{
    QProcess first;
    QVERIFY(startSimulator(first, {}));
    QCOMPARE(run({}),
             text("4||movra-sim: the bus name \"com.varn.tul\" cannot be owned: somebody else owns "
                  "it\n"));
    QCOMPARE(QDBusConnection::sessionBus().interface()->servicePid(text("com.varn.tul")).value(),
             static_cast<uint>(first.processId()));
    QVERIFY(endSimulator(first, SIGTERM));
}

void tst_Program::withoutABusThereIsAnError()
{
    environment.insert(text("DBUS_SESSION_BUS_ADDRESS"), text("unix:path=/nonexistent"));
    QCOMPARE(
        run({}),
        text("3||movra-sim: there is no session bus: Failed to connect to socket /nonexistent: "
             "No such file or directory\n"));
}

void tst_Program::aSignalEndsTheProgramInOrder_data()
{
    QTest::addColumn<int>("number");
    QTest::newRow("SIGINT") << SIGINT;
    QTest::newRow("SIGTERM") << SIGTERM;
    QTest::newRow("SIGHUP") << SIGHUP;
}

void tst_Program::aSignalEndsTheProgramInOrder()
{
    QFETCH(int, number);
    QProcess simulator;
    QVERIFY(startSimulator(simulator, {}));
    KorAppInterface service(text("com.varn.tul"), text("/"), openBus(), nullptr);
    QStringList events;
    connect(&service, &KorAppInterface::SigDBusServerClosing, this,
            [&events](const QString &message) { events.append(message); });
    QDBusServiceWatcher watcher(text("com.varn.tul"), service.connection(),
                                QDBusServiceWatcher::WatchForUnregistration);
    connect(&watcher, &QDBusServiceWatcher::serviceUnregistered, this,
            [&events] { events.append(text("the name is free")); });
    QCOMPARE(answerTo(service.DBusServerStatus()), text("i 0"));
    QVERIFY(endSimulator(simulator, number));
    QTRY_COMPARE_WITH_TIMEOUT(
        events, (QStringList { text("movra-sim is closing"), text("the name is free") }),
        patienceMs);
    QCOMPARE(simulator.readAllStandardOutput(), QByteArray());
    QCOMPARE(simulator.readAllStandardError(), QByteArray());
}

void tst_Program::callsBeforeTheEndAreExecuted()
{
    QProcess simulator;
    QVERIFY(startSimulator(simulator, {}));
    KorAppInterface service(text("com.varn.tul"), text("/"), openBus(), nullptr);
    const auto pid = static_cast<pid_t>(simulator.processId());
    QCOMPARE(kill(pid, SIGSTOP), 0);
    // The simulator needs longer to read this call than to notice a signal.
    service.DbgLogCmd(text("SET"), QString(1 << 22, QLatin1Char('x')));
    const QDBusPendingCall call = service.DBusServerStatus();
    // The bus answers this call after it has taken the one before.
    QVERIFY(service.connection().interface()->isServiceRegistered(text("com.varn.tul")));
    QCOMPARE(kill(pid, SIGTERM) + kill(pid, SIGCONT), 0);
    QCOMPARE(answerTo(call), text("i 0"));
    QVERIFY(simulator.waitForFinished(patienceMs));
    QCOMPARE(simulator.exitCode(), 0);
}

void tst_Program::signalsIgnoredAtTheStartStayIgnored()
{
    QProcess simulator;
    simulator.start(text("sh"), { text("-c"), text("trap '' HUP INT; exec " MOVRA_SIM_PROGRAM) });
    while (!simulator.canReadLine()) {
        QVERIFY(simulator.waitForReadyRead(patienceMs));
    }
    KorAppInterface service(text("com.varn.tul"), text("/"), openBus(), nullptr);
    QSignalSpy closings(&service, &KorAppInterface::SigDBusServerClosing);
    const auto pid = static_cast<pid_t>(simulator.processId());
    QCOMPARE(kill(pid, SIGHUP) + kill(pid, SIGINT), 0);
    QCOMPARE(answerTo(service.DBusServerStatus()), text("i 0"));
    QCOMPARE(closings.count(), 0);
    QVERIFY(endSimulator(simulator, SIGTERM));
}

void tst_Program::optionsSetNameAndPath()
{
    QProcess simulator;
    QVERIFY(startSimulator(
        simulator, { text("--service=org.example.other"), text("--path"), text("/deep/down") }));
    KorAppInterface service(text("org.example.other"), text("/deep/down"), openBus(), nullptr);
    QSignalSpy infos(&service, &KorAppInterface::SigInfo);
    QCOMPARE(answerTo(service.DoAction(text(":action:data:ftp:ping:"))), QString());
    QTRY_COMPARE_WITH_TIMEOUT(infos.count(), 1, patienceMs);
    KorAppInterface elsewhere(text("org.example.other"), text("/"), openBus(), nullptr);
    QCOMPARE(answerTo(elsewhere.DBusServerStatus()),
             text("org.freedesktop.DBus.Error.UnknownInterface: No such interface 'varn.pim' at "
                  "object path '/'"));
    QVERIFY(endSimulator(simulator, SIGTERM));
}

void tst_Program::aRelativeStateDirectoryIsMadeAtTheStart()
{
    QProcess simulator;
    simulator.setWorkingDirectory(directory->path());
    QVERIFY(startSimulator(simulator, { text("--state"), text("a/b") }));
    QVERIFY(QFileInfo(directory->filePath(text("a/b"))).isDir());
    KorAppInterface service(text("com.varn.tul"), text("/"), openBus(), nullptr);
    QSignalSpy infos(&service, &KorAppInterface::SigInfo);
    QCOMPARE(answerTo(service.SaveConfig(text("night"))), text("b true"));
    QTRY_COMPARE_WITH_TIMEOUT(infos.count(), 1, patienceMs);
    QCOMPARE(infos.at(0).at(0).toString(),
             text("configuration saved to ") + directory->filePath(text("a/b/night")));
    QVERIFY(endSimulator(simulator, SIGTERM));
}

void tst_Program::noFileIsMadeWithoutNeed()
{
    QProcess simulator;
    simulator.setProcessEnvironment(environment);
    QVERIFY(startSimulator(simulator, {}));
    QVERIFY(endSimulator(simulator, SIGTERM));
    QVERIFY(directory->isValid());
    QCOMPARE(
        QDir(directory->path()).entryList(QDir::AllEntries | QDir::Hidden | QDir::NoDotAndDotDot),
        QStringList());
}

QTEST_GUILESS_MAIN(tst_Program)
#include "tst_program.moc"
