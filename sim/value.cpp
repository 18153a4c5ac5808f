// SPDX-License-Identifier: MIT
#include "sim/value.h"

#include "bus/types.h"

#include <QDBusArgument>
#include <QDBusMetaType>
#include <QLocale>
#include <QMetaType>
#include <QRegularExpression>
#include <QStringList>

#include <algorithm>
#include <cmath>
#include <cstddef>
#include <cstdint>
#include <iterator>
#include <limits>
#include <nlohmann/json.hpp>
#include <type_traits>
#include <vector>

namespace
{

constexpr int mostElements = 65536;

template <typename T> constexpr bool isText = std::is_same_v<T, QString>;
template <typename T> constexpr bool isTruth = std::is_same_v<T, bool>;
template <typename T> constexpr bool isReal = std::is_same_v<T, double>;

template <typename T> struct ElementOf {
    static constexpr bool exists = false;
};
template <> struct ElementOf<QStringList> {
    static constexpr bool exists = true;
    using Type = QString;
};
template <typename T> struct ElementOf<std::vector<T>> {
    static constexpr bool exists = true;
    using Type = T;
};

template <typename T> QString numberName()
{
    if constexpr (isReal<T>) {
        return "double"_q;
    } else {
        return "%1int%2"_q.arg(std::is_signed_v<T> ? QString() : "u"_q).arg(8 * sizeof(T));
    }
}

QString textOf(double value)
{
    // Qt leaves the sign of nought out.
    return std::fpclassify(value) == FP_ZERO && std::signbit(value)
        ? "-0"_q
        : QString::number(value, 'g', QLocale::FloatingPointShortest);
}

Refusal isNot(const Json &json, const char *wanted, const Place &place)
{
    return place.refusal("is %1, not %2"_q.arg(jsonKind(json), QLatin1String(wanted)));
}

/// Reads a single value; `display` is the text as a refusal shows it.
template <typename T> T parse(const QString &text, const QString &display, const Place &place)
{
    if constexpr (isText<T>) {
        if (text.contains(QChar(QChar::Null))) {
            throw place.refusal(
                "the text holds the character U+0000, which the bus cannot carry"_q);
        }
        if (text.size() > longestText) {
            throw place.refusal("the text is longer than %1 characters"_q.arg(longestText));
        }
        return text;
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
        bool fits = false;
        T value {};
        if constexpr (isReal<T>) {
            const bool isNan = text.endsWith("nan"_q);
            value = isNan ? std::numeric_limits<double>::quiet_NaN() : text.toDouble(&fits);
            fits = fits || isNan;
        } else if (text.startsWith(QLatin1Char('-'))) {
            const qint64 wide = text.toLongLong(&fits);
            // The least value of an unsigned type is 0, which every negative number is below.
            fits = fits && wide >= static_cast<qint64>(std::numeric_limits<T>::min());
            value = static_cast<T>(wide);
        } else {
            const quint64 wide = text.toULongLong(&fits);
            fits = fits && wide <= static_cast<quint64>(std::numeric_limits<T>::max());
            value = static_cast<T>(wide);
        }
        if (!fits) {
            throw place.refusal("%1 does not fit %2"_q.arg(display, numberName<T>()));
        }
        return value;
    }
}

/// What a list obeys, wherever it comes from.
template <typename List> List checked(const List &list, const Place &place)
{
    if (static_cast<int>(list.size()) > mostElements) {
        throw place.refusal("there are more than %1 elements"_q.arg(mostElements));
    }
    if constexpr (std::is_same_v<List, QStringList>) {
        qint64 length = 0;
        for (const QString &text : list) {
            length += text.size();
        }
        if (length > longestText) {
            throw place.refusal("the texts are longer than %1 characters"_q.arg(longestText));
        }
    }
    return list;
}

template <typename T> T fromJson(const Json &json, const Place &place)
{
    if constexpr (ElementOf<T>::exists) {
        if (!json.is_array()) {
            throw isNot(json, "an array", place);
        }
        T list;
        Place at = place;
        for (const Json &each : json) {
            ++at.element;
            list.push_back(fromJson<typename ElementOf<T>::Type>(each, at));
        }
        return checked(list, place);
    } else if constexpr (isTruth<T>) {
        if (!json.is_boolean()) {
            throw isNot(json, "true or false", place);
        }
        return json.get<bool>();
    } else {
        if (json.is_string()) {
            const QString text = QString::fromStdString(json.get_ref<const std::string &>());
            return parse<T>(text, quoted(text), place);
        }
        if constexpr (isText<T>) {
            throw isNot(json, "a string", place);
        } else if (!json.is_number()) {
            throw isNot(json, "a number", place);
        } else if constexpr (isReal<T>) {
            return json.get<double>();
        } else {
            QString text = QString::fromStdString(json.dump());
            if (json.is_number_float()) {
                const auto value = json.get<double>();
                if (std::trunc(value) != value) {
                    throw place.refusal("%1 is not a whole number"_q.arg(textOf(value)));
                }
                // A number with a fraction or an exponent may have been rounded from here on.
                constexpr double firstInexact = 9007199254740992.0;
                if (std::abs(value) >= firstInexact) {
                    throw place.refusal(
                        "%1 is not exact as a JSON number; write it between quotes"_q.arg(
                            textOf(value)));
                }
                text = QString::number(static_cast<qint64>(value));
            }
            return parse<T>(text, text, place);
        }
    }
}

template <typename T> T fromText(const QString &text, const Place &place)
{
    if constexpr (ElementOf<T>::exists) {
        throw place.refusal("is an array, not a single value"_q);
    } else {
        return parse<T>(text, quoted(text), place);
    }
}

template <typename T> T fromBus(const QVariant &variant, const Place &place)
{
    if constexpr (ElementOf<T>::exists) {
        // Only an array of strings arrives unpacked.
        return checked(qdbus_cast<T>(variant), place);
    } else if constexpr (isText<T>) {
        // A text from the bus obeys the same limit as one from a file.
        return fromText<T>(variant.toString(), place);
    } else {
        return variant.value<T>();
    }
}

template <typename T> QString toText(const T &value)
{
    if constexpr (ElementOf<T>::exists) {
        QStringList texts;
        for (const auto &each : value) {
            texts.append(toText<typename ElementOf<T>::Type>(each));
        }
        return texts.join(QLatin1Char(' '));
    } else if constexpr (isText<T>) {
        return value;
    } else if constexpr (isTruth<T>) {
        return value ? "true"_q : "false"_q;
    } else if constexpr (isReal<T>) {
        return textOf(value);
    } else {
        return QString::number(value);
    }
}

template <typename T> Json toJson(const T &value)
{
    if constexpr (ElementOf<T>::exists) {
        Json list = Json::array();
        for (const auto &each : value) {
            list.push_back(toJson<typename ElementOf<T>::Type>(each));
        }
        return list;
    } else if constexpr (isTruth<T> || sizeof(T) == sizeof(int32_t)) {
        return value;
    } else {
        if constexpr (isReal<T>) {
            // JSON has neither infinities nor nan, and many readers lose the sign of nought.
            if (std::isfinite(value) && !(std::signbit(value) && std::abs(value) <= 0)) {
                return value;
            }
        }
        return toText<T>(value).toStdString();
    }
}

template <typename T> qint64 sizeOf(const T &value)
{
    // Length field, alignment and closing zero of a string or an array, or all of a number.
    constexpr qint64 bytesAround = 8;
    constexpr qint64 mostBytesOfUnit = 3;
    qint64 size = bytesAround;
    if constexpr (ElementOf<T>::exists) {
        for (const auto &each : value) {
            size += sizeOf<typename ElementOf<T>::Type>(each);
        }
    } else if constexpr (isText<T>) {
        size += mostBytesOfUnit * value.size();
    }
    return size;
}

struct TypeRow {
    const char *name;
    const char *signature;
    QVariant (*fromJson)(const Json &, const Place &);
    QVariant (*fromText)(const QString &, const Place &);
    QVariant (*fromBus)(const QVariant &, const Place &); ///< only for this row's signature
    Json (*toJson)(const QVariant &);
    QString (*toText)(const QVariant &);
    qint64 (*busSize)(const QVariant &);
};

template <typename T> constexpr TypeRow row(const char *name, const char *signature)
{
    return {
        name,
        signature,
        [](const Json &json, const Place &place) {
            return QVariant::fromValue(fromJson<T>(json, place));
        },
        [](const QString &text, const Place &place) {
            return QVariant::fromValue(fromText<T>(text, place));
        },
        [](const QVariant &variant, const Place &place) {
            return QVariant::fromValue(fromBus<T>(variant, place));
        },
        [](const QVariant &value) { return toJson<T>(value.value<T>()); },
        [](const QVariant &value) { return toText<T>(value.value<T>()); },
        [](const QVariant &value) { return sizeOf<T>(value.value<T>()); },
    };
}

constexpr TypeRow types[] = {
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
static_assert(std::size(types) == static_cast<std::size_t>(ValueType::DoubleArray) + 1,
              "one row for each type, in the order of the enumeration");

const TypeRow &rowOf(ValueType type)
{
    return types[static_cast<std::size_t>(type)];
}

std::optional<ValueType> typeWith(const char *TypeRow::*field, const QString &text)
{
    const auto *found = std::find_if(std::begin(types), std::end(types), [&](const TypeRow &each) {
        return text == QLatin1String(each.*field);
    });
    if (found == std::end(types)) {
        return {};
    }
    return static_cast<ValueType>(found - std::begin(types));
}

} // namespace

std::optional<ValueType> typeNamed(const QString &name)
{
    return typeWith(&TypeRow::name, name);
}

std::optional<ValueType> typeWithSignature(const QString &signature)
{
    return typeWith(&TypeRow::signature, signature);
}

QString typeNames()
{
    QStringList names;
    for (const TypeRow &each : types) {
        names.append(QString::fromLatin1(each.name));
    }
    return names.join(", "_q);
}

QString typeName(ValueType type)
{
    return QString::fromLatin1(rowOf(type).name);
}

QString busSignature(ValueType type)
{
    return QString::fromLatin1(rowOf(type).signature);
}

QString signatureOf(const QVariant &variant)
{
    if (variant.userType() == qMetaTypeId<QDBusArgument>()) {
        return variant.value<QDBusArgument>().currentSignature();
    }
    return QString::fromLatin1(QDBusMetaType::typeToSignature(variant.userType()));
}

bool isArray(ValueType type)
{
    return type >= ValueType::StringArray;
}

bool isNumber(ValueType type)
{
    return type >= ValueType::Int32 && type <= ValueType::Double;
}

QVariant valueFromJson(ValueType type, const Json &json, const Place &place)
{
    return rowOf(type).fromJson(json, place);
}

QVariant valueFromText(ValueType type, const QString &text, const Place &place)
{
    return rowOf(type).fromText(text, place);
}

QVariant valueFromBus(ValueType type, const QVariant &variant, const Place &place)
{
    const QString found = signatureOf(variant);
    if (found != busSignature(type)) {
        throw place.refusal("a value of D-Bus type %1 is not of type %2"_q.arg(
            quoted(found), quoted(busSignature(type))));
    }
    return rowOf(type).fromBus(variant, place);
}

Json valueToJson(ValueType type, const QVariant &value)
{
    return rowOf(type).toJson(value);
}

QString valueToText(ValueType type, const QVariant &value)
{
    return rowOf(type).toText(value);
}

bool sameValue(ValueType type, const QVariant &left, const QVariant &right)
{
    // JSON keeps every difference, also the one between one element with a blank and two elements.
    return valueToJson(type, left) == valueToJson(type, right);
}

qint64 busSize(ValueType type, const QVariant &value)
{
    return rowOf(type).busSize(value);
}

QString jsonKind(const Json &json)
{
    switch (json.type()) {
    case Json::value_t::null:
        return "null"_q;
    case Json::value_t::boolean:
        return "a truth value"_q;
    case Json::value_t::string:
        return "a string"_q;
    case Json::value_t::array:
        return "an array"_q;
    case Json::value_t::object:
        return "an object"_q;
    default:
        return "a number"_q;
    }
}
