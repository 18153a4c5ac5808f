// SPDX-License-Identifier: MIT
// Every request against random answers. Handlers are called in this process, so that there is no
// half second.
#include "tests/hostile/qtwarnings.h"
#include "tests/hostile/randomanswers.h"
#include "tests/hostile/requests.h"
#include "tests/support/patience.h"

#include <QDir>
#include <QTest>

#include <memory>

class tst_Replies : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void initTestCase();
    void randomReplies_data() { addRequests(); }
    void randomReplies() { attack(Answers::Replies); }
    void everyReplyTwice_data() { addRequests(); }
    void everyReplyTwice() { attack(Answers::RepliesSentTwice); }
    void randomErrors_data() { addRequests(); }
    void randomErrors() { attack(Answers::Errors); }
    void cleanupTestCase();

private:
    static void addRequests();
    /// Answers the row at random.
    void attack(Answers answers);
    /// Makes the request and checks its outcome; the client accepts the reply or not.
    void check(const CommandForm &request, bool taken, const QByteArray &reply);

    std::unique_ptr<FakeService> service;
    std::unique_ptr<OpenMovra> movra;
    int openFiles = 0;
};

namespace
{

int countOpenFiles()
{
    return QDir(QStringLiteral("/proc/self/fd")).entryList(QDir::Files | QDir::System).size();
}

} // namespace

void tst_Replies::initTestCase()
{
    showQtWarnings();
    service = std::make_unique<FakeService>();
    movra = std::make_unique<OpenMovra>();
    QVERIFY(movra->connectToService("com.varn.tul", "/"));
    openFiles = countOpenFiles();
    QVERIFY(openFiles > 0);
}

void tst_Replies::addRequests()
{
    QTest::addColumn<int>("index");
    int index = 0;
    for (const CommandForm &request : requests()) {
        QTest::addRow("%s %s", request.name, request.words.last().constData()) << index++;
    }
}

void tst_Replies::check(const CommandForm &request, bool taken, const QByteArray &reply)
{
    const QByteArray fault = faultOf(request, callHandler(*movra, requestOf(request)), taken);
    QVERIFY2(fault.isEmpty(), QByteArray(fault + " after " + reply.left(2000)).constData());
    // Some forms do not wait for the reply. This call must not get the next answer.
    QCOMPARE(service->waitForCalls(1).size(), 1);
}

void tst_Replies::attack(Answers answers)
{
    QFETCH(int, index);
    const CommandForm &request = requests().at(static_cast<std::size_t>(index));
    answerAtRandom(*service, request.member, request.signature, answers,
                   [&](bool taken, const QByteArray &answer) { check(request, taken, answer); });
}

void tst_Replies::cleanupTestCase()
{
    // Files of replies are closed when the replies are destroyed, which another thread may do.
    // The first count may include a file that was open only while the client connected.
    QTRY_VERIFY_WITH_TIMEOUT(countOpenFiles() <= openFiles, patienceMs);
}

QTEST_GUILESS_MAIN(tst_Replies)
#include "tst_replies.moc"
