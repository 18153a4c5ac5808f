// SPDX-License-Identifier: MIT
// The logs without a bus: what they keep, which no client can ask for.
#include "sim/journal.h"

#include <QDBusConnection>
#include <QtTest>

namespace
{

const QString port = QStringLiteral(":config:data:ftp:port:");

} // namespace

class TestJournal : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void theFirstFieldChoosesTheLog();
    void theOldestEntriesMakeRoom();
    void aClearedLogStartsAnew();
    void anEntryIsOneShortLine();

private:
    // Of no bus: what is announced is lost.
    Announcer announcer { QDBusConnection(QStringLiteral("none")), QStringLiteral("/") };
    DebugLog debugLog { {}, StateFiles({}), announcer };
    QStringList names { QStringLiteral("config"), QStringLiteral("result") };
};

void TestJournal::theFirstFieldChoosesTheLog()
{
    Journal journal(names, debugLog, announcer);
    for (const char *id : { ":result:a:", "result", "::result::", ":other:", "", ":results:" }) {
        journal.record(LogLevel::Info, QString::fromLatin1(id), QStringLiteral("read"));
    }
    QCOMPARE(journal.logs().at(0).entries, QStringList());
    QCOMPARE(journal.logs().at(1).entries,
             (QStringList { QStringLiteral(":result:a: read"), QStringLiteral("result read"),
                            QStringLiteral("::result:: read") }));
}

void TestJournal::theOldestEntriesMakeRoom()
{
    Journal journal(names, debugLog, announcer);
    for (int count = 0; count < 1002; ++count) {
        journal.record(LogLevel::Info, port, QStringLiteral("set to %1").arg(count));
    }
    const QStringList &entries = journal.logs().at(0).entries;
    QCOMPARE(entries.size(), 1000);
    QCOMPARE(entries.first(), QStringLiteral(":config:data:ftp:port: set to 2"));
    QCOMPARE(entries.last(), QStringLiteral(":config:data:ftp:port: set to 1001"));
}

void TestJournal::aClearedLogStartsAnew()
{
    Journal journal(names, debugLog, announcer);
    journal.record(LogLevel::Info, port, QStringLiteral("read"));
    journal.record(LogLevel::Info, QStringLiteral(":result:a:"), QStringLiteral("read"));
    QVERIFY(!journal.clear(QStringLiteral("config")));
    QCOMPARE(journal.logs().at(0).entries, QStringList());
    QCOMPARE(journal.logs().at(1).entries.size(), 1);
    QVERIFY(journal.clear(QStringLiteral("none")));
}

void TestJournal::anEntryIsOneShortLine()
{
    Journal journal(names, debugLog, announcer);
    const QString longId = QStringLiteral(":config:a\nb:") + QString(300, QLatin1Char('x'));
    journal.record(LogLevel::Info, longId, QStringLiteral("read"));
    QCOMPARE(journal.logs().at(0).entries,
             QStringList { QStringLiteral(":config:a b:") + QString(188, QLatin1Char('x'))
                           + QStringLiteral("... read") });
}

QTEST_GUILESS_MAIN(TestJournal)
#include "tst_journal.moc"
