// SPDX-License-Identifier: MIT
// The types an item can have, and every way into and out of them: JSON, text, bus. Nothing is
// converted silently: what does not fit is refused with the reason.
#pragma once

#include "sim/errors.h"

#include <QVariant>

#include <nlohmann/json_fwd.hpp>

using Json = nlohmann::json;

/// A type of items. Its values are variants as the bus library takes them.
struct ValueType {
    const char *name; ///< in a catalogue, such as `uint32[]`
    const char *signature; ///< on the bus
    bool isArray;
    bool isNumber; ///< a single one
    /// Reads a JSON value; numbers may also be given as text, for inf and nan.
    QVariant (*fromJson)(const Json &json, const Place &place);
    /// Reads a single value's text; no array can be read this way.
    QVariant (*fromText)(const QString &text, const Place &place);
    /// Takes a value out of a variant of the bus, which must be of exactly this type and no larger
    /// than an item may be.
    QVariant (*fromBus)(const QVariant &variant, const Place &place);
    /// The JSON value that fromJson() reads back without loss, different for different values;
    /// 64-bit numbers become text, which other readers of JSON keep exact.
    Json (*toJson)(const QVariant &value);
    /// The value as text; the elements of an array are joined by one blank.
    QString (*toText)(const QVariant &value);
    /// About how many bytes the value takes in a message; never less than it really does.
    qint64 (*busSize)(const QVariant &value);
};

/// Longest text of an item, in UTF-16 units: what an item holds must fit a message of the bus.
constexpr int longestText = 1048576;

/// The type of this name; null: there is none.
const ValueType *typeNamed(const QString &name);
/// The type with this D-Bus signature; null: there is none.
const ValueType *typeWithSignature(const QString &signature);
/// All names, for a sentence.
QString typeNames();
/// The D-Bus signature of what a variant of the bus holds.
QString signatureOf(const QVariant &variant);

/// Refuses a JSON value that is not of the wanted kind, such as "an array".
void needKind(bool isWanted, const Json &json, const char *wanted, const Place &place);
/// A JSON string as text.
QString textOf(const Json &json);
