// SPDX-License-Identifier: MIT
#include "sim/value.h"

#include "bus/types.h"
#include "sim/element.h"
#include "sim/text.h"

#include <QDBusArgument>
#include <QDBusMetaType>
#include <QJsonArray>
#include <QMetaType>
#include <QStringList>

#include <algorithm>
#include <cstddef>
#include <iterator>
#include <vector>

namespace
{

constexpr int mostElements = 65536;

// QJsonArray and the containers count with different types; an item never holds more than this
// many.
template <typename Container> int count(const Container &container)
{
    return static_cast<int>(container.size());
}

// Length field, alignment and closing zero of a string or an array, or all of a number.
constexpr qint64 bytesAround = 8;

template <typename T> qint64 elementSize(const T & /*number*/)
{
    return bytesAround;
}

qint64 elementSize(const QString &text)
{
    constexpr qint64 mostBytesOfUnit = 3;
    return mostBytesOfUnit * text.size() + bytesAround;
}

template <typename T> struct Scalar {
    static Conversion fromText(const QString &text)
    {
        T value {};
        const QString problem = element::parse(text, quoted(text), value);
        return { QVariant::fromValue(value), problem };
    }

    static Conversion fromJson(const QJsonValue &json)
    {
        T value {};
        const QString problem = element::read(json, value);
        return { QVariant::fromValue(value), problem };
    }

    static Conversion fromBus(const QVariant &variant) { return { variant, {} }; }
    static QJsonValue toJson(const QVariant &value) { return element::toJson(value.value<T>()); }
    static QString toText(const QVariant &value) { return element::toText(value.value<T>()); }
    static qint64 busSize(const QVariant &value) { return elementSize(value.value<T>()); }
};

// A text from the bus obeys the same limit as one from a file.
template <> Conversion Scalar<QString>::fromBus(const QVariant &variant)
{
    return fromText(variant.toString());
}

QString limitProblem(const QStringList &elements)
{
    qint64 length = 0;
    for (const QString &text : elements) {
        length += text.size();
    }
    return length > element::longestText
        ? QStringLiteral("the texts are longer than %1 characters").arg(element::longestText)
        : QString();
}

template <typename T> QString limitProblem(const std::vector<T> & /*elements*/)
{
    return {};
}

template <typename Container> struct Array {
    static Conversion checked(const Container &elements)
    {
        if (count(elements) > mostElements) {
            return { {}, QStringLiteral("there are more than %1 elements").arg(mostElements) };
        }
        return { QVariant::fromValue(elements), limitProblem(elements) };
    }

    static Conversion fromJson(const QJsonValue &json)
    {
        if (!json.isArray()) {
            return { {},
                     QStringLiteral("is %1, not an array").arg(element::jsonKind(json.type())) };
        }
        Container elements;
        const QJsonArray array = json.toArray();
        for (int index = 0; index < array.size(); ++index) {
            typename Container::value_type value {};
            const QString problem = element::read(array.at(index), value);
            if (!problem.isEmpty()) {
                return { {}, problem, index };
            }
            elements.push_back(value);
        }
        return checked(elements);
    }

    static Conversion fromBus(const QVariant &variant)
    {
        // Only an array of strings arrives unpacked.
        return checked(qdbus_cast<Container>(variant));
    }

    static QJsonValue toJson(const QVariant &value)
    {
        QJsonArray array;
        for (const auto &element : value.value<Container>()) {
            array.append(element::toJson(element));
        }
        return array;
    }

    static QString toText(const QVariant &value)
    {
        QStringList texts;
        for (const auto &element : value.value<Container>()) {
            texts.append(element::toText(element));
        }
        return texts.join(QLatin1Char(' '));
    }

    static qint64 busSize(const QVariant &value)
    {
        qint64 size = bytesAround;
        for (const auto &element : value.value<Container>()) {
            size += elementSize(element);
        }
        return size;
    }
};

struct TypeRow {
    const char *name;
    const char *signature;
    Conversion (*fromText)(const QString &); ///< null: an array, which no text can give
    Conversion (*fromJson)(const QJsonValue &);
    Conversion (*fromBus)(const QVariant &); ///< called only when the signature is this row's
    QJsonValue (*toJson)(const QVariant &);
    QString (*toText)(const QVariant &);
    qint64 (*busSize)(const QVariant &);
};

template <typename T> constexpr TypeRow scalarRow(const char *name, const char *signature)
{
    return { name,
             signature,
             &Scalar<T>::fromText,
             &Scalar<T>::fromJson,
             &Scalar<T>::fromBus,
             &Scalar<T>::toJson,
             &Scalar<T>::toText,
             &Scalar<T>::busSize };
}

template <typename Container> constexpr TypeRow arrayRow(const char *name, const char *signature)
{
    return { name,
             signature,
             nullptr,
             &Array<Container>::fromJson,
             &Array<Container>::fromBus,
             &Array<Container>::toJson,
             &Array<Container>::toText,
             &Array<Container>::busSize };
}

constexpr TypeRow types[] = {
    scalarRow<QString>("string", "s"),
    scalarRow<bool>("bool", "b"),
    scalarRow<int32_t>("int32", "i"),
    scalarRow<uint32_t>("uint32", "u"),
    scalarRow<qint64>("int64", "x"),
    scalarRow<quint64>("uint64", "t"),
    scalarRow<double>("double", "d"),
    arrayRow<QStringList>("string[]", "as"),
    arrayRow<std::vector<int32_t>>("int32[]", "ai"),
    arrayRow<std::vector<uint32_t>>("uint32[]", "au"),
    arrayRow<std::vector<qint64>>("int64[]", "ax"),
    arrayRow<std::vector<quint64>>("uint64[]", "at"),
    arrayRow<std::vector<double>>("double[]", "ad"),
};
static_assert(std::size(types) == static_cast<std::size_t>(ValueType::DoubleArray) + 1,
              "one row for each type, in the order of the enumeration");

const TypeRow &rowOf(ValueType type)
{
    return types[static_cast<std::size_t>(type)];
}

QString signatureOf(const QVariant &variant)
{
    if (variant.userType() == qMetaTypeId<QDBusArgument>()) {
        return variant.value<QDBusArgument>().currentSignature();
    }
    return QString::fromLatin1(QDBusMetaType::typeToSignature(variant.userType()));
}

} // namespace

std::optional<ValueType> typeNamed(const QString &name)
{
    const auto *row =
        std::find_if(std::begin(types), std::end(types),
                     [&name](const TypeRow &each) { return name == QLatin1String(each.name); });
    if (row == std::end(types)) {
        return {};
    }
    return static_cast<ValueType>(row - std::begin(types));
}

QString typeName(ValueType type)
{
    return QString::fromLatin1(rowOf(type).name);
}

QString busSignature(ValueType type)
{
    return QString::fromLatin1(rowOf(type).signature);
}

bool isArray(ValueType type)
{
    return type >= ValueType::StringArray;
}

bool isNumber(ValueType type)
{
    return type >= ValueType::Int32 && type <= ValueType::Double;
}

Conversion valueFromJson(ValueType type, const QJsonValue &json)
{
    return rowOf(type).fromJson(json);
}

Conversion valueFromText(ValueType type, const QString &text)
{
    if (isArray(type)) {
        return { {}, QStringLiteral("is an array, not a single value") };
    }
    return rowOf(type).fromText(text);
}

Conversion valueFromBus(ValueType type, const QVariant &variant)
{
    const QString found = signatureOf(variant);
    if (found != busSignature(type)) {
        return { {},
                 QStringLiteral("a value of D-Bus type %1 is not of type %2")
                     .arg(quoted(found), quoted(busSignature(type))) };
    }
    return rowOf(type).fromBus(variant);
}

QJsonValue valueToJson(ValueType type, const QVariant &value)
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
