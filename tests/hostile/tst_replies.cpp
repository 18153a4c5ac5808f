// SPDX-License-Identifier: MIT
// Every command that waits, against replies of random types and values. Handlers are called in this
// process, so that there is no half second: MOVRA_HOSTILE_RUNS replies for each command (200 unless
// set), from the seed MOVRA_HOSTILE_SEED (1 unless set).
#include "app/messagefilter.h"
#include "tests/hostile/randomreply.h"
#include "tests/support/capture.h"
#include "tests/support/fakeservice.h"
#include "tests/support/openmovra.h"

#include <QTest>

#include <memory>
#include <vector>

using Handler = int (Movra::*)(char **);
Q_DECLARE_METATYPE(Handler)

class tst_Replies : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void initTestCase();
    void randomReplies_data();
    void randomReplies();

private:
    std::unique_ptr<FakeService> service;
    std::unique_ptr<OpenMovra> movra;
};

void tst_Replies::initTestCase()
{
    installMessageFilter();
    service = std::make_unique<FakeService>();
    movra = std::make_unique<OpenMovra>();
    QVERIFY(movra->connectToService("com.varn.tul", "/"));
}

void tst_Replies::randomReplies_data()
{
    QTest::addColumn<Handler>("handler");
    QTest::addColumn<QByteArrayList>("arguments");
    QTest::addColumn<QByteArray>("member");
    QTest::addColumn<QByteArray>("expected"); ///< what a reply must begin with to be taken
    QTest::addColumn<QByteArray>("failure"); ///< what is printed if it does not
    QTest::addColumn<int>("failureStatus");

    const auto row = [](const char *name, Handler handler, const QByteArrayList &arguments,
                        const char *member, const char *expected, const char *failure,
                        int failureStatus) {
        QTest::newRow(name) << handler << arguments << QByteArray(member) << QByteArray(expected)
                            << QByteArray(failure) << failureStatus;
    };
    const char *const ofGet = "Reply Not Valid   err=\n";
    const char *const ofOthers = "Reply Not Valid     err=\n";
    row("GET", &Movra::getCommand, { ":x:" }, "GetValue", "v", ofGet, 0);
    row("GET of doubles", &Movra::getCommand, { ":doubleARRAY:" }, "GetValue", "v", ofGet, 0);
    row("GET of uint64", &Movra::getCommand, { ":uint64ARRAY:" }, "GetValue", "v", ofGet, 0);
    row("GET of int32", &Movra::getCommand, { ":int32ARRAY:" }, "GetValue", "v", ofGet, 0);
    row("GET STATUS", &Movra::getCommand, { "STATUS", ":x:" }, "GetStatus", "i", ofGet, 0);
    row("GET VAL_STAT", &Movra::getCommand, { "VAL_STAT", ":uint32ARRAY:" }, "GetValueStatus",
        "(svi)", ofGet, 0);
    row("LIST CONFIGS", &Movra::listCommand, { "CONFIGS" }, "ListConfigIds", "as", "", 3);
    row("LIST RESULTS", &Movra::listCommand, { "RESULTS" }, "ListResultIds", "as", "", 3);
    row("LIST ACTIONS", &Movra::listCommand, { "ACTIONS" }, "ListActionIds", "as", "", 3);
    row("LIST LOGS", &Movra::listCommand, { "LOGS" }, "LogGetIds", "s", "", 3);
    row("FILE SAVE", &Movra::fileCommand, { "SAVE", "x" }, "SaveConfig", "b", ofOthers, 0);
    row("FILE LOAD", &Movra::fileCommand, { "LOAD", "x" }, "LoadConfig", "b", ofOthers, 0);
    row("ACTION", &Movra::actionCommand, { "x" }, "DoAction", "", ofOthers, 0);
    row("ACTION with a value", &Movra::actionCommand, { "x", "y" }, "DoAction", "s", ofOthers, 0);
    row("SERVERSTAT", &Movra::serverStatCommand, {}, "DBusServerStatus", "i", ofOthers, 0);
    row("SERVERCMD", &Movra::serverCmdCommand, { "SET_RES_NOTIFY_TIMER", "1" }, "DBusServerCmd", "",
        ofOthers, 0);
    row("DBG", &Movra::dbgCommand, { "SET", "x" }, "DbgLogCmd", "", "DBG SET   ERROR     err=\n",
        0);
    row("DBG GET_IDS", &Movra::dbgCommand, { "GET_IDS" }, "DbgLogGetIds", "as",
        "DBG GET_IDS  ERROR  err=\n", 0);
}

void tst_Replies::randomReplies()
{
    QFETCH(Handler, handler);
    QFETCH(QByteArrayList, arguments);
    QFETCH(QByteArray, member);
    QFETCH(QByteArray, expected);
    QFETCH(QByteArray, failure);
    QFETCH(int, failureStatus);

    QByteArrayList words = QByteArrayList { "movra", "com.varn.tul", "/", "WORD" } + arguments;
    std::vector<char *> argv;
    argv.reserve(static_cast<std::size_t>(words.size()) + 2);
    for (QByteArray &word : words) {
        argv.push_back(word.data());
    }
    argv.insert(argv.end(), { nullptr, nullptr });

    const auto setting = [](const char *name, int usual) {
        return qEnvironmentVariableIsSet(name) ? qEnvironmentVariableIntValue(name) : usual;
    };
    RandomReplies replies(static_cast<unsigned>(setting("MOVRA_HOSTILE_SEED", 1)));
    for (int run = setting("MOVRA_HOSTILE_RUNS", 200); run > 0; --run) {
        const RandomReply reply = replies.next(expected);
        service->answer(member, reply.text);
        int status = -1;
        QByteArray complaints;
        const QByteArray printed = captureOutput([&] {
            complaints = captureErrors([&] { status = ((*movra).*handler)(argv.data()); });
        });
        const bool taken = reply.signature.startsWith(expected);
        const QByteArray about = reply.text.left(2000) + " -> " + printed.left(2000) + complaints;
        QVERIFY2(status == (taken ? 0 : failureStatus), about.constData());
        QVERIFY2(taken ? printed != failure || failure.isEmpty() : printed == failure,
                 about.constData());
        QVERIFY2(complaints.isEmpty(), about.constData());
    }
    service->takeCalls();
}

QTEST_GUILESS_MAIN(tst_Replies)
#include "tst_replies.moc"
