// SPDX-License-Identifier: MIT
// The timeline: items change and signals are sent by themselves, announced like any other change.
#include "tests/sim/simrun.h"
#include "tests/support/patience.h"

#include <QDBusVariant>
#include <QTest>

class tst_Timeline : public SimTest
{
    Q_OBJECT

private Q_SLOTS:
    void entriesOfOneTimeComeInCatalogueOrder();
    void repeatedChangesAreAnnounced();
    void aStatusChangesWithoutItsValue();
    void aChangedConfigCanBeSetAgain();
    void theTimeBeginsWithTheService();

private:
    bool startWith(const char *timeline)
    {
        const QByteArray catalog = R"({
            "configs": [{"id": ":config:a:", "type": "string", "value": "first", "status": 3}],
            "results": [{"id": ":result:a:", "type": "double[]", "value": [1]}],
            "actions": [], "logs": ["config", "result"], "debugLogs": [], "timeline": )"
            + QByteArray(timeline) + '}';
        return writeFile(text("catalog.json"), catalog) && stop()
            && start({ text("--catalog"), pathOf(text("catalog.json")) });
    }
    /// Announces each change of both items at once.
    void listen()
    {
        for (const char *timer : { "SET_CFG_NOTIFY_TIMER", "SET_RES_NOTIFY_TIMER" }) {
            service->DBusServerCmd(text(timer), QDBusVariant(QVariant(0)));
        }
        service->AddToNotifyList(QStringList { text(":config:a:"), text(":result:a:") });
        service->StartConfigNotify();
        service->StartResultNotify();
    }
};

void tst_Timeline::entriesOfOneTimeComeInCatalogueOrder()
{
    QVERIFY(startWith(R"([
        {"at": 1, "signal": "SigAlarm", "message": "four"},
        {"at": 0, "signal": "SigAlarm", "message": "one"},
        {"at": 0, "signal": "SigTestCompleteWithData", "message": "two", "type": "uint32[]", "data": [5]},
        {"at": 0, "signal": "SigInfo", "message": "three"}])"));
    QVERIFY(hear(text("SigAlarm four")));
    QCOMPARE(takeHeard(),
             (QStringList { text("SigDBusServerClosing movra-sim is closing"), text("SigAlarm one"),
                            text("SigTestCompleteWithData two au 5"), text("SigInfo three"),
                            text("SigAlarm four") }));
}

void tst_Timeline::repeatedChangesAreAnnounced()
{
    QVERIFY(startWith(R"([
        {"at": 0, "every": 40, "id": ":result:a:", "value": [2, 3]},
        {"at": 20, "every": 40, "id": ":result:a:", "value": []}])"));
    listen();
    for (int round = 0; round < 3; ++round) {
        QVERIFY(hear(text("SigUpdate :result:a:=2 3")));
        QVERIFY(hear(text("SigUpdate :result:a:=")));
        heard.clear();
    }
    service->LogStartNotify(text("result"));
    QVERIFY(hear(text("SigInfo log result: :result:a: changed to 2 3")));
}

void tst_Timeline::aStatusChangesWithoutItsValue()
{
    QVERIFY(startWith(R"([{"every": 10, "id": ":config:a:", "status": -5},
                          {"at": 5, "every": 10, "id": ":config:a:", "status": 7}])"));
    listen();
    QVERIFY(hear(text("SigUpdate :config:a:=first")));
    const QString answer = answerTo(service->GetValueStatus(text(":config:a:")));
    QVERIFY2(answer == text("(svi) (':config:a:', <'first'>, -5)")
                 || answer == text("(svi) (':config:a:', <'first'>, 7)"),
             qPrintable(answer));
    service->LogStartNotify(text("config"));
    QVERIFY(hear(text("SigInfo log config: :config:a: has status -5")));
    QVERIFY(hear(text("SigInfo log config: :config:a: has status 7")));
}

void tst_Timeline::aChangedConfigCanBeSetAgain()
{
    QVERIFY(startWith(R"([{"at": 0, "id": ":config:a:", "value": "second"}])"));
    QTRY_COMPARE_WITH_TIMEOUT(answerTo(service->GetValue(text(":config:a:"))), text("v <'second'>"),
                              patienceMs);
    service->SetValue(text(":config:a:"), QDBusVariant(text("third")));
    QCOMPARE(answerTo(service->GetValueStatus(text(":config:a:"))),
             text("(svi) (':config:a:', <'third'>, 3)"));
}

void tst_Timeline::theTimeBeginsWithTheService()
{
    QVERIFY(startWith(R"([{"at": 3600000, "id": ":config:a:", "value": "second"},
                          {"every": 3600000, "signal": "SigAlarm", "message": "late"},
                          {"at": 0, "signal": "SigAlarm", "message": "now"}])"));
    QVERIFY(hear(text("SigAlarm now")));
    QCOMPARE(
        takeHeard(),
        (QStringList { text("SigDBusServerClosing movra-sim is closing"), text("SigAlarm now") }));
    QCOMPARE(answerTo(service->GetValue(text(":config:a:"))), text("v <'first'>"));
}

QTEST_GUILESS_MAIN(tst_Timeline)
#include "tst_timeline.moc"
