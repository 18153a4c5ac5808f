// SPDX-License-Identifier: MIT
// The types an item can have, and every way into and out of them: JSON, text, bus. Nothing is
// converted silently: what does not fit is refused with the reason.
#pragma once

#include "sim/errors.h"

#include <QString>
#include <QVariant>

#include <nlohmann/json_fwd.hpp>

#include <optional>

using Json = nlohmann::json;

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

/// Longest text of an item, in UTF-16 units: what an item holds must fit a message of the bus.
constexpr int longestText = 1048576;

/// The type of this name in a catalogue, such as `uint32[]`.
std::optional<ValueType> typeNamed(const QString &name);
/// The type with this D-Bus signature.
std::optional<ValueType> typeWithSignature(const QString &signature);
/// All names, for a sentence.
QString typeNames();
/// The type's name in a catalogue.
QString typeName(ValueType type);
/// The type's D-Bus signature.
QString busSignature(ValueType type);
/// The D-Bus signature of what a variant of the bus holds.
QString signatureOf(const QVariant &variant);
/// Whether the type is one of the array forms.
bool isArray(ValueType type);
/// Whether the type is a single number.
bool isNumber(ValueType type);

/// Reads a JSON value; numbers may also stand as text, for inf and nan.
QVariant valueFromJson(ValueType type, const Json &json, const Place &place);
/// Reads a single value's text; no array can be read this way.
QVariant valueFromText(ValueType type, const QString &text, const Place &place);
/// Takes a value out of a variant of the bus, whose type must be exactly the item's.
QVariant valueFromBus(ValueType type, const QVariant &variant, const Place &place);

/// The JSON value that valueFromJson() reads back without loss; 64-bit numbers stand as text, which
/// other readers of JSON keep exact.
Json valueToJson(ValueType type, const QVariant &value);
/// The value as text; the elements of an array are joined by one blank.
QString valueToText(ValueType type, const QVariant &value);
/// Whether two values of the type are the same; unlike ==, nan is the same as nan.
bool sameValue(ValueType type, const QVariant &left, const QVariant &right);
/// About how many bytes the value takes in a message; never less than it really does.
qint64 busSize(ValueType type, const QVariant &value);

/// What kind of JSON value this is, as in `is a number, not a string`.
QString jsonKind(const Json &json);
