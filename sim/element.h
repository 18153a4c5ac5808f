// SPDX-License-Identifier: MIT
// One element of a value, as a C++ type: overloads of the same few functions for text, truth
// values, whole numbers and doubles, from which the table of types is built.
#pragma once

#include <QJsonValue>
#include <QString>

#include <cstdint>

namespace element
{

/// Longest text of an item, in UTF-16 units: what an item holds must fit a message of the bus.
constexpr int longestText = 1048576;

// parse() and read() return what is wrong, or nothing when `out` has been set. `display` is the
// text as the reason shows it.
QString parse(const QString &text, const QString &display, QString &out);
QString parse(const QString &text, const QString &display, bool &out);
QString parse(const QString &text, const QString &display, int32_t &out);
QString parse(const QString &text, const QString &display, uint32_t &out);
QString parse(const QString &text, const QString &display, qint64 &out);
QString parse(const QString &text, const QString &display, quint64 &out);
QString parse(const QString &text, const QString &display, double &out);

QString read(const QJsonValue &json, QString &out);
QString read(const QJsonValue &json, bool &out);
QString read(const QJsonValue &json, int32_t &out);
QString read(const QJsonValue &json, uint32_t &out);
QString read(const QJsonValue &json, qint64 &out);
QString read(const QJsonValue &json, quint64 &out);
QString read(const QJsonValue &json, double &out);

QString toText(const QString &value);
QString toText(bool value);
QString toText(int32_t value);
QString toText(uint32_t value);
QString toText(qint64 value);
QString toText(quint64 value);
QString toText(double value);

QJsonValue toJson(const QString &value);
QJsonValue toJson(bool value);
QJsonValue toJson(int32_t value);
QJsonValue toJson(uint32_t value);
QJsonValue toJson(qint64 value);
QJsonValue toJson(quint64 value);
QJsonValue toJson(double value);

/// What kind of JSON value this is, as in `is a number, not a string`.
QString jsonKind(QJsonValue::Type type);

} // namespace element
