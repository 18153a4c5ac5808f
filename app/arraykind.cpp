// SPDX-License-Identifier: MIT
#include "app/arraykind.h"

#include "bus/types.h"

#include <algorithm>

namespace
{

// Always decimal. A failed conversion gives 0, or infinity if a double is too great, and is not
// reported.
void convert(const QString &text, double &number)
{
    number = text.toDouble();
}
void convert(const QString &text, int32_t &number)
{
    number = text.toInt();
}
void convert(const QString &text, uint32_t &number)
{
    number = text.toUInt();
}
void convert(const QString &text, qint64 &number)
{
    number = text.toLongLong();
}
void convert(const QString &text, quint64 &number)
{
    number = text.toULongLong();
}

template <typename T> QVariant numbersFromTexts(const QStringList &texts)
{
    std::vector<T> numbers;
    numbers.reserve(static_cast<std::size_t>(texts.size()));
    for (const QString &text : texts) {
        T number {};
        convert(text, number);
        numbers.push_back(number);
    }
    return QVariant::fromValue(numbers);
}

QVariant stringsFromTexts(const QStringList &texts)
{
    return texts;
}

} // namespace

// D-Bus has no single precision, so the elements of a "floatARRAY" are doubles.
const std::array<ArrayKind, 7> arrayKinds { {
    { "doubleARRAY", 'd', &numbersFromTexts<double> },
    { "floatARRAY", 'd', &numbersFromTexts<double> },
    { "uint32ARRAY", 'u', &numbersFromTexts<uint32_t> },
    { "int32ARRAY", 'i', &numbersFromTexts<int32_t> },
    { "uint64ARRAY", 't', &numbersFromTexts<quint64> },
    { "int64ARRAY", 'x', &numbersFromTexts<qint64> },
    { "stringARRAY", 's', &stringsFromTexts },
} };

const ArrayKind *findArrayKind(const QString &id)
{
    const auto *const kind =
        std::find_if(arrayKinds.begin(), arrayKinds.end(),
                     [&id](const ArrayKind &row) { return id.contains(QLatin1String(row.word)); });
    return kind == arrayKinds.end() ? nullptr : kind;
}
