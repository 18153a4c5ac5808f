// SPDX-License-Identifier: MIT
#include "bus/types.h"

#include <QDBusMetaType>
#include <QDBusVariant>

QDBusArgument &operator<<(QDBusArgument &out, const IdValueStruct &record)
{
    out.beginStructure();
    out << record.id << QDBusVariant(record.value);
    out.endStructure();
    return out;
}

const QDBusArgument &operator>>(const QDBusArgument &in, IdValueStruct &record)
{
    QDBusVariant boxed;
    in.beginStructure();
    in >> record.id >> boxed;
    in.endStructure();
    record.value = boxed.variant();
    return in;
}

QDBusArgument &operator<<(QDBusArgument &out, const IdValueStatusStruct &record)
{
    out.beginStructure();
    out << record.id << QDBusVariant(record.value) << record.status;
    out.endStructure();
    return out;
}

const QDBusArgument &operator>>(const QDBusArgument &in, IdValueStatusStruct &record)
{
    QDBusVariant boxed;
    in.beginStructure();
    in >> record.id >> boxed >> record.status;
    in.endStructure();
    record.value = boxed.variant();
    return in;
}

QDBusArgument &operator<<(QDBusArgument &out, const QList<IdValueStruct> &records)
{
    return busarray::write(out, records);
}

const QDBusArgument &operator>>(const QDBusArgument &in, QList<IdValueStruct> &records)
{
    return busarray::read(in, records);
}

QDBusArgument &operator<<(QDBusArgument &out, const QList<IdValueStatusStruct> &records)
{
    return busarray::write(out, records);
}

const QDBusArgument &operator>>(const QDBusArgument &in, QList<IdValueStatusStruct> &records)
{
    return busarray::read(in, records);
}

namespace
{

template <typename T> void registerType(const char *name)
{
    qRegisterMetaType<T>(name);
    qDBusRegisterMetaType<T>();
}

} // namespace

void registerBusTypes()
{
    // The order is fixed, because it decides the type ids: the signed arrays precede the unsigned.
    registerType<IdValueStruct>("IdValueStruct");
    registerType<QList<IdValueStruct>>("QList<IdValueStruct>");
    registerType<IdValueStatusStruct>("IdValueStatusStruct");
    registerType<QList<IdValueStatusStruct>>("QList<IdValueStatusStruct>");
    registerType<std::vector<double>>("std::vector<double>");
    registerType<std::vector<int32_t>>("std::vector<int32_t>");
    registerType<std::vector<uint32_t>>("std::vector<uint32_t>");
    registerType<std::vector<qint64>>("std::vector<qint64>");
    registerType<std::vector<quint64>>("std::vector<quint64>");
}
