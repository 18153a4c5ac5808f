// SPDX-License-Identifier: MIT
// The command table: its order, and how a word is looked up.
#include "app/commands.h"

#include <QByteArrayList>
#include <QTest>

class tst_Commands : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void wordsStandInOrder();
    void handlers_data();
    void handlers();
    void unknownWords_data();
    void unknownWords();
};

void tst_Commands::wordsStandInOrder()
{
    QByteArrayList words;
    for (const Command &command : commandTable) {
        words.append(command.word);
    }
    QCOMPARE(words,
             (QByteArrayList { "DBG", "SIG", "NOTIFY", "SET", "SETARRAY", "GET", "LIST", "FILE",
                               "ACTION", "SERVERSTAT", "SERVERCMD" }));
}

void tst_Commands::handlers_data()
{
    using Handler = int (Movra::*)(char **);
    QTest::addColumn<bool>("found");
    const auto row = [](const char *word, Handler handler) {
        const Command *command = findCommand(word);
        QTest::newRow(word) << (command != nullptr && command->handler == handler);
    };
    row("DBG", &Movra::dbgCommand);
    row("SIG", &Movra::sigCommand);
    row("NOTIFY", &Movra::notifyCommand);
    row("SET", &Movra::setCommand);
    row("SETARRAY", &Movra::setArrayCommand);
    row("GET", &Movra::getCommand);
    row("LIST", &Movra::listCommand);
    row("FILE", &Movra::fileCommand);
    row("ACTION", &Movra::actionCommand);
    row("SERVERSTAT", &Movra::serverStatCommand);
    row("SERVERCMD", &Movra::serverCmdCommand);
}

void tst_Commands::handlers()
{
    QFETCH(bool, found);
    QVERIFY(found);
}

void tst_Commands::unknownWords_data()
{
    QTest::addColumn<QByteArray>("word");
    QTest::newRow("lower case") << QByteArray("get");
    QTest::newRow("a beginning") << QByteArray("SERVER");
    QTest::newRow("a longer word") << QByteArray("ACTIONS");
    QTest::newRow("a blank behind") << QByteArray("ACTION ");
    QTest::newRow("a blank before") << QByteArray(" ACTION");
    QTest::newRow("the help switch") << QByteArray("-h");
    QTest::newRow("nothing") << QByteArray("");
    QTest::newRow("bytes above 0x7f") << QByteArray("ACTI\xc3\x93N");
}

void tst_Commands::unknownWords()
{
    QFETCH(QByteArray, word);
    QVERIFY(findCommand(word.toStdString()) == nullptr);
}

QTEST_APPLESS_MAIN(tst_Commands)
#include "tst_commands.moc"
