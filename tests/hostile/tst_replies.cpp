// SPDX-License-Identifier: MIT
// Every request against a service that lies. Handlers are called in this process, so that there is
// no half second: MOVRA_HOSTILE_RUNS replies for each request (200 unless set), from the seed
// MOVRA_HOSTILE_SEED (1 unless set).
#include "app/messagefilter.h"
#include "tests/hostile/randomreply.h"
#include "tests/hostile/requests.h"
#include "tests/support/fakeservice.h"
#include "tests/support/setting.h"

#include <QDir>
#include <QTest>

#include <memory>

class tst_Replies : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void initTestCase();
    void randomReplies_data() { addRequests(); }
    void randomReplies();
    void everyReplyTwice_data() { addRequests(); }
    void everyReplyTwice();
    void randomErrors_data() { addRequests(); }
    void randomErrors();
    void cleanupTestCase();

private:
    static void addRequests();
    /// Makes the request and compares what must hold; the reply was taken or it was not.
    void check(const CommandForm &request, bool taken, const QByteArray &reply);

    std::unique_ptr<FakeService> service;
    std::unique_ptr<OpenMovra> movra;
    int runs = setting("MOVRA_HOSTILE_RUNS", 200);
    unsigned seed = static_cast<unsigned>(setting("MOVRA_HOSTILE_SEED", 1));
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
    installMessageFilter();
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
    const QByteArray fault = faultOf(request, make(request, *movra), taken);
    QVERIFY2(fault.isEmpty(), QByteArray(fault + " after " + reply.left(2000)).constData());
    // Nobody waits for some replies: the next answer is not for this call.
    QCOMPARE(service->waitForCalls(1).size(), 1);
}

void tst_Replies::randomReplies()
{
    QFETCH(int, index);
    const CommandForm &request = requests().at(static_cast<std::size_t>(index));
    // Each row from the seed anew, so that one row alone replays what it did among others.
    RandomReplies replies(seed);
    for (int run = 0; run < runs && !QTest::currentTestFailed(); ++run) {
        const RandomReply reply = replies.next(request.signature);
        service->answer(request.member, reply.text);
        check(request, reply.signature.startsWith(request.signature), reply.text);
    }
}

void tst_Replies::everyReplyTwice()
{
    QFETCH(int, index);
    const CommandForm &request = requests().at(static_cast<std::size_t>(index));
    RandomReplies replies(seed);
    for (int run = 0; run < runs / 10 && !QTest::currentTestFailed(); ++run) {
        const RandomReply reply = replies.next(request.signature);
        service->answerTwice(request.member, reply.text);
        check(request, reply.signature.startsWith(request.signature), reply.text);
    }
}

void tst_Replies::randomErrors()
{
    QFETCH(int, index);
    const CommandForm &request = requests().at(static_cast<std::size_t>(index));
    RandomReplies replies(seed);
    for (int run = 0; run < runs / 4 && !QTest::currentTestFailed(); ++run) {
        // Honest errors carry one string.
        const RandomReply reply = replies.next("s");
        const QByteArray name = replies.errorName();
        service->refuseWith(request.member, name, reply.text);
        check(request, false, name + ' ' + reply.text);
    }
}

void tst_Replies::cleanupTestCase()
{
    // Files that came with replies are closed when the replies go, on another thread, too.
    QTRY_COMPARE(countOpenFiles(), openFiles);
}

QTEST_GUILESS_MAIN(tst_Replies)
#include "tst_replies.moc"
