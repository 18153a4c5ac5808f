// SPDX-License-Identifier: MIT
#include "sim/value.h"

#include "bus/types.h"

#include <QDBusMetaType>
#include <QLocale>
#include <QRegularExpression>
#include <QStringList>

#include <charconv>
#include <cmath>
#include <iterator>
#include <nlohmann/json.hpp>
#include <string>
#include <system_error>
#include <type_traits>

namespace
{

template <typename T> constexpr bool isText = std::is_same_v<T, QString>;
template <typename T> constexpr bool isTruth = std::is_same_v<T, bool>;
template <typename T> constexpr bool isReal = std::is_same_v<T, double>;
template <typename T> constexpr bool isList = !isText<T> && !std::is_arithmetic_v<T>;

template <typename T> QString toText(const T &value)
{
    if constexpr (isList<T>) {
        QStringList texts;
        for (const auto &each : value) {
            texts.append(toText<typename T::value_type>(each));
        }
        return texts.join(QLatin1Char(' '));
    } else if constexpr (isText<T>) {
        return value;
    } else if constexpr (isTruth<T>) {
        return value ? "true"_q : "false"_q;
    } else if constexpr (isReal<T>) {
        // Qt omits the sign of zero.
        return std::fpclassify(value) == FP_ZERO && std::signbit(value)
            ? "-0"_q
            : QString::number(value, 'g', QLocale::FloatingPointShortest);
    } else {
        return QString::number(value);
    }
}

template <typename T> Json toJson(const T &value)
{
    if constexpr (isList<T>) {
        Json list = Json::array();
        for (const auto &each : value) {
            list.push_back(toJson<typename T::value_type>(each));
        }
        return list;
    } else if constexpr (isTruth<T> || sizeof(T) == sizeof(int32_t)) {
        return value;
    } else {
        if constexpr (isReal<T>) {
            // JSON has no infinities and no nan, and many parsers lose the sign of zero.
            if (std::isfinite(value) && !(std::signbit(value) && std::abs(value) <= 0)) {
                return value;
            }
        }
        return toText<T>(value).toStdString();
    }
}

template <typename T> qint64 busSize(const T &value)
{
    // The length, alignment and final zero byte of a string or an array, or a whole number.
    constexpr qint64 bytesAround = 8;
    constexpr qint64 mostBytesOfUnit = 3;
    qint64 size = bytesAround;
    if constexpr (isList<T>) {
        for (const auto &each : value) {
            size += busSize<typename T::value_type>(each);
        }
    } else if constexpr (isText<T>) {
        size += mostBytesOfUnit * value.size();
    }
    return size;
}

/// The value, unless it is too large for an item.
template <typename T> T checked(T value, const Place &place)
{
    constexpr int mostElements = 65536;
    if constexpr (isText<T>) {
        if (value.size() > longestText) {
            throw place.refusal("the text is longer than %1 characters"_q.arg(longestText));
        }
    } else if constexpr (isList<T>) {
        if (static_cast<int>(value.size()) > mostElements) {
            throw place.refusal("there are more than %1 elements"_q.arg(mostElements));
        }
        if constexpr (std::is_same_v<T, QStringList>) {
            if (value.join(QString()).size() > longestText) {
                throw place.refusal("the texts are longer than %1 characters"_q.arg(longestText));
            }
        }
    }
    return value;
}

/// Reads a single value; `display` is the text as a refusal shows it.
template <typename T> T parse(const QString &text, const QString &display, const Place &place)
{
    if constexpr (isList<T>) {
        throw place.refusal("is an array, not a single value"_q);
    } else if constexpr (isText<T>) {
        if (text.contains(QChar(QChar::Null))) {
            throw place.refusal(
                "the text holds the character U+0000, which the bus cannot carry"_q);
        }
        return checked(text, place);
    } else if constexpr (isTruth<T>) {
        const bool isTrue = text == "true"_q || text == "1"_q;
        if (!isTrue && text != "false"_q && text != "0"_q) {
            throw place.refusal("%1 is not true, false, 1 or 0"_q.arg(display));
        }
        return isTrue;
    } else {
        static const QRegularExpression form(isReal<T>
                                                 ? "\\A-?(?:(?:[0-9]+(?:\\.[0-9]*)?|\\.[0-9]+)"
                                                   "(?:[eE][-+]?[0-9]+)?|inf|nan)\\z"_q
                                                 : "\\A-?[0-9]+\\z"_q);
        if (!form.match(text).hasMatch()) {
            throw place.refusal(display
                                + (isReal<T> ? " is not a number"_q : " is not a whole number"_q));
        }
        // Unsigned types have no -0, and the sign of nan has no meaning.
        static const QRegularExpression sign(isReal<T> ? "\\A-(?=nan\\z)"_q : "\\A-(?=0+\\z)"_q);
        const std::string number = QString(text).remove(sign).toStdString();
        T value {};
        if (std::from_chars(number.data(), number.data() + number.size(), value).ec
            != std::errc()) {
            const ValueType *type = typeWithSignature(signatureOf(QVariant::fromValue(value)));
            throw place.refusal("%1 does not fit %2"_q.arg(display, QLatin1String(type->name)));
        }
        return value;
    }
}

template <typename T> T fromJson(const Json &json, const Place &place)
{
    if constexpr (isList<T>) {
        needKind(json.is_array(), json, "an array", place);
        T list;
        Place at = place;
        for (const Json &each : json) {
            ++at.element;
            list.push_back(fromJson<typename T::value_type>(each, at));
        }
        return checked(list, place);
    } else if constexpr (isTruth<T>) {
        needKind(json.is_boolean(), json, "true or false", place);
        return json.get<bool>();
    } else {
        if (json.is_string()) {
            return parse<T>(textOf(json), quoted(textOf(json)), place);
        }
        needKind(!isText<T> && json.is_number(), json, isText<T> ? "a string" : "a number", place);
        if constexpr (isReal<T>) {
            return json.get<double>();
        }
        QString text = QString::fromStdString(json.dump());
        if (json.is_number_float()) {
            const auto value = json.get<double>();
            if (std::trunc(value) != value) {
                throw place.refusal("%1 is not a whole number"_q.arg(toText(value)));
            }
            // A number with a fraction or an exponent may have been rounded from here on.
            constexpr double firstInexact = 9007199254740992.0;
            if (std::abs(value) >= firstInexact) {
                throw place.refusal(
                    "%1 is not exact as a JSON number; write it between quotes"_q.arg(
                        toText(value)));
            }
            text = QString::number(static_cast<qint64>(value));
        }
        return parse<T>(text, text, place);
    }
}

template <typename T> QVariant fromBus(const QVariant &variant, const Place &place)
{
    const QString found = signatureOf(variant);
    const char *const wanted = QDBusMetaType::typeToSignature(qMetaTypeId<T>());
    if (found != QLatin1String(wanted)) {
        throw place.refusal("a value of D-Bus type %1 is not of type \"%2\""_q.arg(
            quoted(found), QLatin1String(wanted)));
    }
    return QVariant::fromValue(checked(qdbus_cast<T>(variant), place));
}

template <typename T> constexpr ValueType row(const char *name, const char *signature)
{
    return {
        name,
        signature,
        isList<T>,
        std::is_arithmetic_v<T> && !isTruth<T>,
        [](const Json &json, const Place &at) {
            return QVariant::fromValue(fromJson<T>(json, at));
        },
        [](const QString &text, const Place &at) {
            return QVariant::fromValue(parse<T>(text, quoted(text), at));
        },
        fromBus<T>,
        [](const QVariant &value) { return toJson(value.value<T>()); },
        [](const QVariant &value) { return toText(value.value<T>()); },
        [](const QVariant &value) { return busSize(value.value<T>()); },
    };
}

constexpr ValueType types[] = {
    row<QString>("string", "s"),
    row<bool>("bool", "b"),
    row<int32_t>("int32", "i"),
    row<uint32_t>("uint32", "u"),
    row<qint64>("int64", "x"),
    row<quint64>("uint64", "t"),
    row<double>("double", "d"),
    row<QStringList>("string[]", "as"),
    row<std::vector<int32_t>>("int32[]", "ai"),
    row<std::vector<uint32_t>>("uint32[]", "au"),
    row<std::vector<qint64>>("int64[]", "ax"),
    row<std::vector<quint64>>("uint64[]", "at"),
    row<std::vector<double>>("double[]", "ad"),
};

const ValueType *typeWith(const char *ValueType::*field, const QString &text)
{
    const auto *found =
        std::find_if(std::begin(types), std::end(types),
                     [&](const ValueType &each) { return text == QLatin1String(each.*field); });
    return found == std::end(types) ? nullptr : found;
}

} // namespace

const ValueType *typeNamed(const QString &name)
{
    return typeWith(&ValueType::name, name);
}

const ValueType *typeWithSignature(const QString &signature)
{
    return typeWith(&ValueType::signature, signature);
}

QString typeNames()
{
    QStringList names;
    for (const ValueType &each : types) {
        names.append(QString::fromLatin1(each.name));
    }
    return names.join(", "_q);
}

QString signatureOf(const QVariant &variant)
{
    if (variant.userType() == qMetaTypeId<QDBusArgument>()) {
        return variant.value<QDBusArgument>().currentSignature();
    }
    return QString::fromLatin1(QDBusMetaType::typeToSignature(variant.userType()));
}

void needKind(bool isWanted, const Json &json, const char *wanted, const Place &place)
{
    if (isWanted) {
        return;
    }
    QString kind = QString::fromLatin1(json.type_name());
    if (json.is_boolean()) {
        kind = "a truth value"_q;
    } else if (!json.is_null()) {
        kind.prepend(json.is_structured() ? "an "_q : "a "_q);
    }
    throw place.refusal("is %1, not %2"_q.arg(kind, QLatin1String(wanted)));
}

QString textOf(const Json &json)
{
    return QString::fromStdString(json.get_ref<const std::string &>());
}
