// SPDX-License-Identifier: MIT
// The two proxy classes: their meta-objects, and every method on the wire.
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

QByteArray describe(const QMetaMethod &method)
{
    QByteArray text = method.methodSignature();
    for (const QByteArray &name : method.parameterNames()) {
        text += ' ' + name;
    }
    return QByteArray(method.typeName()) + ' ' + text;
}

QByteArrayList ownMethods(const QMetaObject &meta)
{
    QByteArrayList methods;
    for (int i = meta.methodOffset(); i < meta.methodCount(); ++i) {
        methods.append(describe(meta.method(i)));
    }
    return methods;
}

/// Asks qt_metacall for the type of an argument, by an index that counts from the class's own first
/// method.
int argumentType(QObject &object, const QMetaObject &meta, int index, int argument)
{
    int type = -2;
    void *arguments[] = { &type, &argument };
    object.qt_metacall(QMetaObject::RegisterMethodArgumentMetaType, meta.methodOffset() + index,
                       arguments);
    return type;
}

} // namespace

Q_DECLARE_METATYPE(Call)

class tst_Proxies : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void initTestCase();
    void theServiceProxyIsValid();
    void metaObjectOfTheServiceProxy();
    void metaObjectOfTheIntrospectionProxy();
    void castsByName();
    void onlyTwoArgumentsHaveARegisteredType();
    void theIntrospectionProxyRegistersNoTypes();
    void signalsAreFoundByTheirMembers();
    void otherMetaCallsSkipTheOwnMethods();
    void calls_data();
    void calls();
    void errorReplies_data() { calls_data(); }
    void errorReplies();
    void repliesOfAnotherType_data() { calls_data(); }
    void repliesOfAnotherType();
    void aReplyMayHoldMoreThanExpected();
    void introspection();
    void invocationsByIndexSendCalls_data();
    void invocationsByIndexSendCalls();
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

void tst_Proxies::theServiceProxyIsValid()
{
    QVERIFY(proxy->isValid());
    QCOMPARE(proxy->service(), QStringLiteral("com.varn.tul"));
    QCOMPARE(proxy->path(), QStringLiteral("/"));
    QCOMPARE(proxy->interface(), QStringLiteral("varn.pim"));
    QVERIFY(proxy->parent() == nullptr);
    QCOMPARE(proxy->timeout(), -1);
    QCOMPARE(service->takeCalls(), QByteArrayList());
}

void tst_Proxies::metaObjectOfTheServiceProxy()
{
    const QMetaObject &meta = KorAppInterface::staticMetaObject;
    QCOMPARE(meta.className(), "KorAppInterface");
    QCOMPARE(meta.superClass()->className(), "QDBusAbstractInterface");
    QCOMPARE(meta.propertyCount(), meta.propertyOffset());
    QCOMPARE(meta.classInfoCount(), meta.classInfoOffset());
    for (int i = 0; i < 41; ++i) {
        const auto type = meta.method(meta.methodOffset() + i).methodType();
        QCOMPARE(type, i < 8 ? QMetaMethod::Signal : QMetaMethod::Slot);
    }
    const QByteArrayList expected {
        "void SigAlarm(QString) alarmMsg",
        "void SigDBusServerClosing(QString) msg",
        "void SigError(QString) errorMsg",
        "void SigInfo(QString) infoMsg",
        "void SigTestComplete(QString) testCompleteMsg",
        "void SigTestCompleteWithData(QString,std::vector<double>) msg data",
        "void SigTestCompleteWithData(QString,std::vector<uint32_t>) msg data",
        "void SigUpdate(QString) updateMsg",
        "QDBusPendingReply<> AddToNotifyList(QStringList) idList",
        "QDBusPendingReply<> AddToNotifyList(QString) id",
        "QDBusPendingReply<> ClearConfigNotifyList()",
        "QDBusPendingReply<> ClearResultNotifyList()",
        "QDBusPendingReply<> DbgLogCmd(QString,QString) cmd value",
        "QDBusPendingReply<QStringList> DbgLogGetIds()",
        "QDBusPendingReply<> DBusServerCmd(QString,QDBusVariant) cmd value",
        "QDBusPendingReply<int> DBusServerStatus()",
        "QDBusPendingReply<> DeleteFromNotifyList(QStringList) idList",
        "QDBusPendingReply<> DeleteFromNotifyList(QString) id",
        "QDBusPendingReply<QString> DoAction(QString,QString) id valStr",
        "QDBusPendingReply<> DoAction(QString) id",
        "QDBusPendingReply<QList<int> > GetStatus(QStringList) idList",
        "QDBusPendingReply<int> GetStatus(QString) id",
        "QDBusPendingReply<QList<IdValueStruct> > GetValue(QStringList) idList",
        "QDBusPendingReply<QDBusVariant> GetValue(QString) id",
        "QDBusPendingReply<QList<IdValueStatusStruct> > GetValueStatus(QStringList) idList",
        "QDBusPendingReply<IdValueStatusStruct> GetValueStatus(QString) id",
        "QDBusPendingReply<QStringList> ListActionIds()",
        "QDBusPendingReply<QStringList> ListConfigIds()",
        "QDBusPendingReply<QStringList> ListResultIds()",
        "QDBusPendingReply<bool> LoadConfig(QString) name",
        "QDBusPendingReply<> LogClear(QString) id",
        "QDBusPendingReply<QString> LogGetIds()",
        "QDBusPendingReply<> LogStartNotify(QString) id",
        "QDBusPendingReply<> LogStopNotify(QString) id",
        "QDBusPendingReply<bool> SaveConfig(QString) name",
        "QDBusPendingReply<> SetValue(QList<IdValueStruct>) idValueList",
        "QDBusPendingReply<> SetValue(QString,QDBusVariant) id value",
        "QDBusPendingReply<> StartConfigNotify()",
        "QDBusPendingReply<> StartResultNotify()",
        "QDBusPendingReply<> StopConfigNotify()",
        "QDBusPendingReply<> StopResultNotify()",
    };
    QCOMPARE(ownMethods(meta), expected);
}

void tst_Proxies::metaObjectOfTheIntrospectionProxy()
{
    const QMetaObject &meta = ComVarnDBusIntrospectableInterface::staticMetaObject;
    QCOMPARE(meta.className(), "ComVarnDBusIntrospectableInterface");
    QCOMPARE(meta.superClass()->className(), "QDBusAbstractInterface");
    QCOMPARE(meta.propertyCount(), meta.propertyOffset());
    QCOMPARE(meta.classInfoCount(), meta.classInfoOffset());
    QCOMPARE(ownMethods(meta), QByteArrayList { "QDBusPendingReply<QString> Introspect()" });
}

void tst_Proxies::castsByName()
{
    QCOMPARE(proxy->qt_metacast("KorAppInterface"), static_cast<void *>(proxy.get()));
    QCOMPARE(proxy->qt_metacast("QDBusAbstractInterface"),
             static_cast<void *>(static_cast<QDBusAbstractInterface *>(proxy.get())));
    QVERIFY(proxy->qt_metacast("ComVarnDBusIntrospectableInterface") == nullptr);
    QVERIFY(proxy->qt_metacast("korappinterface") == nullptr);
    QVERIFY(proxy->qt_metacast(nullptr) == nullptr);

    QCOMPARE(introspectable->qt_metacast("ComVarnDBusIntrospectableInterface"),
             static_cast<void *>(introspectable.get()));
    QCOMPARE(introspectable->qt_metacast("QDBusAbstractInterface"),
             static_cast<void *>(static_cast<QDBusAbstractInterface *>(introspectable.get())));
    QVERIFY(introspectable->qt_metacast("KorAppInterface") == nullptr);
    QVERIFY(introspectable->qt_metacast(nullptr) == nullptr);
}

void tst_Proxies::onlyTwoArgumentsHaveARegisteredType()
{
    for (int index = 0; index < 41; ++index) {
        for (int argument = 0; argument < 3; ++argument) {
            const bool isVariant = (index == 14 || index == 36) && argument == 1;
            const int type =
                argumentType(*proxy, KorAppInterface::staticMetaObject, index, argument);
            QVERIFY2(type == (isVariant ? qMetaTypeId<QDBusVariant>() : -1),
                     qPrintable(QStringLiteral("index %1, argument %2: %3")
                                    .arg(index)
                                    .arg(argument)
                                    .arg(type)));
        }
    }
}

void tst_Proxies::theIntrospectionProxyRegistersNoTypes()
{
    const QMetaObject &meta = ComVarnDBusIntrospectableInterface::staticMetaObject;
    QCOMPARE(argumentType(*introspectable, meta, 0, 0), -1);
    QCOMPARE(argumentType(*introspectable, meta, 0, 1), -1);
}

void tst_Proxies::signalsAreFoundByTheirMembers()
{
    using Proxy = KorAppInterface;
    const auto index = [](const QMetaMethod &signal) {
        return signal.methodIndex() - Proxy::staticMetaObject.methodOffset();
    };
    QCOMPARE(index(QMetaMethod::fromSignal(&Proxy::SigAlarm)), 0);
    QCOMPARE(index(QMetaMethod::fromSignal(&Proxy::SigDBusServerClosing)), 1);
    QCOMPARE(index(QMetaMethod::fromSignal(&Proxy::SigError)), 2);
    QCOMPARE(index(QMetaMethod::fromSignal(&Proxy::SigInfo)), 3);
    QCOMPARE(index(QMetaMethod::fromSignal(&Proxy::SigTestComplete)), 4);
    QCOMPARE(index(QMetaMethod::fromSignal(
                 qOverload<const QString &, std::vector<double>>(&Proxy::SigTestCompleteWithData))),
             5);
    QCOMPARE(index(QMetaMethod::fromSignal(qOverload<const QString &, std::vector<uint32_t>>(
                 &Proxy::SigTestCompleteWithData))),
             6);
    QCOMPARE(index(QMetaMethod::fromSignal(&Proxy::SigUpdate)), 7);
}

void tst_Proxies::otherMetaCallsSkipTheOwnMethods()
{
    void *none[] = { nullptr };
    const int offset = KorAppInterface::staticMetaObject.methodOffset();
    QCOMPARE(proxy->qt_metacall(QMetaObject::InvokeMetaMethod, offset + 41, none), 0);
    QCOMPARE(proxy->qt_metacall(QMetaObject::InvokeMetaMethod, offset + 50, none), 9);
    QCOMPARE(service->takeCalls(), QByteArrayList());
}

void tst_Proxies::calls_data()
{
    QTest::addColumn<QByteArray>("member");
    QTest::addColumn<Call>("call");
    QTest::addColumn<QByteArray>("wire");
    QTest::addColumn<QByteArray>("reply");
    QTest::addColumn<QString>("value");
    QTest::addColumn<QByteArray>("otherReply"); ///< empty where any reply will do

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
    // A reply's error is not the proxy's: it is what the commands print, so it must stay empty.
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
}

void tst_Proxies::invocationsByIndexSendCalls_data()
{
    QTest::addColumn<bool>("wantsResult");
    QTest::newRow("the pending reply is stored") << true;
    QTest::newRow("nobody wants the pending reply") << false;
}

void tst_Proxies::invocationsByIndexSendCalls()
{
    QFETCH(bool, wantsResult);

    service->answer("GetStatus", "(4,)");
    QString id = QStringLiteral(":x:");
    QDBusPendingReply<int> reply;
    void *arguments[] = { wantsResult ? &reply : nullptr, &id };
    const int index = KorAppInterface::staticMetaObject.methodOffset() + 21;
    QVERIFY(proxy->qt_metacall(QMetaObject::InvokeMetaMethod, index, arguments) < 0);
    QCOMPARE(service->waitForCalls(1), QByteArrayList { "GetStatus s (':x:',)" });
    if (wantsResult) {
        reply.waitForFinished();
        QCOMPARE(reply.value(), 4);
    }
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
