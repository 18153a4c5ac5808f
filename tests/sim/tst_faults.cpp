// SPDX-License-Identifier: MIT
// Faults: their effect on movra and other clients, and that other calls are answered.
#include "tests/sim/simrun.h"

#include <QDBusConnection>
#include <QDBusVariant>
#include <QElapsedTimer>
#include <QTest>

namespace
{

const QString port = text(":config:data:ftp:port:");

QString refusalBy(const char *sentence)
{
    return text("varn.pim.Error.Refused: ") + text(sentence);
}

} // namespace

class tst_Faults : public SimTest
{
    Q_OBJECT

private Q_SLOTS:
    void movraPrints_data();
    void movraPrints();
    void aRefusedCallIsNotCarriedOut();
    void theWrongTypeIsADouble();
    void aDelayedCallDelaysNoOther();
    void aDelayedCallIsNotCarriedOutAtOnce();
    void aDelayedCallIsCarriedOutLater();
    void delayedCallsKeepTheirOrder();
    void aSilentCallDelaysNoOther();
    void aSimulatorThatVanishesSendsNothing();
    void theLastFaultOfAMemberCounts_data();
    void theLastFaultOfAMemberCounts();
    void onlyOneCallFails();
    void onlyCallsThatNameTheItemFail();
    void otherInterfacesHaveNoFaults();

private:
    /// Restarts the simulator with these faults.
    bool startWith(const QStringList &faults)
    {
        QStringList options;
        for (const QString &fault : faults) {
            options += { text("--fault"), fault };
        }
        return stop() && start(options);
    }
};

void tst_Faults::movraPrints_data()
{
    QTest::addColumn<QString>("fault");
    QTest::addColumn<QStringList>("request");
    QTest::addColumn<QByteArray>("out");
    QTest::addColumn<int>("status");
    const auto row = [](const char *fault, const QStringList &request, const char *out,
                        int status) {
        QTest::newRow(fault) << text(fault) << request << QByteArray(out) << status;
    };
    row("GetValue=delay:50", { text("GET"), port }, "21\n", 0);
    row("GetValue=refuse", { text("GET"), port }, "Reply Not Valid   err=\n", 0);
    row("DoAction=refuse:not today", { text("ACTION"), text(":action:data:ftp:ping:"), text("1") },
        "Reply Not Valid     err=\n", 0);
    row("DBusServerStatus=wrong-type", { text("SERVERSTAT") }, "Reply Not Valid     err=\n", 0);
    row("ListConfigIds=wrong-type", { text("LIST"), text("CONFIGS") },
        "Error While Parsing Command -- use -h for help   err:3\n", 3);
    row("DbgLogGetIds=refuse", { text("DBG"), text("GET_IDS") }, "DBG GET_IDS  ERROR  err=\n", 0);
    row("*=refuse", { text("SET"), port, text("22") }, "", 0);
}

void tst_Faults::movraPrints()
{
    QFETCH(QString, fault);
    QFETCH(QStringList, request);
    QFETCH(QByteArray, out);
    QFETCH(int, status);
    QVERIFY(startWith({ fault }));
    QProcess movra;
    movra.start(text(MOVRA_PROGRAM), QStringList { text("com.varn.tul"), text("/") } + request);
    QVERIFY(movra.waitForFinished(patienceMs));
    QCOMPARE(movra.readAllStandardOutput(), out);
    QCOMPARE(movra.readAllStandardError(), QByteArray());
    QCOMPARE(movra.exitCode(), status);
}

void tst_Faults::aRefusedCallIsNotCarriedOut()
{
    QVERIFY(startWith({ text("SetValue=refuse:a: b = c") }));
    QCOMPARE(answerTo(service->SetValue(port, QDBusVariant(text("22")))), refusalBy("a: b = c"));
    QCOMPARE(answerTo(service->GetValue(port)), text("v <21>"));
}

void tst_Faults::theWrongTypeIsADouble()
{
    QVERIFY(startWith({ text("*=wrong-type") }));
    QCOMPARE(answerTo(service->GetValue(port)),
             text("org.freedesktop.DBus.Error.InvalidSignature: Unexpected reply signature: got "
                  "\"d\", expected \"v\""));
    QCOMPARE(answerTo(service->StartConfigNotify()), text("d 1.5"));
}

void tst_Faults::aDelayedCallDelaysNoOther()
{
    QVERIFY(startWith({ text("GetValue=delay:3600000") }));
    const QDBusPendingCall delayed = service->GetValue(port);
    QCOMPARE(answerTo(service->GetStatus(port)), text("i 0"));
    QVERIFY(!delayed.isFinished());
    QVERIFY(stop());
    QVERIFY(answerTo(delayed).startsWith(text("org.freedesktop.DBus.Error.NoReply: ")));
}

void tst_Faults::aDelayedCallIsNotCarriedOutAtOnce()
{
    QVERIFY(startWith({ text("SetValue=delay:3600000") }));
    service->SetValue(port, QDBusVariant(text("22")));
    QCOMPARE(answerTo(service->GetValue(port)), text("v <21>"));
}

void tst_Faults::aDelayedCallIsCarriedOutLater()
{
    QVERIFY(startWith({ text("SetValue=delay:200") }));
    QElapsedTimer clock;
    clock.start();
    QCOMPARE(answerTo(service->SetValue(port, QDBusVariant(text("22")))), QString());
    QVERIFY(clock.elapsed() >= 200);
    QCOMPARE(answerTo(service->GetValue(port)), text("v <22>"));
}

void tst_Faults::delayedCallsKeepTheirOrder()
{
    QVERIFY(startWith({ text("*=delay:20") }));
    for (const char *value : { "1", "2", "3", "4" }) {
        service->SetValue(port, QDBusVariant(text(value)));
    }
    QCOMPARE(answerTo(service->GetValue(port)), text("v <4>"));
}

void tst_Faults::aSilentCallDelaysNoOther()
{
    QVERIFY(startWith({ text("SetValue=silence") }));
    const QDBusPendingCall silent = service->SetValue(port, QDBusVariant(text("22")));
    QCOMPARE(answerTo(service->GetValue(port)), text("v <21>"));
    QVERIFY(!silent.isFinished());
    QVERIFY(stop());
    QVERIFY(answerTo(silent).startsWith(text("org.freedesktop.DBus.Error.NoReply: ")));
}

void tst_Faults::aSimulatorThatVanishesSendsNothing()
{
    QVERIFY(startWith({ text("GetValue=vanish") }));
    // The closing signal of the earlier simulator arrives first.
    QCOMPARE(takeHeard(), QStringList { text("SigDBusServerClosing movra-sim is closing") });
    const QDBusPendingCall fatal = service->GetValue(port);
    const QDBusPendingCall late = service->GetStatus(port);
    QVERIFY(answerTo(fatal).startsWith(text("org.freedesktop.DBus.Error.NoReply: ")));
    QVERIFY(!answerTo(late).startsWith(text("i ")));
    QVERIFY(simulator->waitForFinished(patienceMs));
    QCOMPARE(simulator->exitStatus(), QProcess::NormalExit);
    QCOMPARE(simulator->exitCode(), 0);
    QCOMPARE(simulator->readAllStandardError(), QByteArray());
    // The signals of a new service arrive after all signals of the old one.
    QVERIFY(start());
    QCOMPARE(takeHeard(), QStringList());
}

void tst_Faults::theLastFaultOfAMemberCounts_data()
{
    QTest::addColumn<QStringList>("faults");
    QTest::addColumn<QString>("answer");
    QTest::newRow("twice the same member")
        << QStringList { text("GetValue=silence"), text("GetValue=refuse:b") } << refusalBy("b");
    QTest::newRow("twice every member")
        << QStringList { text("*=silence"), text("*=refuse:b") } << refusalBy("b");
    QTest::newRow("the member before every member")
        << QStringList { text("GetValue=refuse:a"), text("*=silence") } << refusalBy("a");
    QTest::newRow("the member after every member")
        << QStringList { text("*=silence"), text("GetValue=refuse:a") } << refusalBy("a");
    QTest::newRow("another member")
        << QStringList { text("GetValueStatus=silence") } << text("v <21>");
    QTest::newRow("a number without a call")
        << QStringList { text("GetValue=refuse:a@b@0") } << refusalBy("a@b@0");
    QTest::newRow("a chosen error") << QStringList { text("GetValue=error:com.varn.Locked") }
                                    << text("com.varn.Locked: This call is refused on demand.");
    QTest::newRow("a chosen error with a sentence")
        << QStringList { text("GetValue=error:com.varn.Locked:a: b") }
        << text("com.varn.Locked: a: b");
    QTest::newRow("the item before the member")
        << QStringList { text("GetValue(:config:data:ftp:port:)=refuse:a"),
                         text("GetValue=silence") }
        << refusalBy("a");
    QTest::newRow("another item") << QStringList { text("GetValue(:config:voip:jitter:)=silence") }
                                  << text("v <21>");
    QTest::newRow("an item of every member")
        << QStringList { text("*(:config:data:ftp:port:)=refuse:a"), text("*=silence") }
        << refusalBy("a");
    QTest::newRow("the first call before all")
        << QStringList { text("GetValue=refuse:a@1"), text("GetValue=silence") } << refusalBy("a");
    QTest::newRow("no sentence") << QStringList { text("GetValue=refuse:") }
                                 << refusalBy("This call is refused on demand.");
}

void tst_Faults::theLastFaultOfAMemberCounts()
{
    QFETCH(QStringList, faults);
    QFETCH(QString, answer);
    QVERIFY(startWith(faults));
    QCOMPARE(answerTo(service->GetValue(port)), answer);
}

void tst_Faults::onlyOneCallFails()
{
    QVERIFY(startWith({ text("GetValue=refuse:third@3"),
                        text("GetValue(:config:voip:jitter:)=refuse:second of it@2") }));
    const QString jitter = text(":config:voip:jitter:");
    QCOMPARE(answerTo(service->GetValue(port)), text("v <21>"));
    QCOMPARE(answerTo(service->GetValue(jitter)), text("v <2.5>"));
    QCOMPARE(answerTo(service->GetStatus(port)), text("i 0"));
    QCOMPARE(answerTo(service->GetValue(port)), refusalBy("third"));
    QCOMPARE(answerTo(service->GetValue(QStringList { port, jitter })), refusalBy("second of it"));
    QCOMPARE(answerTo(service->GetValue(jitter)), text("v <2.5>"));
}

void tst_Faults::onlyCallsThatNameTheItemFail()
{
    QVERIFY(startWith({ text("SetValue(:config:data:ftp:port:)=refuse:no") }));
    const QString jitter = text(":config:voip:jitter:");
    QCOMPARE(answerTo(service->SetValue(jitter, QDBusVariant(text("1")))), QString());
    QCOMPARE(answerTo(service->SetValue(port, QDBusVariant(text("1")))), refusalBy("no"));
    QCOMPARE(answerTo(service->SetValue(
                 QList<IdValueStruct> { { jitter, text("2") }, { port, text("2") } })),
             refusalBy("no"));
    QCOMPARE(answerTo(service->GetValue(QStringList { port, jitter })),
             text("a(sv) [(':config:data:ftp:port:', <21>), (':config:voip:jitter:', <1>)]"));
}

void tst_Faults::otherInterfacesHaveNoFaults()
{
    QVERIFY(startWith({ text("*=silence") }));
    const QDBusMessage ping = QDBusMessage::createMethodCall(
        text("com.varn.tul"), text("/"), text("org.freedesktop.DBus.Peer"), text("Ping"));
    QCOMPARE(answerTo(QDBusConnection::sessionBus().asyncCall(ping)), QString());
    const QDBusMessage unknown = QDBusMessage::createMethodCall(text("com.varn.tul"), text("/"),
                                                                text("varn.pim"), text("Reboot"));
    QVERIFY(answerTo(QDBusConnection::sessionBus().asyncCall(unknown))
                .startsWith(text("org.freedesktop.DBus.Error.UnknownMethod: ")));
}

QTEST_GUILESS_MAIN(tst_Faults)
#include "tst_faults.moc"
