// SPDX-License-Identifier: MIT
// The notify list: which changes are announced, and when.
#include "tests/sim/simrun.h"

#include <QDBusVariant>
#include <QElapsedTimer>
#include <QTest>

#include <limits>
#include <vector>

namespace
{

const QString port = text(":config:data:ftp:port:");
const QString user = text(":config:data:ftp:userName:");
const QString percent = text(":result:data:ftp:percentTransfered:0:");

} // namespace

class tst_Notify : public SimTest
{
    Q_OBJECT

private Q_SLOTS:
    void changesAreAnnouncedAtOnceWithIntervalZero();
    void aTickAnnouncesTheLatestValuesInCatalogueOrder();
    void theDefaultIntervalIsOneSecond();
    void onlyListedItemsAreAnnounced();
    void theSameValueIsNoChange();
    void nothingIsAnnouncedBeforeTheStartOrAfterTheStop();
    void anotherStartChangesNothing();
    void configsAndResultsAreStartedSeparately();
    void deletedAndClearedItemsAreForgotten();
    void arraysAreJoinedByBlanks();
    void anUnknownIdDoesNotChangeTheList();
    void intervalsAreChecked_data();
    void intervalsAreChecked();

private:
    void set(const QString &id, const QVariant &value)
    {
        QCOMPARE(answerTo(service->SetValue(id, QDBusVariant(value))), QString());
    }
    void setIntervals(int milliseconds)
    {
        const QDBusVariant interval { QVariant(milliseconds) };
        QCOMPARE(answerTo(service->DBusServerCmd(text("SET_CFG_NOTIFY_TIMER"), interval)),
                 QString());
        QCOMPARE(answerTo(service->DBusServerCmd(text("SET_RES_NOTIFY_TIMER"), interval)),
                 QString());
    }
};

void tst_Notify::changesAreAnnouncedAtOnceWithIntervalZero()
{
    setIntervals(0);
    service->AddToNotifyList(QStringList { port, user });
    service->StartConfigNotify();
    set(port, text("22"));
    set(port, text("23"));
    set(user, text("anna"));
    QCOMPARE(takeHeard(),
             (QStringList { text("SigUpdate :config:data:ftp:port:=22"),
                            text("SigUpdate :config:data:ftp:port:=23"),
                            text("SigUpdate :config:data:ftp:userName:=anna") }));
    service->SetValue(QList<IdValueStruct> { { port, text("24") }, { user, text("berta") } });
    QCOMPARE(takeHeard(),
             (QStringList { text("SigUpdate :config:data:ftp:userName:=berta"),
                            text("SigUpdate :config:data:ftp:port:=24") }));
}

void tst_Notify::aTickAnnouncesTheLatestValuesInCatalogueOrder()
{
    setIntervals(3600000);
    service->AddToNotifyList(QStringList { port, user });
    service->StartConfigNotify();
    set(port, text("22"));
    set(port, text("23"));
    set(user, text("anna"));
    QCOMPARE(takeHeard(), QStringList());
    setIntervals(20);
    QVERIFY(hear(text("SigUpdate :config:data:ftp:port:=23")));
    QCOMPARE(takeHeard(),
             (QStringList { text("SigUpdate :config:data:ftp:userName:=anna"),
                            text("SigUpdate :config:data:ftp:port:=23") }));
}

void tst_Notify::theDefaultIntervalIsOneSecond()
{
    service->AddToNotifyList(port);
    QElapsedTimer elapsed;
    elapsed.start();
    service->StartConfigNotify();
    set(port, text("22"));
    QVERIFY(hear(text("SigUpdate :config:data:ftp:port:=22")));
    // The timer of the simulator may be early by a twentieth of its interval.
    QVERIFY2(elapsed.elapsed() >= 940, qPrintable(QString::number(elapsed.elapsed())));
}

void tst_Notify::onlyListedItemsAreAnnounced()
{
    setIntervals(0);
    service->AddToNotifyList(port);
    service->StartConfigNotify();
    set(user, text("anna"));
    set(port, text("22"));
    QCOMPARE(takeHeard(), QStringList { text("SigUpdate :config:data:ftp:port:=22") });
}

void tst_Notify::theSameValueIsNoChange()
{
    setIntervals(0);
    service->AddToNotifyList(port);
    service->StartConfigNotify();
    set(port, text("021"));
    set(port, 21);
    QCOMPARE(takeHeard(), QStringList());
}

void tst_Notify::nothingIsAnnouncedBeforeTheStartOrAfterTheStop()
{
    setIntervals(0);
    service->AddToNotifyList(port);
    set(port, text("22"));
    QCOMPARE(takeHeard(), QStringList());
    service->StartConfigNotify();
    QCOMPARE(takeHeard(), QStringList { text("SigUpdate :config:data:ftp:port:=22") });
    service->StopConfigNotify();
    set(port, text("23"));
    QCOMPARE(takeHeard(), QStringList());
    service->StartConfigNotify();
    QCOMPARE(takeHeard(), QStringList { text("SigUpdate :config:data:ftp:port:=23") });
}

void tst_Notify::anotherStartChangesNothing()
{
    setIntervals(0);
    service->AddToNotifyList(QStringList { port, port });
    service->StartConfigNotify();
    service->StartConfigNotify();
    set(port, text("22"));
    QCOMPARE(takeHeard(), QStringList { text("SigUpdate :config:data:ftp:port:=22") });
}

void tst_Notify::configsAndResultsAreStartedSeparately()
{
    setIntervals(0);
    service->AddToNotifyList(QStringList { port, percent });
    service->StartResultNotify();
    set(port, text("22"));
    service->DoAction(text(":action:data:ftp:download:"));
    QVERIFY(hear(text("SigTestComplete :action:data:ftp:download:")));
    QStringList expected { text("SigInfo :action:data:ftp:download: started") };
    for (const char *value : { "10", "20", "30", "40", "50", "60", "70", "80", "90", "100" }) {
        expected.append(text("SigUpdate :result:data:ftp:percentTransfered:0:=") + text(value));
    }
    expected.append(text("SigTestComplete :action:data:ftp:download:"));
    QCOMPARE(takeHeard(), expected);
    service->StopResultNotify();
    service->StartConfigNotify();
    QCOMPARE(takeHeard(), QStringList { text("SigUpdate :config:data:ftp:port:=22") });
}

void tst_Notify::deletedAndClearedItemsAreForgotten()
{
    setIntervals(0);
    const QString measure = text(":action:data:ftp:download:");
    service->AddToNotifyList(QStringList { user, port, percent });
    set(user, text("anna"));
    set(port, text("22"));
    service->DeleteFromNotifyList(QStringList { user, text("unknown") });
    service->StartConfigNotify();
    QCOMPARE(takeHeard(), QStringList { text("SigUpdate :config:data:ftp:port:=22") });
    service->ClearConfigNotifyList();
    set(port, text("23"));
    QCOMPARE(takeHeard(), QStringList());
    // The results are still on the list.
    service->StartResultNotify();
    service->DoAction(measure);
    QVERIFY(hear(text("SigUpdate :result:data:ftp:percentTransfered:0:=100")));
    QVERIFY(hear(text("SigTestComplete :action:data:ftp:download:")));
    takeHeard();
    service->ClearResultNotifyList();
    service->DoAction(measure);
    QVERIFY(hear(text("SigTestComplete :action:data:ftp:download:")));
    QCOMPARE(takeHeard(),
             (QStringList { text("SigInfo :action:data:ftp:download: started"),
                            text("SigTestComplete :action:data:ftp:download:") }));
}

void tst_Notify::arraysAreJoinedByBlanks()
{
    setIntervals(0);
    service->AddToNotifyList(
        QStringList { text(":config:data:ifnames:"), text(":config:voip:delay:doubleARRAY:") });
    service->StartConfigNotify();
    set(text(":config:data:ifnames:"), QStringList { text("wifi"), text("eth") });
    set(text(":config:voip:delay:doubleARRAY:"),
        QVariant::fromValue(std::vector<double> { 1.1, -2 }));
    set(text(":config:voip:delay:doubleARRAY:"), QVariant::fromValue(std::vector<double> {}));
    QCOMPARE(takeHeard(),
             (QStringList { text("SigUpdate :config:data:ifnames:=wifi eth"),
                            text("SigUpdate :config:voip:delay:doubleARRAY:=1.1 -2"),
                            text("SigUpdate :config:voip:delay:doubleARRAY:=") }));
}

void tst_Notify::anUnknownIdDoesNotChangeTheList()
{
    setIntervals(0);
    QCOMPARE(answerTo(service->AddToNotifyList(QStringList { port, text("unknown") })),
             text("varn.pim.Error.UnknownId: There is no \"unknown\" here."));
    service->StartConfigNotify();
    set(port, text("22"));
    QCOMPARE(takeHeard(), QStringList());
}

void tst_Notify::intervalsAreChecked_data()
{
    QTest::addColumn<QString>("word");
    QTest::addColumn<QVariant>("value");
    QTest::addColumn<QString>("answer");
    const auto row = [](const char *name, const char *word, const QVariant &value,
                        const char *answer) {
        QTest::newRow(name) << text(word) << value << text(answer);
    };
    row("at once", "SET_CFG_NOTIFY_TIMER", 0, "");
    row("the longest interval", "SET_RES_NOTIFY_TIMER", 3600000, "");
    row("a negative interval", "SET_CFG_NOTIFY_TIMER", -1,
        "varn.pim.Error.BadValue: SET_CFG_NOTIFY_TIMER takes 0 to 3600000 milliseconds, not -1.");
    row("an interval above an hour", "SET_RES_NOTIFY_TIMER", 3600001,
        "varn.pim.Error.BadValue: SET_RES_NOTIFY_TIMER takes 0 to 3600000 milliseconds, not "
        "3600001.");
    row("the least number", "SET_RES_NOTIFY_TIMER", std::numeric_limits<int>::min(),
        "varn.pim.Error.BadValue: SET_RES_NOTIFY_TIMER takes 0 to 3600000 milliseconds, not "
        "-2147483648.");
    row("an interval as text", "SET_CFG_NOTIFY_TIMER", text("100"),
        "varn.pim.Error.BadValue: SET_CFG_NOTIFY_TIMER takes a number of milliseconds of D-Bus "
        "type "
        "\"i\".");
    row("an unsigned interval", "SET_CFG_NOTIFY_TIMER", 100U,
        "varn.pim.Error.BadValue: SET_CFG_NOTIFY_TIMER takes a number of milliseconds of D-Bus "
        "type "
        "\"i\".");
    row("another word", "set_cfg_notify_timer", 100,
        "varn.pim.Error.UnknownCommand: There is no command \"set_cfg_notify_timer\".");
    row("no word", "", 100, "varn.pim.Error.UnknownCommand: There is no command \"\".");
}

void tst_Notify::intervalsAreChecked()
{
    QFETCH(QString, word);
    QFETCH(QVariant, value);
    QFETCH(QString, answer);
    QCOMPARE(answerTo(service->DBusServerCmd(word, QDBusVariant(value))), answer);
}

QTEST_GUILESS_MAIN(tst_Notify)
#include "tst_notify.moc"
