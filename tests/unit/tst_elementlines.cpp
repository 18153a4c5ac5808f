// SPDX-License-Identifier: MIT
// Elements as lines of text.
#include "app/elementlines.h"

#include <QTest>

#include <cstdint>
#include <limits>
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

QTEST_APPLESS_MAIN(tst_ElementLines)
#include "tst_elementlines.moc"
