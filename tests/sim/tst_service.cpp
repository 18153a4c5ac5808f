// SPDX-License-Identifier: MIT
// The service on the bus: it answers exactly the methods of the interface, and no call ends it.
#include "tests/sim/simrun.h"
#include "tests/support/patience.h"

#include <QDBusConnection>
#include <QDBusVariant>
#include <QFile>
#include <QRegularExpression>
#include <QTest>
#include <QXmlStreamReader>

#include <functional>

using Call = std::function<QDBusPendingCall(KorAppInterface &service)>;
Q_DECLARE_METATYPE(Call)

namespace
{

QDBusVariant boxed(const QVariant &value)
{
    return QDBusVariant(value);
}

QDBusMessage callOf(const char *interface, const QString &member, const QVariantList &arguments)
{
    QDBusMessage message =
        QDBusMessage::createMethodCall(text("com.varn.tul"), text("/"), text(interface), member);
    message.setArguments(arguments);
    return message;
}

QVariant exampleOf(const QString &signature)
{
    if (signature == text("as")) {
        return QStringList { text("none") };
    }
    if (signature == text("a(sv)")) {
        return QVariant::fromValue(QList<IdValueStruct> { { text("none"), text("x") } });
    }
    return signature == text("v") ? QVariant::fromValue(boxed(1)) : QVariant(text("none"));
}

} // namespace

class tst_Service : public SimTest
{
    Q_OBJECT

private Q_SLOTS:
    void everyMethodAnswers_data();
    void everyMethodAnswers();
    void everyMethodOfTheInterfaceExists();
    void introspectAnswersTheInterfaceFile();
    void otherCallsAreUnknown_data();
    void otherCallsAreUnknown();
    void aCallWithoutAnInterfaceIsAnswered();
    void aCallWithoutAReplyGetsNone();
    void largeAndDeepArgumentsAreRefused();
};

void tst_Service::everyMethodAnswers_data()
{
    QTest::addColumn<Call>("call");
    QTest::addColumn<QString>("answer");
    const auto row = [](const char *name, const Call &call, const char *answer) {
        QTest::newRow(name) << call << text(answer);
    };
    using Service = KorAppInterface;
    const QString port = text(":config:data:ftp:port:");
    const QString gain = text(":config:voip:gain:floatARRAY:");
    const QString jitter = text(":config:voip:jitter:");
    const QStringList both { port, gain };

    row(
        "AddToNotifyList as", [both](Service &s) { return s.AddToNotifyList(both); }, "");
    row(
        "AddToNotifyList s", [port](Service &s) { return s.AddToNotifyList(port); }, "");
    row(
        "ClearConfigNotifyList", [](Service &s) { return s.ClearConfigNotifyList(); }, "");
    row(
        "ClearResultNotifyList", [](Service &s) { return s.ClearResultNotifyList(); }, "");
    row(
        "DbgLogCmd ss", [](Service &s) { return s.DbgLogCmd(text("SAVE_STOP"), {}); }, "");
    row(
        "DbgLogGetIds", [](Service &s) { return s.DbgLogGetIds(); },
        "as ['LOG_DATA', 'LOG_VOIP', 'LOG_XDSL']");
    row(
        "DBusServerCmd sv",
        [](Service &s) { return s.DBusServerCmd(text("SET_CFG_NOTIFY_TIMER"), boxed(5)); }, "");
    row(
        "DBusServerStatus", [](Service &s) { return s.DBusServerStatus(); }, "i 0");
    row(
        "DeleteFromNotifyList as", [both](Service &s) { return s.DeleteFromNotifyList(both); }, "");
    row(
        "DeleteFromNotifyList s", [port](Service &s) { return s.DeleteFromNotifyList(port); }, "");
    row(
        "DoAction ss",
        [](Service &s) { return s.DoAction(text(":action:data:ftp:ping:"), text("42")); },
        "s 'pong 42'");
    row(
        "DoAction s", [](Service &s) { return s.DoAction(text(":action:data:ftp:ping:")); }, "");
    row(
        "GetStatus as",
        [port, jitter](Service &s) {
            return s.GetStatus(QStringList { port, jitter });
        },
        "ai [0, 1]");
    row(
        "GetStatus s", [jitter](Service &s) { return s.GetStatus(jitter); }, "i 1");
    row(
        "GetValue as", [both](Service &s) { return s.GetValue(both); },
        "a(sv) [(':config:data:ftp:port:', <21>), "
        "(':config:voip:gain:floatARRAY:', <[0.5, -0.25]>)]");
    row(
        "GetValue as of nothing", [](Service &s) { return s.GetValue(QStringList {}); },
        "a(sv) []");
    row(
        "GetValue s", [port](Service &s) { return s.GetValue(port); }, "v <21>");
    row(
        "GetValueStatus as",
        [port, jitter](Service &s) {
            return s.GetValueStatus(QStringList { port, jitter });
        },
        "a(svi) [(':config:data:ftp:port:', <21>, 0), (':config:voip:jitter:', <2.5>, 1)]");
    row(
        "GetValueStatus s", [jitter](Service &s) { return s.GetValueStatus(jitter); },
        "(svi) (':config:voip:jitter:', <2.5>, 1)");
    row(
        "ListActionIds", [](Service &s) { return s.ListActionIds(); },
        "as [':action:data:ftp:download:', ':action:data:ftp:ping:', "
        "':action:data:threshold:scan:', ':action:voip:delay:measure:', "
        "':action:xdsl:line:drop:']");
    row(
        "ListConfigIds", [](Service &s) { return s.ListConfigIds(); },
        "as [':config:data:ftp:userName:', ':config:data:ftp:port:', ':config:data:ftp:passive:', "
        "':config:data:ftp:retries:', ':config:data:ftp:limit:', ':config:data:ftp:budget:', "
        "':config:voip:jitter:', ':config:data:ifnames:', ':config:data:ifnames:stringARRAY:', "
        "':config:voip:delay:doubleARRAY:', ':config:voip:gain:floatARRAY:', "
        "':config:data:threshold:uint32ARRAY:', ':config:data:offset:int32ARRAY:', "
        "':config:data:quota:uint64ARRAY:', ':config:data:balance:int64ARRAY:', "
        "':config:xdsl:line:profile:']");
    row(
        "ListResultIds", [](Service &s) { return s.ListResultIds(); },
        "as [':result:data:ftp:percentTransfered:0:', ':result:data:ftp:bytes:0:', "
        "':result:data:ftp:server:', ':result:voip:call:active:', ':result:voip:call:loss:', "
        "':result:xdsl:line:rate:0:', ':result:xdsl:line:margin:doubleARRAY:']");
    row(
        "LoadConfig s", [](Service &s) { return s.LoadConfig(text("..")); },
        "varn.pim.Error.BadName: \"..\" cannot be the name of a file: it names a directory.");
    row(
        "LogClear s", [](Service &s) { return s.LogClear(text("config")); }, "");
    row(
        "LogGetIds", [](Service &s) { return s.LogGetIds(); }, "s 'config result action'");
    row(
        "LogStartNotify s", [](Service &s) { return s.LogStartNotify(text("action")); }, "");
    row(
        "LogStopNotify s", [](Service &s) { return s.LogStopNotify(text("result")); }, "");
    row(
        "SaveConfig s", [](Service &s) { return s.SaveConfig(text("night")); }, "b true");
    row(
        "SetValue a(sv)",
        [port](Service &s) {
            return s.SetValue(QList<IdValueStruct> { { port, text("22") } });
        },
        "");
    row(
        "SetValue sv", [port](Service &s) { return s.SetValue(port, boxed(text("22"))); }, "");
    row(
        "StartConfigNotify", [](Service &s) { return s.StartConfigNotify(); }, "");
    row(
        "StartResultNotify", [](Service &s) { return s.StartResultNotify(); }, "");
    row(
        "StopConfigNotify", [](Service &s) { return s.StopConfigNotify(); }, "");
    row(
        "StopResultNotify", [](Service &s) { return s.StopResultNotify(); }, "");

    row(
        "AddToNotifyList of an unknown id",
        [port](Service &s) {
            return s.AddToNotifyList(QStringList { port, text("x") });
        },
        "varn.pim.Error.UnknownId: There is no \"x\" here.");
    row(
        "DeleteFromNotifyList of an unknown id",
        [](Service &s) { return s.DeleteFromNotifyList(text("x")); }, "");
    row(
        "GetStatus of an unknown id", [](Service &s) { return s.GetStatus(text("x")); },
        "varn.pim.Error.UnknownId: There is no \"x\" here.");
    row(
        "GetValue of an unknown id among others",
        [port](Service &s) {
            return s.GetValue(QStringList { port, text(":config:x:") });
        },
        "varn.pim.Error.UnknownId: There is no \":config:x:\" here.");
    row(
        "GetValueStatus of an empty id", [](Service &s) { return s.GetValueStatus(QString()); },
        "varn.pim.Error.UnknownId: There is no \"\" here.");
    row(
        "GetValue of an action",
        [](Service &s) { return s.GetValue(text(":action:data:ftp:ping:")); },
        "varn.pim.Error.UnknownId: There is no \":action:data:ftp:ping:\" here.");
    row(
        "a sentence shows 200 characters of an id",
        [](Service &s) { return s.GetValue(QString(201, QLatin1Char('a'))); },
        "varn.pim.Error.UnknownId: There is no "
        "\"aaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaa"
        "aaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaa"
        "aaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaa...\" here.");
}

void tst_Service::everyMethodAnswers()
{
    QFETCH(Call, call);
    QFETCH(QString, answer);
    QCOMPARE(answerTo(call(*service)), answer);
}

void tst_Service::everyMethodOfTheInterfaceExists()
{
    QFile file(text(MOVRA_INTERFACE_FILE));
    QVERIFY(file.open(QIODevice::ReadOnly));
    QXmlStreamReader xml(&file);
    QString member;
    QVariantList arguments;
    int methods = 0;
    while (!xml.atEnd()) {
        const auto token = xml.readNext();
        const auto attributes = xml.attributes();
        if (token == QXmlStreamReader::StartElement && xml.name() == text("method")) {
            member = attributes.value(text("name")).toString();
            arguments.clear();
        } else if (token == QXmlStreamReader::StartElement
                   && attributes.value(text("direction")) == text("in")) {
            arguments.append(exampleOf(attributes.value(text("type")).toString()));
        } else if (token == QXmlStreamReader::EndElement && xml.name() == text("method")) {
            const QString answer = answerTo(
                QDBusConnection::sessionBus().asyncCall(callOf("varn.pim", member, arguments)));
            QVERIFY2(!answer.contains(text("UnknownMethod")), qPrintable(answer));
            ++methods;
        }
    }
    QCOMPARE(methods, 33);
}

void tst_Service::introspectAnswersTheInterfaceFile()
{
    QFile file(text(MOVRA_INTERFACE_FILE));
    QVERIFY(file.open(QIODevice::ReadOnly));
    const QString contract = QString::fromUtf8(file.readAll());
    const QRegularExpression interface(text("  <interface name=\"varn.pim\">.*?</interface>\n"),
                                       QRegularExpression::DotMatchesEverythingOption);
    const QString wanted = interface.match(contract).captured();
    QVERIFY(!wanted.isEmpty());
    const QDBusMessage reply = QDBusConnection::sessionBus().call(
        callOf("org.freedesktop.DBus.Introspectable", text("Introspect"), {}));
    QCOMPARE(interface.match(reply.arguments().value(0).toString()).captured(), wanted);
}

void tst_Service::otherCallsAreUnknown_data()
{
    QTest::addColumn<QString>("interface");
    QTest::addColumn<QString>("member");
    QTest::addColumn<QVariantList>("arguments");
    QTest::addColumn<QString>("answer");
    QTest::newRow("an unknown member")
        << text("varn.pim") << text("Reboot") << QVariantList {}
        << text("org.freedesktop.DBus.Error.UnknownMethod: No such method 'Reboot' in interface "
                "'varn.pim' at object path '/' (signature '')");
    QTest::newRow("another case")
        << text("varn.pim") << text("getvalue") << QVariantList { text("a") }
        << text("org.freedesktop.DBus.Error.UnknownMethod: No such method 'getvalue' in interface "
                "'varn.pim' at object path '/' (signature 's')");
    QTest::newRow("another signature")
        << text("varn.pim") << text("GetValue") << QVariantList { 5 }
        << text("org.freedesktop.DBus.Error.UnknownMethod: No such method 'GetValue' in interface "
                "'varn.pim' at object path '/' (signature 'i')");
    QTest::newRow("an argument too many")
        << text("varn.pim") << text("LogGetIds") << QVariantList { text("a") }
        << text("org.freedesktop.DBus.Error.UnknownMethod: No such method 'LogGetIds' in interface "
                "'varn.pim' at object path '/' (signature 's')");
    QTest::newRow("a signal's name")
        << text("varn.pim") << text("SigInfo") << QVariantList { text("a") }
        << text("org.freedesktop.DBus.Error.UnknownMethod: No such method 'SigInfo' in interface "
                "'varn.pim' at object path '/' (signature 's')");
    QTest::newRow("another interface")
        << text("varn.pom") << text("LogGetIds") << QVariantList {}
        << text("org.freedesktop.DBus.Error.UnknownInterface: No such interface 'varn.pom' at "
                "object path '/'");
}

void tst_Service::otherCallsAreUnknown()
{
    QFETCH(QString, interface);
    QFETCH(QString, member);
    QFETCH(QVariantList, arguments);
    QFETCH(QString, answer);
    QDBusMessage message =
        QDBusMessage::createMethodCall(text("com.varn.tul"), text("/"), interface, member);
    message.setArguments(arguments);
    QCOMPARE(answerTo(QDBusConnection::sessionBus().asyncCall(message)), answer);
}

void tst_Service::aCallWithoutAnInterfaceIsAnswered()
{
    const QDBusMessage call =
        QDBusMessage::createMethodCall(text("com.varn.tul"), text("/"), {}, text("LogGetIds"));
    QCOMPARE(answerTo(QDBusConnection::sessionBus().asyncCall(call)),
             text("s 'config result action'"));
}

void tst_Service::aCallWithoutAReplyGetsNone()
{
    QProcess monitor;
    monitor.start(text("dbus-monitor"), { text("--session") });
    QByteArray seen;
    const auto sees = [&monitor, &seen](const QByteArray &wanted) {
        seen += monitor.readAllStandardOutput();
        return seen.contains(wanted);
    };
    // The monitor has started when it shows a call.
    const auto showsACall = [this, &sees] {
        service->DBusServerStatus().waitForFinished();
        return sees("member=DBusServerStatus");
    };
    QVERIFY(QTest::qWaitFor(showsACall, patienceMs));
    const QDBusMessage unanswered = callOf("varn.pim", text("LogGetIds"), {});
    const QDBusMessage unknown = callOf("varn.pim", text("Reboot"), {});
    QVERIFY(QDBusConnection::sessionBus().send(unanswered));
    QVERIFY(QDBusConnection::sessionBus().send(unknown));
    QCOMPARE(answerTo(service->DbgLogGetIds()), text("as ['LOG_DATA', 'LOG_VOIP', 'LOG_XDSL']"));
    QTRY_VERIFY_WITH_TIMEOUT(sees("string \"LOG_XDSL\""), patienceMs);
    QVERIFY(seen.contains("member=LogGetIds"));
    QVERIFY(!seen.contains("string \"config result action\""));
    QVERIFY(seen.contains("member=Reboot"));
    QVERIFY(!seen.contains("No such method 'Reboot'"));
    monitor.kill();
    QVERIFY(monitor.waitForFinished(patienceMs));
}

void tst_Service::largeAndDeepArgumentsAreRefused()
{
    QVariant deep = text("x");
    for (int depth = 0; depth < 30; ++depth) {
        deep = QVariant::fromValue(QDBusVariant(deep));
    }
    QCOMPARE(
        answerTo(service->SetValue(text(":config:data:ftp:userName:"), boxed(deep))),
        text("varn.pim.Error.BadValue: \":config:data:ftp:userName:\" cannot be set: a value of "
             "D-Bus type \"v\" is not of type \"s\"."));
    const QString longText(2000000, QLatin1Char('a'));
    QCOMPARE(
        answerTo(service->SetValue(text(":config:data:ftp:userName:"), boxed(longText))),
        text("varn.pim.Error.BadValue: \":config:data:ftp:userName:\" cannot be set: the text is "
             "longer than 1048576 characters."));
    QCOMPARE(
        answerTo(service->SetValue(text(":config:voip:delay:doubleARRAY:"),
                                   boxed(QVariant::fromValue(std::vector<double>(1000000))))),
        text("varn.pim.Error.BadValue: \":config:voip:delay:doubleARRAY:\" cannot be set: there "
             "are more than 65536 elements."));
    QCOMPARE(
        answerTo(service->DoAction(text(":action:data:ftp:ping:"), longText)),
        text("varn.pim.Error.BadValue: The value for \":action:data:ftp:ping:\" is longer than "
             "1048576 characters."));
    QStringList many;
    for (int count = 0; count < 1000000; ++count) {
        many.append(text(":config:data:ftp:port:"));
    }
    QCOMPARE(answerTo(service->GetValue(many)),
             text("varn.pim.Error.BadValue: The values of 1000000 items do not fit one answer."));
    QVERIFY(answerTo(service->GetStatus(many.mid(0, 100000))).startsWith(text("ai [0, 0, ")));
    QCOMPARE(answerTo(service->DbgLogCmd(text("SET"), QString(20000000, QLatin1Char(',')))),
             text("varn.pim.Error.BadValue: \"%1...\" is not of the form \"<log>, <instance 0 to "
                  "255>, ENABLED|DISABLED\".")
                 .arg(QString(200, QLatin1Char(','))));
    QVERIFY(answerTo(service->GetValue(QString(5000000, QLatin1Char(':'))))
                .startsWith(text("varn.pim.Error.UnknownId: There is no \":::")));
    QCOMPARE(answerTo(service->DBusServerStatus()), text("i 0"));
}

QTEST_GUILESS_MAIN(tst_Service)
#include "tst_service.moc"
