// SPDX-License-Identifier: MIT
// Runs every file of the corpus, from which the fuzzer starts, and every command form.
#include "tests/fuzz/arguments.h"
#include "tests/support/commandforms.h"

#include <QDir>
#include <QTest>

class tst_Corpus : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void initTestCase();
    void replay_data();
    void replay();

private:
    const QDir corpus { QStringLiteral(MOVRA_CORPUS) };
    const QStringList names = corpus.entryList(QDir::Files);
};

void tst_Corpus::initTestCase()
{
    QVERIFY(!names.isEmpty());
}

void tst_Corpus::replay_data()
{
    QTest::addColumn<QByteArray>("words");
    for (const QString &name : names) {
        QFile file(corpus.filePath(name));
        QVERIFY(file.open(QIODevice::ReadOnly));
        QTest::newRow(qPrintable(name)) << file.readAll();
    }
    for (const CommandForm &form : commandForms()) {
        QTest::newRow(form.name) << requestOf(form).join('\n');
    }
}

void tst_Corpus::replay()
{
    QFETCH(QByteArray, words);
    QCOMPARE(problemWith(words), QByteArray());
}

QTEST_APPLESS_MAIN(tst_Corpus)
#include "tst_corpus.moc"
