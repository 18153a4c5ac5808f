// SPDX-License-Identifier: MIT
// Elements as lines of text.
#include "app/elementlines.h"

#include <QTest>

#include <cstdint>
#include <cstring>
#include <limits>
#include <random>
#include <sstream>

namespace
{

template <typename T> QByteArray linesOf(const std::vector<T> &elements)
{
    std::ostringstream out;
    writeElementLines(out, elements);
    return QByteArray::fromStdString(out.str());
}

} // namespace

class tst_ElementLines : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void noElementsAreNoLines();
    void doublesHaveSixSignificantDigits();
    void integersAreDecimal();
    void booleansAreOneOrZero();
    void anyBitsAreWrittenAsByTheStream();
};

void tst_ElementLines::noElementsAreNoLines()
{
    QCOMPARE(linesOf<double>({}), QByteArray());
    QCOMPARE(linesOf<bool>({}), QByteArray());
}

void tst_ElementLines::doublesHaveSixSignificantDigits()
{
    QCOMPARE(linesOf<double>({ 1.1, 2, 1234567, 0.000012345678, 100000, 1000000, -0.0 }),
             QByteArray("1.1\n2\n1.23457e+06\n1.23457e-05\n100000\n1e+06\n-0\n"));
    QCOMPARE(linesOf<double>({ std::numeric_limits<double>::infinity(), 1e300, 5e-324 }),
             QByteArray("inf\n1e+300\n4.94066e-324\n"));
}

void tst_ElementLines::integersAreDecimal()
{
    QCOMPARE(linesOf<short>({ -32768, 32767 }), QByteArray("-32768\n32767\n"));
    QCOMPARE(linesOf<unsigned short>({ 65535 }), QByteArray("65535\n"));
    QCOMPARE(linesOf<int32_t>({ INT32_MIN }), QByteArray("-2147483648\n"));
    QCOMPARE(linesOf<uint32_t>({ 1, UINT32_MAX }), QByteArray("1\n4294967295\n"));
    QCOMPARE(linesOf<int64_t>({ INT64_MIN }), QByteArray("-9223372036854775808\n"));
    QCOMPARE(linesOf<uint64_t>({ UINT64_MAX }), QByteArray("18446744073709551615\n"));
}

void tst_ElementLines::booleansAreOneOrZero()
{
    QCOMPARE(linesOf<bool>({ true, false }), QByteArray("1\n0\n"));
}

void tst_ElementLines::anyBitsAreWrittenAsByTheStream()
{
    std::vector<double> elements;
    const auto addBits = [&elements](uint64_t bits) {
        double element = 0;
        std::memcpy(&element, &bits, sizeof element);
        elements.push_back(element);
    };
    constexpr uint64_t signBit = UINT64_C(1) << 63;
    for (const uint64_t bits : {
             UINT64_C(0), UINT64_C(1), // zero and the smallest number
             UINT64_C(0x000fffffffffffff), UINT64_C(0x0010000000000000), // subnormal, normal
             UINT64_C(0x7fefffffffffffff), UINT64_C(0x7ff0000000000000), // largest, infinity
             UINT64_C(0x7ff0000000000001), UINT64_C(0x7ff8000000000000), // not a number
         }) {
        addBits(bits);
        addBits(bits | signBit);
    }
    std::mt19937_64 random(1); // NOLINT(*-msc51-cpp): the same numbers every time
    constexpr int rounds = 100000;
    for (int i = 0; i < rounds; ++i) {
        addBits(random());
        // Numbers of common sizes, many of them halfway between two texts, and whole ones.
        const auto number = static_cast<double>(random() % 200000001) - 1e8;
        elements.push_back(number / 64);
        elements.push_back(number / 1000);
        elements.push_back(number);
    }
    std::ostringstream expected;
    for (const double element : elements) {
        expected << element << '\n';
    }
    QCOMPARE(linesOf(elements), QByteArray::fromStdString(expected.str()));
}

QTEST_APPLESS_MAIN(tst_ElementLines)
#include "tst_elementlines.moc"
