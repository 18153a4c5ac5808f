// SPDX-License-Identifier: MIT
// Replays what the fuzzer starts from: every file of the corpus, one row each.
#include "tests/fuzz/arguments.h"

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
    QTest::addColumn<QString>("file");
    for (const QString &name : names) {
        QTest::newRow(qPrintable(name)) << corpus.filePath(name);
    }
}

void tst_Corpus::replay()
{
    QFETCH(QString, file);
    QFile words(file);
    QVERIFY(words.open(QIODevice::ReadOnly));
    QCOMPARE(QByteArray::fromStdString(problemWith(words.readAll().toStdString())), QByteArray());
}

QTEST_APPLESS_MAIN(tst_Corpus)
#include "tst_corpus.moc"
