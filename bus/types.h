// SPDX-License-Identifier: MIT
// The structures and arrays of the interface, their streaming operators and their registration.
#pragma once

#include <QDBusArgument>
#include <QList>
#include <QMetaType>
#include <QString>
#include <QVariant>

#include <cstdint>
#include <utility>
#include <vector>

/// One item's id and value; D-Bus signature `(sv)`.
struct IdValueStruct {
    QString id;
    QVariant value; ///< what the variant on the bus holds, unwrapped one level
};

/// Streams `(sv)`; a value of any type is sent as a variant.
QDBusArgument &operator<<(QDBusArgument &out, const IdValueStruct &record);
/// Reads `(sv)`; an array of numbers other than bytes inside the variant stays an undecoded
/// QDBusArgument.
const QDBusArgument &operator>>(const QDBusArgument &in, IdValueStruct &record);

/// One item's id, value and status; D-Bus signature `(svi)`.
struct IdValueStatusStruct {
    QString id;
    QVariant value; ///< what the variant on the bus holds, unwrapped one level
    int status = 0; ///< as the service reports it
};

/// Streams `(svi)`; a value of any type is sent as a variant.
QDBusArgument &operator<<(QDBusArgument &out, const IdValueStatusStruct &record);
/// Reads `(svi)`; an array of numbers other than bytes inside the variant stays an undecoded
/// QDBusArgument.
const QDBusArgument &operator>>(const QDBusArgument &in, IdValueStatusStruct &record);

namespace busarray
{

/// Streams any container as a D-Bus array; an empty one keeps its element signature.
template <typename Container> QDBusArgument &write(QDBusArgument &out, const Container &elements)
{
    out.beginArray(qMetaTypeId<typename Container::value_type>());
    for (const auto &element : elements) {
        out << element;
    }
    out.endArray();
    return out;
}

/// Reads a D-Bus array; earlier contents of the container are discarded.
template <typename Container>
const QDBusArgument &read(const QDBusArgument &in, Container &elements)
{
    in.beginArray();
    elements.clear();
    while (!in.atEnd()) {
        typename Container::value_type element {};
        in >> element;
        elements.push_back(std::move(element));
    }
    in.endArray();
    return in;
}

} // namespace busarray

// Qt's generic operators match std::vector only with g++. Every compiler finds these, because they
// are in the global namespace, as QDBusArgument is.

/// Streams an array, by the element type: `ad`, `ai`, `au`, `ax` or `at` for the registered ones.
template <typename T> QDBusArgument &operator<<(QDBusArgument &out, const std::vector<T> &elements)
{
    return busarray::write(out, elements);
}

/// Reads an array, by the element type. The caller checks that the wire has that type.
template <typename T>
const QDBusArgument &operator>>(const QDBusArgument &in, std::vector<T> &elements)
{
    return busarray::read(in, elements);
}

/// Streams `a(sv)`.
QDBusArgument &operator<<(QDBusArgument &out, const QList<IdValueStruct> &records);
/// Reads `a(sv)`.
const QDBusArgument &operator>>(const QDBusArgument &in, QList<IdValueStruct> &records);
/// Streams `a(svi)`.
QDBusArgument &operator<<(QDBusArgument &out, const QList<IdValueStatusStruct> &records);
/// Reads `a(svi)`.
const QDBusArgument &operator>>(const QDBusArgument &in, QList<IdValueStatusStruct> &records);

// moc writes an argument-type registration for every declared type that it can see. The
// meta-objects of this program register only QDBusVariant.
#ifndef Q_MOC_RUN
Q_DECLARE_METATYPE(IdValueStruct)
Q_DECLARE_METATYPE(IdValueStatusStruct)
Q_DECLARE_METATYPE(std::vector<double>)
Q_DECLARE_METATYPE(std::vector<int32_t>)
Q_DECLARE_METATYPE(std::vector<uint32_t>)
Q_DECLARE_METATYPE(std::vector<qint64>)
Q_DECLARE_METATYPE(std::vector<quint64>)
#endif

/// Makes the nine types known to Qt and to Qt D-Bus, under the names that signal signatures use.
/// Must run before the first proxy exists; may be repeated.
void registerBusTypes();
