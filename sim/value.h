// SPDX-License-Identifier: MIT
// The types an item can have, and every way into and out of them: JSON, text, bus. Nothing is
// converted silently: what does not fit is refused with the reason.
#pragma once

#include <QJsonValue>
#include <QString>
#include <QVariant>

#include <optional>

/// An item's type; the order is that of the table in value.cpp.
enum class ValueType {
    String,
    Bool,
    Int32,
    Uint32,
    Int64,
    Uint64,
    Double,
    StringArray,
    Int32Array,
    Uint32Array,
    Int64Array,
    Uint64Array,
    DoubleArray,
};

/// A converted value, or what is wrong with it.
struct Conversion {
    QVariant value;
    QString problem; ///< empty when the value is good, else such as `70000 does not fit int32`
    int element = -1; ///< the array element that the problem is about; -1: the value as a whole
};

/// The type of this name in a catalogue, such as `uint32[]`.
std::optional<ValueType> typeNamed(const QString &name);
/// The type's name in a catalogue.
QString typeName(ValueType type);
/// The type's D-Bus signature.
QString busSignature(ValueType type);
/// Whether the type is one of the array forms.
bool isArray(ValueType type);
/// Whether the type is a single number.
bool isNumber(ValueType type);

/// Reads a JSON value; numbers may also stand as text, for 64 bits and for inf and nan.
Conversion valueFromJson(ValueType type, const QJsonValue &json);
/// Reads a single value's text; no array can be read this way.
Conversion valueFromText(ValueType type, const QString &text);
/// Takes a value out of a variant of the bus, whose type must be exactly the item's.
Conversion valueFromBus(ValueType type, const QVariant &variant);

/// The JSON value that valueFromJson() reads back without loss.
QJsonValue valueToJson(ValueType type, const QVariant &value);
/// The value as text; the elements of an array are joined by one blank.
QString valueToText(ValueType type, const QVariant &value);
/// Whether two values of the type are the same; unlike ==, nan is the same as nan.
bool sameValue(ValueType type, const QVariant &left, const QVariant &right);
/// About how many bytes the value takes in a message; never less than it really does.
qint64 busSize(ValueType type, const QVariant &value);
