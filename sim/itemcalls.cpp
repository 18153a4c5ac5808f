// SPDX-License-Identifier: MIT
// The calls that list, read and set items.
#include "bus/types.h"
#include "sim/service.h"
#include "sim/text.h"

#include <QDBusArgument>
#include <QDBusVariant>
#include <QList>

namespace
{

int statusOf(const Item &item)
{
    return item.status;
}

IdValueStatusStruct valueAndStatusOf(const Item &item)
{
    return { item.id, item.value, item.status };
}

} // namespace

std::optional<Refusal> Service::lookUp(const QStringList &ids, QVector<int> &indexes)
{
    indexes.reserve(ids.size());
    for (const QString &id : ids) {
        const int index = items.indexOf(id);
        if (index < 0) {
            const Refusal refusal = unknownId(id);
            journal.recordRefusal(id, refusal);
            return refusal;
        }
        indexes.append(index);
    }
    return {};
}

std::optional<Refusal> Service::checkSize(const QVector<int> &indexes) const
{
    // The bus closes the connection of who sends more than it carries in one message.
    constexpr qint64 mostBytes = 67108864;
    constexpr qint64 mostBytesOfFrame = 32;
    qint64 bytes = 0;
    for (const int index : indexes) {
        const Item &item = items.at(index);
        bytes +=
            busSize(item.type, item.value) + busSize(ValueType::String, item.id) + mostBytesOfFrame;
    }
    if (bytes <= mostBytes) {
        return {};
    }
    return badValue(
        QStringLiteral("The values of %1 items do not fit one answer.").arg(indexes.size()));
}

std::optional<Refusal> Service::lookUpToRead(const QVariantList &arguments, QVector<int> &indexes)
{
    // One identifier arrives as a list of one.
    if (auto refusal = lookUp(arguments.at(0).toStringList(), indexes)) {
        return refusal;
    }
    if (auto refusal = checkSize(indexes)) {
        return refusal;
    }
    for (const int index : indexes) {
        journal.record(LogLevel::Debug, items.at(index).id, QStringLiteral("read"));
    }
    return {};
}

template <typename Show> Answer Service::readOne(const QVariantList &arguments, Show show)
{
    QVector<int> indexes;
    if (auto refusal = lookUpToRead(arguments, indexes)) {
        return { {}, refusal };
    }
    return { { QVariant::fromValue(show(items.at(indexes.first()))) }, {} };
}

template <typename Show> Answer Service::readAll(const QVariantList &arguments, Show show)
{
    QVector<int> indexes;
    if (auto refusal = lookUpToRead(arguments, indexes)) {
        return { {}, refusal };
    }
    QList<decltype(show(items.at(0)))> shown;
    for (const int index : indexes) {
        shown.append(show(items.at(index)));
    }
    return { { QVariant::fromValue(shown) }, {} };
}

Answer Service::getStatus(const QVariantList &arguments)
{
    return readOne(arguments, statusOf);
}

Answer Service::getStatuses(const QVariantList &arguments)
{
    return readAll(arguments, statusOf);
}

Answer Service::getValue(const QVariantList &arguments)
{
    return readOne(arguments, [](const Item &item) { return QDBusVariant(item.value); });
}

Answer Service::getValues(const QVariantList &arguments)
{
    return readAll(arguments, [](const Item &item) {
        return IdValueStruct { item.id, item.value };
    });
}

Answer Service::getValueStatus(const QVariantList &arguments)
{
    return readOne(arguments, valueAndStatusOf);
}

Answer Service::getValueStatuses(const QVariantList &arguments)
{
    return readAll(arguments, valueAndStatusOf);
}

Answer Service::listConfigIds(const QVariantList & /*arguments*/)
{
    return { { items.ids(ItemKind::Config) }, {} };
}

Answer Service::listResultIds(const QVariantList & /*arguments*/)
{
    return { { items.ids(ItemKind::Result) }, {} };
}

Answer Service::setValue(const QVariantList &arguments)
{
    return assignAll(
        { { arguments.at(0).toString(), arguments.at(1).value<QDBusVariant>().variant() } });
}

Answer Service::setValues(const QVariantList &arguments)
{
    return assignAll(qdbus_cast<QList<IdValueStruct>>(arguments.at(0)));
}

std::optional<Refusal> Service::convert(const IdValueStruct &wanted, Assignment &assignment) const
{
    assignment.index = items.indexOf(wanted.id);
    if (assignment.index < 0) {
        return unknownId(wanted.id);
    }
    const Item &item = items.at(assignment.index);
    if (item.kind == ItemKind::Result) {
        return readOnly(item.id);
    }
    // Who sets one value by hand sends its text and leaves the type to the service.
    const bool isText = wanted.value.userType() == QMetaType::QString;
    if (isText && isArray(item.type)) {
        return badValue(QStringLiteral("%1 is an array of type %2; SETARRAY sets it.")
                            .arg(quoted(item.id), typeName(item.type)));
    }
    const Conversion conversion = isText ? valueFromText(item.type, wanted.value.toString())
                                         : valueFromBus(item.type, wanted.value);
    if (!conversion.problem.isEmpty()) {
        return badValue(
            QStringLiteral("%1 cannot be set: %2.").arg(quoted(item.id), conversion.problem));
    }
    assignment.value = conversion.value;
    return {};
}

Answer Service::assignAll(const QList<IdValueStruct> &wanted)
{
    QVector<Assignment> assignments;
    for (const IdValueStruct &each : wanted) {
        Assignment assignment;
        if (const auto refusal = convert(each, assignment)) {
            journal.recordRefusal(each.id, *refusal);
            // Clients set without waiting for the answer, so that a refusal shows in monitors only.
            announcer.error(refusal->sentence);
            return { {}, refusal };
        }
        assignments.append(assignment);
    }
    for (const Assignment &assignment : assignments) {
        const Item &item = items.at(assignment.index);
        journal.record(LogLevel::Info, item.id,
                       QStringLiteral("set to ") + shown(valueToText(item.type, assignment.value)));
    }
    items.assign(assignments);
    return {};
}
