// SPDX-License-Identifier: MIT
#include "sim/service.h"

#include "bus/types.h"

#include <QCoreApplication>
#include <QDBusError>
#include <QDBusVariant>

#include <iterator>
#include <tuple>
#include <type_traits>

namespace
{

/// What the calls that read return for an item.
template <typename Told> Told tell(const Item &item)
{
    if constexpr (std::is_same_v<Told, int>) {
        return item.status;
    } else if constexpr (std::is_same_v<Told, QDBusVariant>) {
        return QDBusVariant(item.value);
    } else if constexpr (std::is_same_v<Told, IdValueStruct>) {
        return { item.id, item.value };
    } else {
        return { item.id, item.value, item.status };
    }
}

QDBusMessage errorReply(const QDBusMessage &call, const Refusal &refusal)
{
    const QString name =
        refusal.name.contains(QLatin1Char('.')) ? refusal.name : "varn.pim.Error."_q + refusal.name;
    return call.createErrorReply(name, refusal.sentence);
}

using Self = Service &;
using In = const QVariantList &;
using Out = QVariantList &;

QString text(In arguments, int index = 0)
{
    return arguments.at(index).toString();
}

/// The ids in the first argument: a single one, a list, or a list with values.
QStringList idsIn(In arguments)
{
    const QVariant first = arguments.value(0);
    // QVariant makes a list of a single one.
    QStringList ids = first.toStringList();
    if (first.userType() == qMetaTypeId<QDBusArgument>()) {
        for (const IdValueStruct &each : qdbus_cast<QList<IdValueStruct>>(first)) {
            ids.append(each.id);
        }
    }
    return ids;
}

/// What the variant of the second argument holds.
QVariant inner(In arguments)
{
    return arguments.at(1).value<QDBusVariant>().variant();
}

} // namespace

struct Service::Method {
    const char *member;
    const char *signature;
    /// Takes the arguments of a call whose signature fits, and adds the values of the answer.
    void (*handler)(Self service, In arguments, Out answer);
};

const Service::Method Service::methods[] = {
    { "AddToNotifyList", "as", [](Self s, In a, Out) { s.items.listen(idsIn(a)); } },
    { "AddToNotifyList", "s", [](Self s, In a, Out) { s.items.listen(idsIn(a)); } },
    { "ClearConfigNotifyList", "", [](Self s, In, Out) { s.items.ignoreAll(ItemKind::Config); } },
    { "ClearResultNotifyList", "", [](Self s, In, Out) { s.items.ignoreAll(ItemKind::Result); } },
    { "DbgLogCmd", "ss", [](Self s, In a, Out) { s.log.command(text(a), text(a, 1)); } },
    { "DbgLogGetIds", "", [](Self s, In, Out out) { out = { s.catalog.debugLogs }; } },
    { "DBusServerCmd", "sv", [](Self s, In a, Out) { s.serverCommand(text(a), inner(a)); } },
    { "DBusServerStatus", "", [](Self s, In, Out out) { out = { s.changes.runningCount() }; } },
    { "DeleteFromNotifyList", "as", [](Self s, In a, Out) { s.items.ignore(idsIn(a)); } },
    { "DeleteFromNotifyList", "s", [](Self s, In a, Out) { s.items.ignore(idsIn(a)); } },
    { "DoAction", "ss",
      [](Self s, In a, Out out) { out = { s.changes.startAction(text(a), text(a, 1)) }; } },
    { "DoAction", "s", [](Self s, In a, Out) { s.changes.startAction(text(a), {}); } },
    { "GetStatus", "as", [](Self s, In a, Out out) { out = s.read<int>(a); } },
    { "GetStatus", "s", [](Self s, In a, Out out) { out = s.read<int>(a); } },
    { "GetValue", "as", [](Self s, In a, Out out) { out = s.read<IdValueStruct>(a); } },
    { "GetValue", "s", [](Self s, In a, Out out) { out = s.read<QDBusVariant>(a); } },
    { "GetValueStatus", "as", [](Self s, In a, Out out) { out = s.read<IdValueStatusStruct>(a); } },
    { "GetValueStatus", "s", [](Self s, In a, Out out) { out = s.read<IdValueStatusStruct>(a); } },
    { "ListActionIds", "", [](Self s, In, Out out) { out = { s.changes.actionIds() }; } },
    { "ListConfigIds", "", [](Self s, In, Out out) { out = { s.items.ids(ItemKind::Config) }; } },
    { "ListResultIds", "", [](Self s, In, Out out) { out = { s.items.ids(ItemKind::Result) }; } },
    { "LoadConfig", "s", [](Self s, In a, Out out) { out = { s.loadConfig(text(a)) }; } },
    { "LogClear", "s", [](Self s, In a, Out) { s.log.check(text(a)); } },
    { "LogGetIds", "", [](Self s, In, Out out) { out = { s.catalog.logs.join(" "_q) }; } },
    { "LogStartNotify", "s", [](Self s, In a, Out) { s.log.announce(text(a), true); } },
    { "LogStopNotify", "s", [](Self s, In a, Out) { s.log.announce(text(a), false); } },
    { "SaveConfig", "s", [](Self s, In a, Out out) { out = { s.saveConfig(text(a)) }; } },
    { "SetValue", "a(sv)", [](Self s, In a, Out) { s.set(a); } },
    { "SetValue", "sv", [](Self s, In a, Out) { s.set(a); } },
    { "StartConfigNotify", "", [](Self s, In, Out) { s.items.start(ItemKind::Config); } },
    { "StartResultNotify", "", [](Self s, In, Out) { s.items.start(ItemKind::Result); } },
    { "StopConfigNotify", "", [](Self s, In, Out) { s.items.stop(ItemKind::Config); } },
    { "StopResultNotify", "", [](Self s, In, Out) { s.items.stop(ItemKind::Result); } },
};

Service::Service(const Catalog &catalogOfService, StateFiles &stateFiles,
                 Announcer &signalAnnouncer, QVector<Fault> faultsOnDemand)
    : files(stateFiles)
    , announcer(signalAnnouncer)
    , catalog(catalogOfService)
    , log(catalog.logs, catalog.debugLogs, files, announcer)
    , items(catalog.items, log, announcer)
    , changes(catalog.actions, catalog.timeline, items, log, announcer)
    , faults(std::move(faultsOnDemand))
{
    registerBusTypes();
}

bool Service::hasMember(const QString &name)
{
    return std::any_of(std::begin(methods), std::end(methods),
                       [&name](const Method &each) { return name == QLatin1String(each.member); });
}

QString Service::introspect(const QString & /*path*/) const
{
    return {};
}

bool Service::handleMessage(const QDBusMessage &message, const QDBusConnection &connection)
{
    const QString wanted = message.interface();
    if (wanted == "org.freedesktop.DBus.Introspectable"_q && message.member() == "Introspect"_q) {
        connection.send(message.createReply(QString::fromUtf8(builtIn("varn.pim.xml"_q))));
        return true;
    }
    const auto *method =
        std::find_if(std::begin(methods), std::end(methods), [&message](const Method &each) {
            return message.member() == QLatin1String(each.member)
                && message.signature() == QLatin1String(each.signature);
        });
    const bool isKnown = method != std::end(methods);
    if (wanted.isEmpty() ? !isKnown : wanted != "varn.pim"_q) {
        return false;
    }
    if (vanished) {
        return true;
    }
    if (!isKnown) {
        // Qt would call the whole interface unknown.
        const QString sentence =
            "No such method '%1' in interface 'varn.pim' at object path '%2' "
            "(signature '%3')"_q.arg(message.member(), message.path(), message.signature());
        announcer.reply(message, message.createErrorReply(QDBusError::UnknownMethod, sentence));
    } else if (const Fault *fault = faultFor(message)) {
        suffer(*fault, *method, message);
    } else {
        answer(*method, message);
    }
    return true;
}

void Service::answer(const Method &method, const QDBusMessage &call)
{
    try {
        QVariantList values;
        method.handler(*this, call.arguments(), values);
        announcer.reply(call, call.createReply(values));
    } catch (const Refusal &refusal) {
        if (!refusal.about.isNull()) {
            log.record(LogLevel::Error, refusal.about, "refused: "_q + refusal.sentence);
        }
        // Clients do not wait for the answer to SetValue, so only monitors show a refusal.
        if (call.member() == "SetValue"_q) {
            announcer.error(refusal.sentence);
        }
        announcer.reply(call, errorReply(call, refusal));
    }
}

const Fault *Service::faultFor(const QDBusMessage &call)
{
    const Fault *found = nullptr;
    const QStringList ids = idsIn(call.arguments());
    const auto rank = [](const Fault &fault) {
        return std::make_tuple(!fault.member.isNull(), !fault.id.isNull(), fault.only != 0);
    };
    for (Fault &fault : faults) {
        if ((!fault.member.isNull() && fault.member != call.member())
            || (!fault.id.isNull() && !ids.contains(fault.id))) {
            continue;
        }
        ++fault.calls;
        if ((fault.only == 0 || fault.only == fault.calls)
            && (found == nullptr || rank(fault) >= rank(*found))) {
            found = &fault;
        }
    }
    return found;
}

void Service::suffer(const Fault &fault, const Method &method, const QDBusMessage &call)
{
    // No member of the interface answers with a double.
    constexpr double ofAnotherType = 1.5;
    switch (fault.kind) {
    case Fault::Kind::Delay:
        QTimer::singleShot(fault.delay, Qt::PreciseTimer, this, [this, &method, call] {
            if (!vanished) {
                answer(method, call);
            }
        });
        break;
    case Fault::Kind::Refuse:
        announcer.reply(call, errorReply(call, { fault.error, fault.text }));
        break;
    case Fault::Kind::WrongType:
        announcer.reply(call, call.createReply(ofAnotherType));
        break;
    case Fault::Kind::Vanish:
        vanished = true;
        QCoreApplication::quit();
        [[fallthrough]];
    case Fault::Kind::Silence:
        announcer.record(call);
        break;
    }
}

template <typename Told> QVariantList Service::read(const QVariantList &arguments)
{
    // The bus closes the connection of a client that sends a longer message.
    constexpr qint64 mostBytes = 67108864;
    constexpr qint64 mostBytesOfFrame = 40;
    constexpr qint64 mostBytesOfUnit = 3;
    const QVector<int> indexes = items.find(idsIn(arguments));
    QList<Told> told;
    qint64 bytes = 0;
    for (const int index : indexes) {
        const Item &item = items.at(index);
        told.append(tell<Told>(item));
        bytes += std::is_same_v<Told, int>
            ? qint64 { sizeof(Told) }
            : mostBytesOfFrame + mostBytesOfUnit * item.id.size() + item.type->busSize(item.value);
    }
    if (bytes > mostBytes) {
        throw badValue("The values of %1 items do not fit one answer."_q.arg(indexes.size()));
    }
    for (const int index : indexes) {
        log.record(LogLevel::Debug, items.at(index).id, "read"_q);
    }
    const bool isList = arguments.at(0).userType() == QMetaType::QStringList;
    return { isList ? QVariant::fromValue(told) : QVariant::fromValue(told.first()) };
}

void Service::set(const QVariantList &arguments)
{
    const QList<IdValueStruct> wanted = arguments.size() == 1
        ? qdbus_cast<QList<IdValueStruct>>(arguments.at(0))
        : QList<IdValueStruct> { { text(arguments), inner(arguments) } };
    QVector<Assignment> assignments;
    for (const IdValueStruct &each : wanted) {
        const int index = items.find({ each.id }).first();
        const Item &item = items.at(index);
        const QString id = quoted(item.id);
        if (item.kind == ItemKind::Result) {
            throw Refusal { "ReadOnly"_q, id + " is a result, which cannot be set."_q, item.id };
        }
        // movra sends each value as text and leaves the conversion to the service.
        const bool isText = each.value.userType() == QMetaType::QString;
        if (isText && item.type->isArray) {
            const QString sentence = "%1 is an array of type %2; SETARRAY sets it."_q;
            throw badValue(sentence.arg(id, QLatin1String(item.type->name)), item.id);
        }
        const Place place { "BadValue"_q, {}, id + " cannot be set"_q, "."_q, item.id };
        assignments.append({ index,
                             isText ? item.type->fromText(each.value.toString(), place)
                                    : item.type->fromBus(each.value, place) });
    }
    items.assign(assignments, "set to "_q);
}

void Service::serverCommand(const QString &word, const QVariant &value)
{
    const bool forConfigs = word == "SET_CFG_NOTIFY_TIMER"_q;
    if (!forConfigs && word != "SET_RES_NOTIFY_TIMER"_q) {
        throw Refusal { "UnknownCommand"_q, "There is no command %1."_q.arg(quoted(word)) };
    }
    if (value.userType() != QMetaType::Int) {
        throw badValue("%1 takes a number of milliseconds of D-Bus type \"i\"."_q.arg(word));
    }
    if (value.toInt() < 0 || value.toInt() > longestTime) {
        throw badValue("%1 takes 0 to %2 milliseconds, not %3."_q.arg(word)
                           .arg(longestTime)
                           .arg(value.toInt()));
    }
    items.setPace(forConfigs ? ItemKind::Config : ItemKind::Result, value.toInt());
}

bool Service::saveConfig(const QString &name)
{
    if (log.writesTo(name)) {
        throw Refusal { "File"_q,
                        "Cannot write %1: it is the debug log."_q.arg(quoted(files.pathOf(name))) };
    }
    files.write(name, writeConfigs(items));
    announcer.info("configuration saved to %1"_q.arg(files.pathOf(name)));
    return true;
}

bool Service::loadConfig(const QString &name)
{
    const Place place { "File"_q, quoted(files.pathOf(name)) + " is damaged: "_q, {}, "."_q };
    items.assign(readConfigs(files.read(name), items, place), "loaded as "_q);
    announcer.info("configuration loaded from %1"_q.arg(files.pathOf(name)));
    return true;
}
