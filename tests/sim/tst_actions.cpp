// SPDX-License-Identifier: MIT
// Actions: their start, the result that they drive, and their end.
#include "tests/sim/simrun.h"

#include <QTest>

namespace
{

constexpr const char *ownCatalog = R"({
  "configs": [],
  "results": [{"id": ":result:a:level:", "type": "double", "value": 7},
              {"id": ":result:a:count:", "type": "uint64", "value": 7}],
  "actions": [
    {"id": ":action:a:all:", "reply": "%1 and %1",
     "ends": [{"signal": "SigAlarm", "message": "one"}, {"signal": "SigError", "message": "two"},
              {"signal": "SigInfo", "message": "three"}, {"signal": "SigTestComplete", "message": "four"},
              {"signal": "SigUpdate", "message": "five"},
              {"signal": "SigTestCompleteWithData", "message": "six", "type": "double[]", "data": [0.5, -1]},
              {"signal": "SigTestCompleteWithData", "message": "", "type": "uint32[]", "data": []}]},
    {"id": ":action:a:silent:", "ends": []},
    {"id": ":action:a:plain:"},
    {"id": ":action:a:long:", "duration": 3600000, "drive": ":result:a:level:"},
    {"id": ":action:a:quick:", "drive": ":result:a:count:"}],
  "logs": [],
  "debugLogs": []
})";

} // namespace

class tst_Actions : public SimTest
{
    Q_OBJECT

private Q_SLOTS:
    void theDownloadDrivesItsResult();
    void theMeasurementsEndWithData();
    void theLineDropRaisesAnAlarm();
    void valuesAreAnnouncedAndAnswered();
    void anUnknownActionIsRefused();
    void everyEndIsAnnouncedInOrder();
    void aRunningActionIsNotStartedAgain();
    void anActionWithoutDurationEndsAtOnce();

private:
    bool restartWithOwnCatalog()
    {
        return writeFile(text("catalog.json"), ownCatalog) && stop()
            && start({ text("--catalog"), pathOf(text("catalog.json")) });
    }
};

void tst_Actions::theDownloadDrivesItsResult()
{
    const QString download = text(":action:data:ftp:download:");
    const QString percent = text(":result:data:ftp:percentTransfered:0:");
    QCOMPARE(answerTo(service->DoAction(download)), QString());
    QVERIFY(hear(text("SigTestComplete :action:data:ftp:download:")));
    QCOMPARE(answerTo(service->DBusServerStatus()), text("i 0"));
    QCOMPARE(answerTo(service->GetValue(percent)), text("v <100>"));
    // The next start sets it back. The value lasts 30 ms, too short to be asked for.
    service->DBusServerCmd(text("SET_RES_NOTIFY_TIMER"), QDBusVariant(0));
    service->AddToNotifyList(percent);
    service->StartResultNotify();
    QCOMPARE(answerTo(service->DoAction(download, text("a.bin"))), text("s 'downloading a.bin'"));
    QVERIFY(hear(text("SigUpdate :result:data:ftp:percentTransfered:0:=0")));
}

void tst_Actions::theMeasurementsEndWithData()
{
    service->DoAction(text(":action:voip:delay:measure:"));
    QVERIFY(hear(text("SigTestCompleteWithData delays in ms ad 1.5 2.25 3")));
    service->DoAction(text(":action:data:threshold:scan:"));
    QVERIFY(hear(text("SigTestCompleteWithData scan done au 10 21 4294967295")));
}

void tst_Actions::theLineDropRaisesAnAlarm()
{
    service->DoAction(text(":action:xdsl:line:drop:"));
    QVERIFY(hear(text("SigTestComplete :action:xdsl:line:drop:")));
    QCOMPARE(takeHeard(),
             (QStringList { text("SigInfo :action:xdsl:line:drop: started"),
                            text("SigAlarm line down"), text("SigError no carrier"),
                            text("SigTestComplete :action:xdsl:line:drop:") }));
}

void tst_Actions::valuesAreAnnouncedAndAnswered()
{
    QCOMPARE(answerTo(service->DoAction(text(":action:data:ftp:ping:"), text("%1"))),
             text("s 'pong %1'"));
    QVERIFY(hear(text("SigTestComplete :action:data:ftp:ping:")));
    QCOMPARE(answerTo(service->DoAction(text(":action:data:ftp:ping:"), {})), text("s 'pong '"));
    QVERIFY(hear(text("SigInfo :action:data:ftp:ping: started with ")));
    QCOMPARE(heard.at(0), text("SigInfo :action:data:ftp:ping: started with %1"));
}

void tst_Actions::anUnknownActionIsRefused()
{
    const QString refusal = text("varn.pim.Error.UnknownId: There is no \":action:none:\" here.");
    QCOMPARE(answerTo(service->DoAction(text(":action:none:"))), refusal);
    QCOMPARE(answerTo(service->DoAction(text(":action:none:"), text("5"))), refusal);
    QCOMPARE(answerTo(service->DoAction(text(":config:data:ftp:port:"))),
             text("varn.pim.Error.UnknownId: There is no \":config:data:ftp:port:\" here."));
    QCOMPARE(takeHeard(), QStringList());
}

void tst_Actions::everyEndIsAnnouncedInOrder()
{
    QVERIFY(restartWithOwnCatalog());
    QCOMPARE(answerTo(service->DoAction(text(":action:a:all:"), text("x"))), text("s 'x and %1'"));
    QVERIFY(hear(text("SigTestCompleteWithData  au ")));
    QCOMPARE(
        takeHeard(),
        (QStringList { text("SigDBusServerClosing movra-sim is closing"),
                       text("SigInfo :action:a:all: started with x"), text("SigAlarm one"),
                       text("SigError two"), text("SigInfo three"), text("SigTestComplete four"),
                       text("SigUpdate five"), text("SigTestCompleteWithData six ad 0.5 -1"),
                       text("SigTestCompleteWithData  au ") }));
    QCOMPARE(answerTo(service->DoAction(text(":action:a:silent:"), {})), text("s 'started'"));
    service->DoAction(text(":action:a:plain:"));
    QVERIFY(hear(text("SigTestComplete :action:a:plain:")));
    QCOMPARE(takeHeard(),
             (QStringList { text("SigInfo :action:a:silent: started with "),
                            text("SigInfo :action:a:plain: started"),
                            text("SigTestComplete :action:a:plain:") }));
}

void tst_Actions::aRunningActionIsNotStartedAgain()
{
    QVERIFY(restartWithOwnCatalog());
    takeHeard();
    QCOMPARE(answerTo(service->DoAction(text(":action:a:long:"))), QString());
    const QString refusal = text("varn.pim.Error.Busy: \":action:a:long:\" is running already.");
    QCOMPARE(answerTo(service->DoAction(text(":action:a:long:"))), refusal);
    QCOMPARE(answerTo(service->DoAction(text(":action:a:long:"), text("5"))), refusal);
    QCOMPARE(answerTo(service->DBusServerStatus()), text("i 1"));
    QCOMPARE(answerTo(service->GetValue(text(":result:a:level:"))), text("v <0>"));
    QCOMPARE(takeHeard(), QStringList { text("SigInfo :action:a:long: started") });
}

void tst_Actions::anActionWithoutDurationEndsAtOnce()
{
    QVERIFY(restartWithOwnCatalog());
    service->AddToNotifyList(text(":result:a:count:"));
    service->DBusServerCmd(text("SET_RES_NOTIFY_TIMER"), QDBusVariant(QVariant(0)));
    service->StartResultNotify();
    takeHeard();
    service->DoAction(text(":action:a:quick:"));
    QVERIFY(hear(text("SigTestComplete :action:a:quick:")));
    QCOMPARE(
        takeHeard(),
        (QStringList { text("SigInfo :action:a:quick: started"),
                       text("SigUpdate :result:a:count:=0"), text("SigUpdate :result:a:count:=100"),
                       text("SigTestComplete :action:a:quick:") }));
    QCOMPARE(answerTo(service->DBusServerStatus()), text("i 0"));
}

QTEST_GUILESS_MAIN(tst_Actions)
#include "tst_actions.moc"
