// SPDX-License-Identifier: MIT
// The proxies of the remote interfaces. This header is the table of "varn.pim". moc numbers the
// signals first and then the methods, in the order of declaration, so keep the order.
#pragma once

#include "bus/types.h"

#include <QDBusAbstractInterface>
#include <QDBusConnection>
#include <QDBusPendingReply>
#include <QDBusVariant>
#include <QStringList>

#include <vector>

/// Proxy of "varn.pim", the interface of the application service.
///
/// Every method sends its call immediately and returns without waiting. Overloads have the same bus
/// member and differ in the signature of their arguments. No time-out is set, so Qt D-Bus's default
/// of 25,000 ms applies to a reply (QDBusAbstractInterface::setTimeout). The reply of a call on an
/// invalid proxy, or of a refused call, is an error.
class KorAppInterface : public QDBusAbstractInterface
{
    Q_OBJECT

public:
    static const char *staticInterfaceName() { return "varn.pim"; }

    /// Asks the bus for the owner of the service name. isValid() is true if a well-known name has
    /// one. With a correct path it is always true for a unique name, and never for the bus's own.
    KorAppInterface(const QString &service, const QString &path, const QDBusConnection &connection,
                    QObject *parent);
    ~KorAppInterface() override;

public Q_SLOTS:
    // One line per method. The comment gives the signatures of the arguments and of the reply.
    // clang-format off
    QDBusPendingReply<> AddToNotifyList(const QStringList &idList) { return send("AddToNotifyList", idList); } // as
    QDBusPendingReply<> AddToNotifyList(const QString &id) { return send("AddToNotifyList", id); } // s
    QDBusPendingReply<> ClearConfigNotifyList() { return send("ClearConfigNotifyList"); }
    QDBusPendingReply<> ClearResultNotifyList() { return send("ClearResultNotifyList"); }
    QDBusPendingReply<> DbgLogCmd(const QString &cmd, const QString &value) { return send("DbgLogCmd", cmd, value); } // ss
    QDBusPendingReply<QStringList> DbgLogGetIds() { return send("DbgLogGetIds"); } // -> as
    QDBusPendingReply<> DBusServerCmd(const QString &cmd, const QDBusVariant &value) { return send("DBusServerCmd", cmd, value); } // sv
    QDBusPendingReply<int> DBusServerStatus() { return send("DBusServerStatus"); } // -> i
    QDBusPendingReply<> DeleteFromNotifyList(const QStringList &idList) { return send("DeleteFromNotifyList", idList); } // as
    QDBusPendingReply<> DeleteFromNotifyList(const QString &id) { return send("DeleteFromNotifyList", id); } // s
    QDBusPendingReply<QString> DoAction(const QString &id, const QString &valStr) { return send("DoAction", id, valStr); } // ss -> s
    QDBusPendingReply<> DoAction(const QString &id) { return send("DoAction", id); } // s
    QDBusPendingReply<QList<int>> GetStatus(const QStringList &idList) { return send("GetStatus", idList); } // as -> ai
    QDBusPendingReply<int> GetStatus(const QString &id) { return send("GetStatus", id); } // s -> i
    QDBusPendingReply<QList<IdValueStruct>> GetValue(const QStringList &idList) { return send("GetValue", idList); } // as -> a(sv)
    QDBusPendingReply<QDBusVariant> GetValue(const QString &id) { return send("GetValue", id); } // s -> v
    QDBusPendingReply<QList<IdValueStatusStruct>> GetValueStatus(const QStringList &idList) { return send("GetValueStatus", idList); } // as -> a(svi)
    QDBusPendingReply<IdValueStatusStruct> GetValueStatus(const QString &id) { return send("GetValueStatus", id); } // s -> (svi)
    QDBusPendingReply<QStringList> ListActionIds() { return send("ListActionIds"); } // -> as
    QDBusPendingReply<QStringList> ListConfigIds() { return send("ListConfigIds"); } // -> as
    QDBusPendingReply<QStringList> ListResultIds() { return send("ListResultIds"); } // -> as
    QDBusPendingReply<bool> LoadConfig(const QString &name) { return send("LoadConfig", name); } // s -> b
    QDBusPendingReply<> LogClear(const QString &id) { return send("LogClear", id); } // s
    // One string, as the service sends it. The other ids are lists of strings.
    QDBusPendingReply<QString> LogGetIds() { return send("LogGetIds"); } // -> s
    QDBusPendingReply<> LogStartNotify(const QString &id) { return send("LogStartNotify", id); } // s
    QDBusPendingReply<> LogStopNotify(const QString &id) { return send("LogStopNotify", id); } // s
    QDBusPendingReply<bool> SaveConfig(const QString &name) { return send("SaveConfig", name); } // s -> b
    QDBusPendingReply<> SetValue(const QList<IdValueStruct> &idValueList) { return send("SetValue", idValueList); } // a(sv)
    QDBusPendingReply<> SetValue(const QString &id, const QDBusVariant &value) { return send("SetValue", id, value); } // sv
    QDBusPendingReply<> StartConfigNotify() { return send("StartConfigNotify"); }
    QDBusPendingReply<> StartResultNotify() { return send("StartResultNotify"); }
    QDBusPendingReply<> StopConfigNotify() { return send("StopConfigNotify"); }
    QDBusPendingReply<> StopResultNotify() { return send("StopResultNotify"); }
    // clang-format on

Q_SIGNALS:
    // Subscribed to on the bus only while something is connected.
    void SigAlarm(const QString &alarmMsg);
    void SigDBusServerClosing(const QString &msg);
    void SigError(const QString &errorMsg);
    void SigInfo(const QString &infoMsg);
    void SigTestComplete(const QString &testCompleteMsg);
    void SigTestCompleteWithData(const QString &msg, std::vector<double> data);
    void SigTestCompleteWithData(const QString &msg, std::vector<uint32_t> data);
    void SigUpdate(const QString &updateMsg);

private:
    /// The only place that builds a call. Qt's own asyncCall() does not accept structures and
    /// variants.
    template <typename... Args> QDBusPendingCall send(const char *member, const Args &...args)
    {
        return asyncCallWithArgumentList(QLatin1String(member),
                                         QVariantList { QVariant::fromValue(args)... });
    }
};

/// Proxy of the service's introspection interface. It completes the set of proxies. The program
/// itself never introspects a service and so never builds one.
class ComVarnDBusIntrospectableInterface : public QDBusAbstractInterface
{
    Q_OBJECT

public:
    static const char *staticInterfaceName() { return "com.varn.DBus.Introspectable"; }

    ComVarnDBusIntrospectableInterface(const QString &service, const QString &path,
                                       const QDBusConnection &connection, QObject *parent);
    ~ComVarnDBusIntrospectableInterface() override;

public Q_SLOTS:
    /// Sends the call and returns without waiting; the reply is one string, the XML.
    QDBusPendingReply<QString> Introspect()
    {
        return asyncCallWithArgumentList(QStringLiteral("Introspect"), {});
    }
};
