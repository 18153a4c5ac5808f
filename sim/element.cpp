// SPDX-License-Identifier: MIT
#include "sim/element.h"

#include "sim/text.h"

#include <QLatin1String>
#include <QLocale>
#include <QRegularExpression>
#include <QVariant>

#include <cmath>
#include <limits>

namespace
{

template <typename T> struct NameOf;
template <> struct NameOf<int32_t> {
    static QLatin1String text() { return QLatin1String("int32"); }
};
template <> struct NameOf<uint32_t> {
    static QLatin1String text() { return QLatin1String("uint32"); }
};
template <> struct NameOf<qint64> {
    static QLatin1String text() { return QLatin1String("int64"); }
};
template <> struct NameOf<quint64> {
    static QLatin1String text() { return QLatin1String("uint64"); }
};

QString isNot(QJsonValue::Type found, const QString &wanted)
{
    return QStringLiteral("is %1, not %2").arg(element::jsonKind(found), wanted);
}

QString misfit(const QString &display, QLatin1String type)
{
    return QStringLiteral("%1 does not fit %2").arg(display, type);
}

bool isMinusZero(double value)
{
    return std::fpclassify(value) == FP_ZERO && std::signbit(value);
}

QString doubleText(double value)
{
    // Qt leaves the sign out.
    return isMinusZero(value) ? QStringLiteral("-0")
                              : QString::number(value, 'g', QLocale::FloatingPointShortest);
}

template <typename T> QString parseInteger(const QString &text, const QString &display, T &out)
{
    static const QRegularExpression wholeNumber(QStringLiteral("\\A-?[0-9]+\\z"));
    if (!wholeNumber.match(text).hasMatch()) {
        return QStringLiteral("%1 is not a whole number").arg(display);
    }
    bool fits = false;
    if (text.startsWith(QLatin1Char('-'))) {
        const qint64 wide = text.toLongLong(&fits);
        // The least value of an unsigned type is 0, which every negative number is below.
        fits = fits && wide >= static_cast<qint64>(std::numeric_limits<T>::min());
        out = static_cast<T>(wide);
    } else {
        const quint64 wide = text.toULongLong(&fits);
        fits = fits && wide <= static_cast<quint64>(std::numeric_limits<T>::max());
        out = static_cast<T>(wide);
    }
    return fits ? QString() : misfit(display, NameOf<T>::text());
}

template <typename T> QString readInteger(const QJsonValue &json, T &out)
{
    if (json.isString()) {
        return element::parse(json.toString(), quoted(json.toString()), out);
    }
    if (!json.isDouble()) {
        return isNot(json.type(), QStringLiteral("a number"));
    }
    const QVariant number = json.toVariant();
    // Qt rounds what is just below the least qint64 up to it.
    constexpr qint64 least = std::numeric_limits<qint64>::min();
    if (number.userType() == QMetaType::LongLong && number.toLongLong() != least) {
        const QString text = QString::number(number.toLongLong());
        return element::parse(text, text, out);
    }
    const double value = json.toDouble();
    if (value != std::trunc(value)) {
        return QStringLiteral("%1 is not a whole number").arg(doubleText(value));
    }
    // Beyond 53 bits a JSON number may have been rounded before it arrives here.
    constexpr double firstInexact = 9007199254740992.0;
    if (std::abs(value) >= firstInexact) {
        return QStringLiteral("%1 is not exact as a JSON number; write it between quotes")
            .arg(doubleText(value));
    }
    const QString text = QString::number(static_cast<qint64>(value));
    return element::parse(text, text, out);
}

} // namespace

namespace element
{

QString parse(const QString &text, const QString &, QString &out)
{
    if (text.contains(QChar(QChar::Null))) {
        return QStringLiteral("the text holds the character U+0000, which the bus cannot carry");
    }
    if (text.size() > longestText) {
        return QStringLiteral("the text is longer than %1 characters").arg(longestText);
    }
    out = text;
    return {};
}

QString parse(const QString &text, const QString &display, bool &out)
{
    out = text == QLatin1String("true") || text == QLatin1String("1");
    const bool known = out || text == QLatin1String("false") || text == QLatin1String("0");
    return known ? QString() : QStringLiteral("%1 is not true, false, 1 or 0").arg(display);
}

QString parse(const QString &text, const QString &display, int32_t &out)
{
    return parseInteger(text, display, out);
}

QString parse(const QString &text, const QString &display, uint32_t &out)
{
    return parseInteger(text, display, out);
}

QString parse(const QString &text, const QString &display, qint64 &out)
{
    return parseInteger(text, display, out);
}

QString parse(const QString &text, const QString &display, quint64 &out)
{
    return parseInteger(text, display, out);
}

QString parse(const QString &text, const QString &display, double &out)
{
    static const QRegularExpression number(QStringLiteral(
        "\\A-?(?:(?:[0-9]+(?:\\.[0-9]*)?|\\.[0-9]+)(?:[eE][-+]?[0-9]+)?|inf|nan)\\z"));
    if (!number.match(text).hasMatch()) {
        return QStringLiteral("%1 is not a number").arg(display);
    }
    if (text.endsWith(QLatin1String("nan"))) {
        out = std::numeric_limits<double>::quiet_NaN();
        return {};
    }
    bool fits = false;
    out = text.toDouble(&fits);
    return fits ? QString() : misfit(display, QLatin1String("double"));
}

QString read(const QJsonValue &json, QString &out)
{
    return json.isString() ? parse(json.toString(), {}, out)
                           : isNot(json.type(), QStringLiteral("a string"));
}

QString read(const QJsonValue &json, bool &out)
{
    out = json.toBool();
    return json.isBool() ? QString() : isNot(json.type(), QStringLiteral("true or false"));
}

QString read(const QJsonValue &json, int32_t &out)
{
    return readInteger(json, out);
}

QString read(const QJsonValue &json, uint32_t &out)
{
    return readInteger(json, out);
}

QString read(const QJsonValue &json, qint64 &out)
{
    return readInteger(json, out);
}

QString read(const QJsonValue &json, quint64 &out)
{
    return readInteger(json, out);
}

QString read(const QJsonValue &json, double &out)
{
    if (json.isString()) {
        return parse(json.toString(), quoted(json.toString()), out);
    }
    out = json.toDouble();
    return json.isDouble() ? QString() : isNot(json.type(), QStringLiteral("a number"));
}

QString toText(const QString &value)
{
    return value;
}

QString toText(bool value)
{
    return value ? QStringLiteral("true") : QStringLiteral("false");
}

QString toText(int32_t value)
{
    return QString::number(value);
}

QString toText(uint32_t value)
{
    return QString::number(value);
}

QString toText(qint64 value)
{
    return QString::number(value);
}

QString toText(quint64 value)
{
    return QString::number(value);
}

QString toText(double value)
{
    return doubleText(value);
}

QJsonValue toJson(const QString &value)
{
    return { value };
}

QJsonValue toJson(bool value)
{
    return { value };
}

QJsonValue toJson(int32_t value)
{
    return { value };
}

QJsonValue toJson(uint32_t value)
{
    return { static_cast<qint64>(value) };
}

QJsonValue toJson(qint64 value)
{
    return { toText(value) };
}

QJsonValue toJson(quint64 value)
{
    return { toText(value) };
}

QJsonValue toJson(double value)
{
    // JSON has neither infinities nor nan, and Qt's has no -0.
    return std::isfinite(value) && !isMinusZero(value) ? QJsonValue(value)
                                                       : QJsonValue(doubleText(value));
}

QString jsonKind(QJsonValue::Type type)
{
    switch (type) {
    case QJsonValue::Null:
        return QStringLiteral("null");
    case QJsonValue::Bool:
        return QStringLiteral("a truth value");
    case QJsonValue::Double:
        return QStringLiteral("a number");
    case QJsonValue::String:
        return QStringLiteral("a string");
    case QJsonValue::Array:
        return QStringLiteral("an array");
    case QJsonValue::Object:
        return QStringLiteral("an object");
    case QJsonValue::Undefined:
        break;
    }
    return QStringLiteral("missing");
}

} // namespace element
