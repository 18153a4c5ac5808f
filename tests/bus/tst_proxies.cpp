// SPDX-License-Identifier: MIT
// Every method of the two proxies on the wire, called as C++ and by its index.
#include "bus/proxies.h"
#include "tests/support/fakeservice.h"

#include <QMetaMethod>
#include <QTest>

#include <functional>
#include <memory>

namespace
{

/// How a call ended: the error's name, or what the reply held as text.
struct Outcome {
    QString errorName;
    QString value;
};

QString textOf(const QString &value)
{
    return value;
}
QString textOf(const QStringList &value)
{
    return value.join(QLatin1Char('|'));
}
QString textOf(bool value)
{
    return value ? QStringLiteral("true") : QStringLiteral("false");
}
QString textOf(int value)
{
    return QString::number(value);
}
QString textOf(const QDBusVariant &value)
{
    return QString::fromLatin1(value.variant().typeName()) + QLatin1Char(' ')
        + value.variant().toString();
}
QString textOf(const IdValueStruct &value)
{
    return value.id + QLatin1Char('=') + value.value.toString();
}
QString textOf(const IdValueStatusStruct &value)
{
    return value.id + QLatin1Char('=') + value.value.toString() + QLatin1Char('/')
        + textOf(value.status);
}
template <typename T> QString textOf(const QList<T> &values)
{
    QStringList texts;
    for (const T &value : values) {
        texts.append(textOf(value));
    }
    return texts.join(QLatin1Char('|'));
}

Outcome finish(QDBusPendingReply<> reply)
{
    reply.waitForFinished();
    return { reply.error().name(), QString() };
}
template <typename T> Outcome finish(QDBusPendingReply<T> reply)
{
    reply.waitForFinished();
    return { reply.error().name(), reply.isError() ? QString() : textOf(reply.value()) };
}

using Call = std::function<Outcome(KorAppInterface &)>;

} // namespace

Q_DECLARE_METATYPE(Call)

class tst_Proxies : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void initTestCase();
    void calls_data();
    void calls();
    void errorReplies_data() { calls_data(); }
    void errorReplies();
    void repliesOfAnotherType_data() { calls_data(); }
    void repliesOfAnotherType();
    void aReplyMayHoldMoreThanExpected();
    void introspection();
    void invocationsByIndexSendCalls_data() { calls_data(); }
    void invocationsByIndexSendCalls();
    void invocationsByIndexStoreThePendingReply();
    void aCallOnAnInvalidProxyIsAnError();

private:
    std::unique_ptr<FakeService> service;
    std::unique_ptr<KorAppInterface> proxy;
    std::unique_ptr<ComVarnDBusIntrospectableInterface> introspectable;
};

void tst_Proxies::initTestCase()
{
    registerBusTypes();
    service = std::make_unique<FakeService>();
    const QString name = QStringLiteral("com.varn.tul");
    const QString path = QStringLiteral("/");
    proxy = std::make_unique<KorAppInterface>(name, path, QDBusConnection::sessionBus(), nullptr);
    introspectable = std::make_unique<ComVarnDBusIntrospectableInterface>(
        name, path, QDBusConnection::sessionBus(), nullptr);
}

void tst_Proxies::calls_data()
{
    QTest::addColumn<QByteArray>("member");
    QTest::addColumn<Call>("call");
    QTest::addColumn<QByteArray>("wire");
    QTest::addColumn<QByteArray>("reply");
    QTest::addColumn<QString>("value");
    QTest::addColumn<QByteArray>("otherReply"); ///< empty if every reply is accepted

    const auto row = [](const char *name, const char *member, const Call &call, const char *wire,
                        const char *reply, const char *value, const char *otherReply) {
        QTest::newRow(name) << QByteArray(member) << call << QByteArray(wire) << QByteArray(reply)
                            << QString::fromUtf8(value) << QByteArray(otherReply);
    };
    using Proxy = KorAppInterface;
    const QString x = QStringLiteral(":x:");
    const QStringList xy { x, QStringLiteral(":y:") };
    const QDBusVariant seven(7);
    const QList<IdValueStruct> records { { x, QStringLiteral("text") }, { xy.last(), 2.5 } };

    row(
        "8 AddToNotifyList of a list", "AddToNotifyList",
        [=](Proxy &p) { return finish(p.AddToNotifyList(xy)); },
        "AddToNotifyList as ([':x:', ':y:'],)", "()", "", "");
    row(
        "9 AddToNotifyList of one id", "AddToNotifyList",
        [=](Proxy &p) { return finish(p.AddToNotifyList(x)); }, "AddToNotifyList s (':x:',)", "()",
        "", "");
    row(
        "10 ClearConfigNotifyList", "ClearConfigNotifyList",
        [](Proxy &p) { return finish(p.ClearConfigNotifyList()); }, "ClearConfigNotifyList", "()",
        "", "");
    row(
        "11 ClearResultNotifyList", "ClearResultNotifyList",
        [](Proxy &p) { return finish(p.ClearResultNotifyList()); }, "ClearResultNotifyList", "()",
        "", "");
    row(
        "12 DbgLogCmd", "DbgLogCmd",
        [](Proxy &p) { return finish(p.DbgLogCmd(QStringLiteral("SET"), QString())); },
        "DbgLogCmd ss ('SET', '')", "()", "", "");
    row(
        "13 DbgLogGetIds", "DbgLogGetIds", [](Proxy &p) { return finish(p.DbgLogGetIds()); },
        "DbgLogGetIds", "(['a', 'b'],)", "a|b", "('a',)");
    row(
        "14 DBusServerCmd", "DBusServerCmd",
        [=](Proxy &p) { return finish(p.DBusServerCmd(QStringLiteral("CMD"), seven)); },
        "DBusServerCmd sv ('CMD', <7>)", "()", "", "");
    row(
        "15 DBusServerStatus", "DBusServerStatus",
        [](Proxy &p) { return finish(p.DBusServerStatus()); }, "DBusServerStatus", "(-7,)", "-7",
        "(uint32 7,)");
    row(
        "16 DeleteFromNotifyList of a list", "DeleteFromNotifyList",
        [=](Proxy &p) { return finish(p.DeleteFromNotifyList(xy)); },
        "DeleteFromNotifyList as ([':x:', ':y:'],)", "()", "", "");
    row(
        "17 DeleteFromNotifyList of one id", "DeleteFromNotifyList",
        [=](Proxy &p) { return finish(p.DeleteFromNotifyList(x)); },
        "DeleteFromNotifyList s (':x:',)", "()", "", "");
    row(
        "18 DoAction with a value", "DoAction",
        [=](Proxy &p) { return finish(p.DoAction(x, QStringLiteral("now"))); },
        "DoAction ss (':x:', 'now')", "('done',)", "done", "(1,)");
    row(
        "19 DoAction without a value", "DoAction", [=](Proxy &p) { return finish(p.DoAction(x)); },
        "DoAction s (':x:',)", "()", "", "");
    row(
        "20 GetStatus of a list", "GetStatus", [=](Proxy &p) { return finish(p.GetStatus(xy)); },
        "GetStatus as ([':x:', ':y:'],)", "([1, -2],)", "1|-2", "(1,)");
    row(
        "21 GetStatus of one id", "GetStatus", [=](Proxy &p) { return finish(p.GetStatus(x)); },
        "GetStatus s (':x:',)", "(-2147483648,)", "-2147483648", "('1',)");
    row(
        "22 GetValue of a list", "GetValue", [=](Proxy &p) { return finish(p.GetValue(xy)); },
        "GetValue as ([':x:', ':y:'],)", "([(':x:', <'t'>), (':y:', <5>)],)", ":x:=t|:y:=5",
        "(<1>,)");
    row(
        "23 GetValue of one id", "GetValue", [=](Proxy &p) { return finish(p.GetValue(x)); },
        "GetValue s (':x:',)", "(<'t'>,)", "QString t", "('t',)");
    row(
        "24 GetValueStatus of a list", "GetValueStatus",
        [=](Proxy &p) { return finish(p.GetValueStatus(xy)); },
        "GetValueStatus as ([':x:', ':y:'],)", "([(':x:', <'t'>, 3)],)", ":x:=t/3",
        "([(':x:', <'t'>)],)");
    row(
        "25 GetValueStatus of one id", "GetValueStatus",
        [=](Proxy &p) { return finish(p.GetValueStatus(x)); }, "GetValueStatus s (':x:',)",
        "((':x:', <true>, -1),)", ":x:=true/-1", "((':x:', <true>, uint32 1),)");
    row(
        "26 ListActionIds", "ListActionIds", [](Proxy &p) { return finish(p.ListActionIds()); },
        "ListActionIds", "(['a'],)", "a", "({'a': 'b'},)");
    row(
        "27 ListConfigIds", "ListConfigIds", [](Proxy &p) { return finish(p.ListConfigIds()); },
        "ListConfigIds", "(@as [],)", "", "(@ai [],)");
    row(
        "28 ListResultIds", "ListResultIds", [](Proxy &p) { return finish(p.ListResultIds()); },
        "ListResultIds", "(['é', '€'],)", "é|€", "()");
    row(
        "29 LoadConfig", "LoadConfig",
        [](Proxy &p) { return finish(p.LoadConfig(QStringLiteral("a b"))); },
        "LoadConfig s ('a b',)", "(true,)", "true", "(1,)");
    row(
        "30 LogClear", "LogClear", [=](Proxy &p) { return finish(p.LogClear(x)); },
        "LogClear s (':x:',)", "()", "", "");
    row(
        "31 LogGetIds answers one string", "LogGetIds",
        [](Proxy &p) { return finish(p.LogGetIds()); }, "LogGetIds", "('a b',)", "a b",
        "(['a', 'b'],)");
    row(
        "32 LogStartNotify", "LogStartNotify",
        [=](Proxy &p) { return finish(p.LogStartNotify(x)); }, "LogStartNotify s (':x:',)", "()",
        "", "");
    row(
        "33 LogStopNotify", "LogStopNotify", [=](Proxy &p) { return finish(p.LogStopNotify(x)); },
        "LogStopNotify s (':x:',)", "()", "", "");
    row(
        "34 SaveConfig", "SaveConfig",
        [](Proxy &p) { return finish(p.SaveConfig(QStringLiteral("a"))); }, "SaveConfig s ('a',)",
        "(false,)", "false", "('true',)");
    row(
        "35 SetValue of a list", "SetValue", [=](Proxy &p) { return finish(p.SetValue(records)); },
        "SetValue a(sv) ([(':x:', <'text'>), (':y:', <2.5>)],)", "()", "", "");
    row(
        "36 SetValue of one id wraps the integer", "SetValue",
        [=](Proxy &p) { return finish(p.SetValue(x, seven)); }, "SetValue sv (':x:', <7>)", "()",
        "", "");
    row(
        "37 StartConfigNotify", "StartConfigNotify",
        [](Proxy &p) { return finish(p.StartConfigNotify()); }, "StartConfigNotify", "()", "", "");
    row(
        "38 StartResultNotify", "StartResultNotify",
        [](Proxy &p) { return finish(p.StartResultNotify()); }, "StartResultNotify", "()", "", "");
    row(
        "39 StopConfigNotify", "StopConfigNotify",
        [](Proxy &p) { return finish(p.StopConfigNotify()); }, "StopConfigNotify", "()", "", "");
    row(
        "40 StopResultNotify", "StopResultNotify",
        [](Proxy &p) { return finish(p.StopResultNotify()); }, "StopResultNotify", "()", "", "");
}

void tst_Proxies::calls()
{
    QFETCH(QByteArray, member);
    QFETCH(Call, call);
    QFETCH(QByteArray, wire);
    QFETCH(QByteArray, reply);
    QFETCH(QString, value);

    service->answer(member, reply);
    const Outcome outcome = call(*proxy);
    QCOMPARE(service->takeCalls(), QByteArrayList { wire });
    QCOMPARE(outcome.errorName, QString());
    QCOMPARE(outcome.value, value);
}

void tst_Proxies::errorReplies()
{
    QFETCH(QByteArray, member);
    QFETCH(Call, call);
    QFETCH(QByteArray, wire);

    service->refuse(member, "varn.pim.Error.Refused", "no");
    const Outcome outcome = call(*proxy);
    QCOMPARE(service->takeCalls(), QByteArrayList { wire });
    QCOMPARE(outcome.errorName, QStringLiteral("varn.pim.Error.Refused"));
    // The commands print the error of the proxy. An error reply must leave it empty.
    QCOMPARE(proxy->lastError().message(), QString());
}

void tst_Proxies::repliesOfAnotherType()
{
    QFETCH(QByteArray, member);
    QFETCH(Call, call);
    QFETCH(QByteArray, otherReply);

    const bool anyReplyWillDo = otherReply.isEmpty();
    service->answer(member, anyReplyWillDo ? QByteArray("([('unasked', <1>)], 2)") : otherReply);
    const Outcome outcome = call(*proxy);
    QCOMPARE(service->takeCalls().size(), 1);
    QCOMPARE(outcome.errorName,
             anyReplyWillDo ? QString()
                            : QStringLiteral("org.freedesktop.DBus.Error.InvalidSignature"));
    QCOMPARE(outcome.value, QString());
}

void tst_Proxies::aReplyMayHoldMoreThanExpected()
{
    service->answer("DBusServerStatus", "(5, 'more')");
    const Outcome outcome = finish(proxy->DBusServerStatus());
    QCOMPARE(outcome.errorName, QString());
    QCOMPARE(outcome.value, QStringLiteral("5"));
    service->takeCalls();
}

void tst_Proxies::introspection()
{
    service->answer("Introspect", "('<node/>',)");
    const Outcome outcome = finish(introspectable->Introspect());
    QCOMPARE(service->takeCalls(), QByteArrayList { "com.varn.DBus.Introspectable Introspect" });
    QCOMPARE(outcome.errorName, QString());
    QCOMPARE(outcome.value, QStringLiteral("<node/>"));

    service->answer("Introspect", "(1,)");
    QCOMPARE(finish(introspectable->Introspect()).errorName,
             QStringLiteral("org.freedesktop.DBus.Error.InvalidSignature"));
    service->refuse("Introspect", "varn.pim.Error.Refused", "no");
    QCOMPARE(finish(introspectable->Introspect()).errorName,
             QStringLiteral("varn.pim.Error.Refused"));
    service->takeCalls();
}

void tst_Proxies::invocationsByIndexSendCalls()
{
    QFETCH(QByteArray, wire);

    // The rows call with these arguments, one of each type that any method takes.
    QVariantMap values {
        { QStringLiteral("QStringList"),
          QStringList { QStringLiteral(":x:"), QStringLiteral(":y:") } },
        { QStringLiteral("QDBusVariant"), QVariant::fromValue(QDBusVariant(7)) },
        { QStringLiteral("QList<IdValueStruct>"),
          QVariant::fromValue(
              QList<IdValueStruct> { { QStringLiteral(":x:"), QStringLiteral("text") },
                                     { QStringLiteral(":y:"), 2.5 } }) },
    };
    // The texts of each row are in its expected call.
    const QStringList texts = QString::fromUtf8(wire).split(QLatin1Char('\''));
    const QByteArray row = QTest::currentDataTag();
    const QMetaMethod method = KorAppInterface::staticMetaObject.method(
        KorAppInterface::staticMetaObject.methodOffset() + row.left(row.indexOf(' ')).toInt());
    QVariantList arguments;
    for (const QByteArray &type : method.parameterTypes()) {
        arguments.append(type == "QString" ? QVariant(texts.value(2 * arguments.size() + 1))
                                           : values.value(QString::fromLatin1(type)));
    }
    void *pointers[] = { nullptr, nullptr, nullptr };
    for (int i = 0; i < arguments.size(); ++i) {
        pointers[i + 1] = arguments[i].data();
    }
    QVERIFY(proxy->qt_metacall(QMetaObject::InvokeMetaMethod, method.methodIndex(), pointers) < 0);
    QCOMPARE(service->waitForCalls(1), QByteArrayList { wire });
}

void tst_Proxies::invocationsByIndexStoreThePendingReply()
{
    service->answer("GetStatus", "(4,)");
    QString id = QStringLiteral(":x:");
    QDBusPendingReply<int> status;
    void *arguments[] = { &status, &id };
    const int index = KorAppInterface::staticMetaObject.methodOffset() + 21;
    QVERIFY(proxy->qt_metacall(QMetaObject::InvokeMetaMethod, index, arguments) < 0);
    status.waitForFinished();
    QCOMPARE(status.value(), 4);

    service->answer("Introspect", "('<node/>',)");
    QDBusPendingReply<QString> xml;
    void *place[] = { &xml };
    QVERIFY(introspectable->qt_metacall(
                QMetaObject::InvokeMetaMethod,
                ComVarnDBusIntrospectableInterface::staticMetaObject.methodOffset(), place)
            < 0);
    xml.waitForFinished();
    QCOMPARE(xml.value(), QStringLiteral("<node/>"));
    QCOMPARE(service->takeCalls().size(), 2);
}

void tst_Proxies::aCallOnAnInvalidProxyIsAnError()
{
    KorAppInterface nobody(QStringLiteral("com.varn.nobody"), QStringLiteral("/no path"),
                           QDBusConnection::sessionBus(), nullptr);
    QVERIFY(!nobody.isValid());
    QCOMPARE(finish(nobody.DBusServerStatus()).errorName,
             QStringLiteral("org.qtproject.QtDBus.Error.InvalidObjectPath"));
}

QTEST_GUILESS_MAIN(tst_Proxies)
#include "tst_proxies.moc"
