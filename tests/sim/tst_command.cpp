// SPDX-License-Identifier: MIT
// A command inside the simulator: its environment, the exit status, and that nothing remains.
#include "tests/support/patience.h"
#include "tests/support/program.h"

#include <QDir>
#include <QFileInfo>
#include <QTemporaryDir>
#include <QTest>

#include <csignal>

class tst_Command : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init();
    void cleanup();
    void theStatusIsThatOfTheCommand_data();
    void theStatusIsThatOfTheCommand();
    void outputThatCannotBeWrittenIsAnError();
    void theCommandCallsTheService();
    void theOtherOptionsApplyToTheService();
    void argumentsArriveByteForByte();
    void theStateDirectoryIsTemporary();
    void aChosenStateDirectoryStays();
    void closedStreamsAreNoSockets();
    void withoutDbusDaemonThereIsAnError();
    void theCommandContinuesWhenTheServiceVanishes();
    void signalsToTheSimulatorReachTheCommand_data();
    void signalsToTheSimulatorReachTheCommand();
    void signalsOfTheTerminalEndBoth_data();
    void signalsOfTheTerminalEndBoth();
    void aCommandMayOutliveCtrlC();
    void signalsIgnoredAtTheStartStayIgnored();
    void aKilledSimulatorLeavesNoFiles();

private:
    /// Starts the simulator with the temporary directory of the test.
    Program start(const QByteArrayList &arguments)
    {
        return { MOVRA_SIM_PROGRAM, arguments, environment };
    }
    /// Runs the simulator to its end: status, standard output, standard error.
    QByteArray run(const QByteArrayList &arguments)
    {
        Program program = start(arguments);
        program.waitForEnd();
        return QByteArray::number(program.status) + '|' + program.out + '|' + program.err;
    }
    QStringList leftovers() const
    {
        return QDir(scratch->path())
            .entryList(QDir::AllEntries | QDir::Hidden | QDir::System | QDir::NoDotAndDotDot);
    }

    std::unique_ptr<QTemporaryDir> scratch;
    QByteArrayList environment;
};

void tst_Command::init()
{
    // The path of the private bus is part of its address.
    scratch =
        std::make_unique<QTemporaryDir>(QDir::tempPath() + QStringLiteral("/it's ä, b;%20-XXXXXX"));
    // Only the simulator provides a session bus.
    environment = { "PATH=" MOVRA_PROGRAM_DIRECTORY ":" + qgetenv("PATH"),
                    "TMPDIR=" + QFile::encodeName(scratch->path()), "HOME=/nonexistent" };
    for (const char *name : { "LSAN_OPTIONS", "LC_ALL", "LANG" }) {
        if (qEnvironmentVariableIsSet(name)) {
            environment.append(QByteArray(name) + '=' + qgetenv(name));
        }
    }
}

void tst_Command::cleanup()
{
    QCOMPARE(leftovers(), QStringList());
}

void tst_Command::theStatusIsThatOfTheCommand_data()
{
    QTest::addColumn<QByteArrayList>("arguments");
    QTest::addColumn<QByteArray>("expected");
    QTest::newRow("success") << QByteArrayList { "--", "true" } << QByteArray("0||");
    QTest::newRow("another status")
        << QByteArrayList { "--", "sh", "-c", "echo out; echo err >&2; exit 7" }
        << QByteArray("7|out\n|err\n");
    QTest::newRow("a signal") << QByteArrayList { "--", "sh", "-c", "kill -KILL $$" }
                              << QByteArray("137||");
    QTest::newRow("a command that does not exist")
        << QByteArrayList { "--", "no-such-command" }
        << QByteArray("127||movra-sim: \"no-such-command\" cannot be run: No such file or "
                      "directory\n");
    QTest::newRow("a command that cannot be run")
        << QByteArrayList { "--", "/dev/null" }
        << QByteArray("126||movra-sim: \"/dev/null\" cannot be run: Permission denied\n");
    QTest::newRow("a directory for temporary files that does not exist")
        << QByteArrayList { "--", "env", "TMPDIR=/nosuch", MOVRA_SIM_PROGRAM, "--", "true" }
        << QByteArray("3||movra-sim: the private bus does not start: \"/nosuch\": No such file or "
                      "directory\n");
    QTest::newRow("SIGCHLD is ignored")
        << QByteArrayList { "--", "env", "--ignore-signal=CHLD", MOVRA_SIM_PROGRAM, "--", "true" }
        << QByteArray("0||");
    QTest::newRow("no command") << QByteArrayList { "--" }
                                << QByteArray("1||movra-sim: There is no command. See movra-sim "
                                              "--help.\n");
    QTest::newRow("a wrong option") << QByteArrayList { "--path", "x", "--", "echo" }
                                    << QByteArray("5||movra-sim: \"x\" is not an object path\n");
}

void tst_Command::theStatusIsThatOfTheCommand()
{
    QFETCH(QByteArrayList, arguments);
    QFETCH(QByteArray, expected);
    QCOMPARE(run(arguments), expected);
}

void tst_Command::outputThatCannotBeWrittenIsAnError()
{
    Program program(MOVRA_SIM_PROGRAM, { "--help" }, environment, Program::Output::Full);
    QVERIFY(program.waitForEnd());
    QCOMPARE(program.status, 1);
    QCOMPARE(program.err,
             QByteArray("movra-sim: the output cannot be written: No space left on device\n"));
}

void tst_Command::theCommandCallsTheService()
{
    QCOMPARE(run({ "--", "movra", "com.varn.tul", "/", "GET", ":config:data:ftp:port:" }),
             QByteArray("0|21\n|"));
}

void tst_Command::theOtherOptionsApplyToTheService()
{
    QCOMPARE(run({ "--service", "com.varn.other", "--path=/deep", "--fault", "GetStatus=silence",
                   "--", "movra", "com.varn.other", "/deep", "GET", ":config:data:ftp:port:" }),
             QByteArray("0|21\n|"));
}

void tst_Command::argumentsArriveByteForByte()
{
    QCOMPARE(run({ "--", "printf", "%s|", "--", "--help", "\xff\xe4", "-qmljsdebugger=x", "" }),
             QByteArray("0|--|--help|\xff\xe4|-qmljsdebugger=x|||"));
}

void tst_Command::theStateDirectoryIsTemporary()
{
    QCOMPARE(run({ "--", "sh", "-c",
                   "movra com.varn.tul / FILE SAVE night; cd \"$MOVRA_SIM_STATE\"; echo *" }),
             QByteArray("0|night\n|"));
}

void tst_Command::aChosenStateDirectoryStays()
{
    const QTemporaryDir state;
    QCOMPARE(run({ "--state", QFile::encodeName(state.path()), "--", "sh", "-c",
                   "movra com.varn.tul / FILE SAVE night; cd \"$MOVRA_SIM_STATE\"; echo *" }),
             QByteArray("0|night\n|"));
    QVERIFY(QFileInfo::exists(state.filePath(QStringLiteral("night"))));
}

void tst_Command::closedStreamsAreNoSockets()
{
    Program program("sh",
                    { "-c", "exec \"$0\" \"$@\" <&- >&- 2>&-", MOVRA_SIM_PROGRAM, "--", "sh", "-c",
                      "movra com.varn.tul / GET :config:data:ftp:port: >\"$0\"",
                      QFile::encodeName(scratch->filePath(QStringLiteral("answer"))) },
                    environment);
    QVERIFY(program.waitForEnd());
    QCOMPARE(program.status, 0);
    QFile answer(scratch->filePath(QStringLiteral("answer")));
    QVERIFY(answer.open(QIODevice::ReadOnly));
    QCOMPARE(answer.readAll(), QByteArray("21\n"));
    QVERIFY(answer.remove());
}

void tst_Command::withoutDbusDaemonThereIsAnError()
{
    environment.prepend("PATH=/nonexistent");
    environment.removeAt(1);
    QCOMPARE(run({ "--", "true" }),
             QByteArray("3||movra-sim: the private bus does not start: dbus-daemon cannot be run: "
                        "No such file or directory\n"));
}

void tst_Command::theCommandContinuesWhenTheServiceVanishes()
{
    QCOMPARE(run({ "--fault", "DBusServerStatus=vanish", "--", "sh", "-c",
                   "for run in 1 2; do movra com.varn.tul / SERVERSTAT; done; exit 5" }),
             QByteArray("5|Reply Not Valid     err=\nClient DBus Interface not valid, error: \n|"));
}

void tst_Command::signalsToTheSimulatorReachTheCommand_data()
{
    QTest::addColumn<int>("number");
    QTest::newRow("SIGTERM") << SIGTERM;
    QTest::newRow("SIGHUP") << SIGHUP;
}

void tst_Command::signalsToTheSimulatorReachTheCommand()
{
    QFETCH(int, number);
    Program program =
        start({ "--", "sh", "-c", "trap 'exit 9' HUP TERM; echo on; while :; do sleep 0.1; done" });
    QVERIFY(program.waitForLines(1));
    program.send(number);
    QVERIFY(program.waitForEnd());
    QCOMPARE(program.status, 9);
    QCOMPARE(program.err, QByteArray());
}

void tst_Command::signalsOfTheTerminalEndBoth_data()
{
    QTest::addColumn<QByteArray>("name");
    QTest::addColumn<int>("status");
    QTest::newRow("Ctrl-C") << QByteArray("INT") << 130;
    QTest::newRow("Ctrl-\\") << QByteArray("QUIT") << 131;
    QTest::newRow("a closed terminal") << QByteArray("HUP") << 129;
    QTest::newRow("the end of the process group") << QByteArray("TERM") << 143;
}

void tst_Command::signalsOfTheTerminalEndBoth()
{
    QFETCH(QByteArray, name);
    QFETCH(int, status);
    // setsid starts a process group for the simulator, as a shell does for a command.
    Program program(
        "setsid",
        { MOVRA_SIM_PROGRAM, "--", "sh", "-c", "ulimit -c 0; kill -" + name + " 0; sleep 60" },
        environment);
    QVERIFY(program.waitForEnd());
    QCOMPARE(program.status, status);
}

void tst_Command::aCommandMayOutliveCtrlC()
{
    Program program("setsid",
                    { MOVRA_SIM_PROGRAM, "--", "sh", "-c",
                      "trap : INT; kill -INT 0; movra com.varn.tul / SERVERSTAT; exit 4" },
                    environment);
    QVERIFY(program.waitForEnd());
    QCOMPARE(program.out, QByteArray("0\n"));
    QCOMPARE(program.status, 4);
}

void tst_Command::signalsIgnoredAtTheStartStayIgnored()
{
    // Five seconds after a SIGHUP that is not ignored, the command is killed.
    Program program(
        "setsid",
        { "sh", "-c",
          "trap '' HUP INT; exec " MOVRA_SIM_PROGRAM
          " -- sh -c 'kill -HUP 0; kill -INT 0; sleep 6; movra com.varn.tul / SERVERSTAT'" },
        environment);
    QVERIFY(program.waitForEnd());
    QCOMPARE(program.out, QByteArray("0\n"));
    QCOMPARE(program.status, 0);
}

void tst_Command::aKilledSimulatorLeavesNoFiles()
{
    Program program = start({ "--", "sh", "-c",
                              "movra com.varn.tul / FILE SAVE night; echo "
                              "$DBUS_SESSION_BUS_ADDRESS; exec sleep 60" });
    QVERIFY(program.waitForLines(1));
    const QByteArray path = program.out.split('=').at(1).split(',').first();
    const QString socket = QFile::decodeName(QByteArray::fromPercentEncoding(path));
    QVERIFY(QFileInfo::exists(socket));
    program.send(SIGKILL);
    // The bus removes its socket, and the service removes the directory.
    QTRY_COMPARE_WITH_TIMEOUT(leftovers(), QStringList(), patienceMs);
}

QTEST_GUILESS_MAIN(tst_Command)
#include "tst_command.moc"
