// SPDX-License-Identifier: MIT
#include "sim/service.h"

#include "bus/types.h"
#include "sim/resources.h"

#include <QDBusError>
#include <QLatin1String>
#include <QTimer>

#include <algorithm>
#include <iterator>
#include <utility>

struct Service::MethodRow {
    const char *member;
    const char *signature;
    Answer (Service::*handler)(const QVariantList &arguments);
};

const Service::MethodRow Service::methods[] = {
    { "AddToNotifyList", "as", &Service::addToNotifyList },
    { "AddToNotifyList", "s", &Service::addToNotifyList },
    { "ClearConfigNotifyList", "", &Service::clearConfigNotifyList },
    { "ClearResultNotifyList", "", &Service::clearResultNotifyList },
    { "DbgLogCmd", "ss", &Service::dbgLogCmd },
    { "DbgLogGetIds", "", &Service::dbgLogGetIds },
    { "DBusServerCmd", "sv", &Service::dBusServerCmd },
    { "DBusServerStatus", "", &Service::dBusServerStatus },
    { "DeleteFromNotifyList", "as", &Service::deleteFromNotifyList },
    { "DeleteFromNotifyList", "s", &Service::deleteFromNotifyList },
    { "DoAction", "ss", &Service::doActionWithValue },
    { "DoAction", "s", &Service::doAction },
    { "GetStatus", "as", &Service::getStatuses },
    { "GetStatus", "s", &Service::getStatus },
    { "GetValue", "as", &Service::getValues },
    { "GetValue", "s", &Service::getValue },
    { "GetValueStatus", "as", &Service::getValueStatuses },
    { "GetValueStatus", "s", &Service::getValueStatus },
    { "ListActionIds", "", &Service::listActionIds },
    { "ListConfigIds", "", &Service::listConfigIds },
    { "ListResultIds", "", &Service::listResultIds },
    { "LoadConfig", "s", &Service::loadConfig },
    { "LogClear", "s", &Service::logClear },
    { "LogGetIds", "", &Service::logGetIds },
    { "LogStartNotify", "s", &Service::logStartNotify },
    { "LogStopNotify", "s", &Service::logStopNotify },
    { "SaveConfig", "s", &Service::saveConfig },
    { "SetValue", "a(sv)", &Service::setValues },
    { "SetValue", "sv", &Service::setValue },
    { "StartConfigNotify", "", &Service::startConfigNotify },
    { "StartResultNotify", "", &Service::startResultNotify },
    { "StopConfigNotify", "", &Service::stopConfigNotify },
    { "StopResultNotify", "", &Service::stopResultNotify },
};

namespace
{

QDBusMessage unknownMethod(const QDBusMessage &message)
{
    // Qt would name the whole interface as unknown, which it is not.
    return message.createErrorReply(
        QDBusError::UnknownMethod,
        QStringLiteral("No such method '%1' in interface 'varn.pim' at object path '%2' "
                       "(signature '%3')")
            .arg(message.member(), message.path(), message.signature()));
}

void reply(const QDBusConnection &connection, const QDBusMessage &call, const QDBusMessage &answer)
{
    if (call.isReplyRequired()) {
        connection.send(answer);
    }
}

void refuse(const QDBusConnection &connection, const QDBusMessage &call, const Refusal &refusal)
{
    reply(connection, call, call.createErrorReply(refusal.name, refusal.sentence));
}

} // namespace

Service::Service(const Catalog &catalog, const StateFiles &stateFiles,
                 const Announcer &signalAnnouncer, QVector<Fault> faultsOnDemand, QObject *parent)
    : QDBusVirtualObject(parent)
    , announcer(signalAnnouncer)
    , files(stateFiles)
    , debugLog(catalog.debugLogs, files, announcer)
    , journal(catalog.logs, debugLog, announcer)
    , items(catalog.items)
    , notifier(items, announcer)
    , actions(catalog.actions, items, journal, announcer)
    , faults(std::move(faultsOnDemand))
{
    registerBusTypes();
    // Qt puts the document around it, with the interfaces that it answers for itself.
    const QString document = QString::fromUtf8(interfaceXml());
    const QString end = QStringLiteral("</interface>\n");
    const int from = document.indexOf(QLatin1String("  <interface "));
    interface = document.mid(from, document.indexOf(end) + end.size() - from);
}

QString Service::introspect(const QString & /*path*/) const
{
    return interface;
}

const Service::MethodRow *Service::find(const QDBusMessage &message)
{
    const auto *row =
        std::find_if(std::begin(methods), std::end(methods), [&message](const MethodRow &each) {
            return message.member() == QLatin1String(each.member)
                && message.signature() == QLatin1String(each.signature);
        });
    return row == std::end(methods) ? nullptr : row;
}

bool Service::handleMessage(const QDBusMessage &message, const QDBusConnection &connection)
{
    const QString wanted = message.interface();
    const MethodRow *method = find(message);
    if (wanted.isEmpty() ? method == nullptr : wanted != QLatin1String("varn.pim")) {
        return false;
    }
    if (hasVanished) {
        return true;
    }
    if (method == nullptr) {
        reply(connection, message, unknownMethod(message));
    } else if (const Fault *fault = faultOf(faults, message.member())) {
        suffer(*fault, *method, message, connection);
    } else {
        answer(*method, message, connection);
    }
    return true;
}

void Service::answer(const MethodRow &method, const QDBusMessage &message,
                     const QDBusConnection &connection)
{
    const Answer answer = (this->*method.handler)(message.arguments());
    if (answer.refusal) {
        refuse(connection, message, *answer.refusal);
    } else {
        reply(connection, message, message.createReply(answer.values));
    }
}

void Service::suffer(const Fault &fault, const MethodRow &method, const QDBusMessage &message,
                     const QDBusConnection &connection)
{
    // No member of the interface answers with a double.
    constexpr double ofAnotherType = 1.5;
    switch (fault.kind) {
    case Fault::Kind::Delay:
        QTimer::singleShot(fault.delay, Qt::PreciseTimer, this,
                           [this, &method, message, connection] {
                               if (!hasVanished) {
                                   answer(method, message, connection);
                               }
                           });
        break;
    case Fault::Kind::Refuse:
        refuse(connection, message, onDemand(fault.text));
        break;
    case Fault::Kind::WrongType:
        reply(connection, message, message.createReply(ofAnotherType));
        break;
    case Fault::Kind::Vanish:
        hasVanished = true;
        Q_EMIT vanished();
        break;
    case Fault::Kind::Silence:
        break;
    }
}
