// SPDX-License-Identifier: MIT
#include "sim/service.h"

#include "bus/types.h"
#include "sim/resources.h"

#include <QDBusError>
#include <QLatin1String>

#include <algorithm>
#include <iterator>

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

} // namespace

Service::Service(const Catalog &catalog, const StateFiles &stateFiles,
                 const Announcer &signalAnnouncer, QObject *parent)
    : QDBusVirtualObject(parent)
    , announcer(signalAnnouncer)
    , files(stateFiles)
    , debugLog(catalog.debugLogs, files, announcer)
    , journal(catalog.logs, debugLog, announcer)
    , items(catalog.items)
    , notifier(items, announcer)
    , actions(catalog.actions, items, journal, announcer)
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
    QDBusMessage reply;
    if (method == nullptr) {
        reply = unknownMethod(message);
    } else {
        const Answer answer = (this->*method->handler)(message.arguments());
        reply = answer.refusal
            ? message.createErrorReply(answer.refusal->name, answer.refusal->sentence)
            : message.createReply(answer.values);
    }
    if (message.isReplyRequired()) {
        connection.send(reply);
    }
    return true;
}
