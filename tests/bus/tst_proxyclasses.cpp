// SPDX-License-Identifier: MIT
// The two proxy classes as classes: construction, meta-objects, meta-calls.
#include "bus/proxies.h"
#include "tests/support/fakeservice.h"

#include <QMetaMethod>
#include <QTest>

#include <memory>

namespace
{

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
/// method; -2 if it does not pass on the index less the number of its methods.
int argumentType(QObject &object, const QMetaObject &meta, int index, int argument)
{
    int type = -2;
    void *arguments[] = { &type, &argument };
    const int count = meta.methodCount() - meta.methodOffset();
    const int left = object.qt_metacall(QMetaObject::RegisterMethodArgumentMetaType,
                                        meta.methodOffset() + index, arguments);
    return left == index - count ? type : -2;
}

} // namespace

class tst_ProxyClasses : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void initTestCase();
    void theServiceProxyIsValid();
    void theParentIsPassedOn();
    void metaObjectOfTheServiceProxy();
    void metaObjectOfTheIntrospectionProxy();
    void castsByName();
    void onlyTwoArgumentsHaveARegisteredType();
    void theIntrospectionProxyRegistersNoTypes();
    void signalsAreFoundByTheirMembers();
    void otherMetaCallsSkipTheOwnMethods();

private:
    std::unique_ptr<FakeService> service;
    std::unique_ptr<KorAppInterface> proxy;
    std::unique_ptr<ComVarnDBusIntrospectableInterface> introspectable;
};

void tst_ProxyClasses::initTestCase()
{
    registerBusTypes();
    service = std::make_unique<FakeService>();
    const QString name = QStringLiteral("com.varn.tul");
    const QString path = QStringLiteral("/");
    proxy = std::make_unique<KorAppInterface>(name, path, QDBusConnection::sessionBus(), nullptr);
    introspectable = std::make_unique<ComVarnDBusIntrospectableInterface>(
        name, path, QDBusConnection::sessionBus(), nullptr);
}

void tst_ProxyClasses::theServiceProxyIsValid()
{
    QVERIFY(proxy->isValid());
    QCOMPARE(proxy->service(), QStringLiteral("com.varn.tul"));
    QCOMPARE(proxy->path(), QStringLiteral("/"));
    QCOMPARE(proxy->interface(), QStringLiteral("varn.pim"));
    QVERIFY(proxy->parent() == nullptr);
    QCOMPARE(proxy->timeout(), -1);
    QCOMPARE(service->takeCalls(), QByteArrayList());
}

void tst_ProxyClasses::theParentIsPassedOn()
{
    QObject parent;
    const auto bus = QDBusConnection::sessionBus();
    const QString name = QStringLiteral("com.varn.tul");
    const QString path = QStringLiteral("/");
    const auto *child = new KorAppInterface(name, path, bus, &parent);
    QCOMPARE(child->parent(), &parent);
    const auto *other = new ComVarnDBusIntrospectableInterface(name, path, bus, &parent);
    QCOMPARE(other->parent(), &parent);
    QCOMPARE(other->interface(), QStringLiteral("com.varn.DBus.Introspectable"));
}

void tst_ProxyClasses::metaObjectOfTheServiceProxy()
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

void tst_ProxyClasses::metaObjectOfTheIntrospectionProxy()
{
    const QMetaObject &meta = ComVarnDBusIntrospectableInterface::staticMetaObject;
    QCOMPARE(meta.className(), "ComVarnDBusIntrospectableInterface");
    QCOMPARE(meta.superClass()->className(), "QDBusAbstractInterface");
    QCOMPARE(meta.propertyCount(), meta.propertyOffset());
    QCOMPARE(meta.classInfoCount(), meta.classInfoOffset());
    QCOMPARE(ownMethods(meta), QByteArrayList { "QDBusPendingReply<QString> Introspect()" });
}

void tst_ProxyClasses::castsByName()
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

void tst_ProxyClasses::onlyTwoArgumentsHaveARegisteredType()
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

void tst_ProxyClasses::theIntrospectionProxyRegistersNoTypes()
{
    const QMetaObject &meta = ComVarnDBusIntrospectableInterface::staticMetaObject;
    QCOMPARE(argumentType(*introspectable, meta, 0, 0), -1);
    QCOMPARE(argumentType(*introspectable, meta, 0, 1), -1);
}

void tst_ProxyClasses::signalsAreFoundByTheirMembers()
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

void tst_ProxyClasses::otherMetaCallsSkipTheOwnMethods()
{
    void *none[] = { nullptr };
    const auto left = [&none](QObject &object, QMetaObject::Call call, int index) {
        return object.qt_metacall(call, index, none);
    };
    const int offset = KorAppInterface::staticMetaObject.methodOffset();
    for (const auto call :
         { QMetaObject::InvokeMetaMethod, QMetaObject::RegisterMethodArgumentMetaType }) {
        QCOMPARE(left(*proxy, call, offset + 41), 0);
        QCOMPARE(left(*proxy, call, offset + 50), 9);
        QCOMPARE(left(*introspectable, call, offset + 1), 0);
        QCOMPARE(left(*introspectable, call, offset + 5), 4);
    }
    QCOMPARE(service->takeCalls(), QByteArrayList());
}

QTEST_GUILESS_MAIN(tst_ProxyClasses)
#include "tst_proxyclasses.moc"
