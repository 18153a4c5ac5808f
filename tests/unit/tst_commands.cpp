// SPDX-License-Identifier: MIT
// The command table: its words in order, and words that it does not have.
#include "app/commands.h"
#include "tests/support/commandforms.h"

#include <QTest>

class tst_Commands : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void words();
    void onlyTheMonitorListens();
    void unknownWords_data();
    void unknownWords();
};

void tst_Commands::words()
{
    QByteArrayList words;
    for (const Command &command : commandTable) {
        words.append(command.word);
        QVERIFY(findCommand(command.word)->handler == command.handler);
    }
    QCOMPARE(words, commandWords());
}

void tst_Commands::onlyTheMonitorListens()
{
    for (const Command &command : commandTable) {
        QCOMPARE(command.listens, QByteArray(command.word) == "SIG");
    }
}

void tst_Commands::unknownWords_data()
{
    QTest::addColumn<QByteArray>("word");
    QTest::newRow("lower case") << QByteArray("get");
    QTest::newRow("a beginning") << QByteArray("SERVER");
    QTest::newRow("a longer word") << QByteArray("ACTIONS");
    QTest::newRow("a blank after") << QByteArray("ACTION ");
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
