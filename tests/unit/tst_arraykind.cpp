// SPDX-License-Identifier: MIT
// Array kinds: the kind word of an id, and the conversion of texts to arrays.
#include "app/arraykind.h"
#include "bus/types.h"

#include <QTest>

#include <cmath>
#include <limits>

class tst_ArrayKind : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void order();
    void search_data();
    void search();
    void noTextsMakeAnEmptyArray_data();
    void noTextsMakeAnEmptyArray();
    void textsBecomeNumbers();
    void textsStayTexts();
};

void tst_ArrayKind::order()
{
    QByteArrayList rows;
    for (const ArrayKind &kind : arrayKinds) {
        rows.append(QByteArray(kind.word) + ' ' + kind.element);
    }
    QCOMPARE(rows,
             (QByteArrayList { "doubleARRAY d", "floatARRAY d", "uint32ARRAY u", "int32ARRAY i",
                               "uint64ARRAY t", "int64ARRAY x", "stringARRAY s" }));
}

void tst_ArrayKind::search_data()
{
    QTest::addColumn<QString>("id");
    QTest::addColumn<QByteArray>("word"); ///< empty: no kind
    const auto row = [](const char *id, const char *word) {
        QTest::newRow(id) << QString::fromLatin1(id) << QByteArray(word);
    };
    row(":x:doubleARRAY:", "doubleARRAY");
    row(":x:floatARRAY:", "floatARRAY");
    row(":x:uint32ARRAY:", "uint32ARRAY");
    row(":x:int32ARRAY:", "int32ARRAY");
    row(":x:uint64ARRAY:", "uint64ARRAY");
    row(":x:int64ARRAY:", "int64ARRAY");
    row(":x:stringARRAY:", "stringARRAY");
    row("doubleARRAY", "doubleARRAY");
    row("xdoubleARRAYx", "doubleARRAY");
    row(":stringARRAY:doubleARRAY:", "doubleARRAY");
    row(":a:uint64ARRAY:int32ARRAY:", "int32ARRAY");
    row(":a:int64ARRAY:uint32ARRAY:", "uint32ARRAY");
    row(":a:int32ARRAY:uint32ARRAY:", "uint32ARRAY");
    row("", "");
    row(":config:voip:delay:", "");
    row(":DOUBLEARRAY:", "");
    row(":doubleArray:", "");
    row(":double ARRAY:", "");
    row(":doubleARRA", "");
}

void tst_ArrayKind::search()
{
    QFETCH(QString, id);
    QFETCH(QByteArray, word);
    const ArrayKind *kind = findArrayKind(id);
    QCOMPARE(QByteArray(kind != nullptr ? kind->word : ""), word);
}

void tst_ArrayKind::noTextsMakeAnEmptyArray_data()
{
    QTest::addColumn<int>("row");
    QTest::addColumn<int>("type");
    QTest::newRow("doubleARRAY") << 0 << qMetaTypeId<std::vector<double>>();
    QTest::newRow("floatARRAY") << 1 << qMetaTypeId<std::vector<double>>();
    QTest::newRow("uint32ARRAY") << 2 << qMetaTypeId<std::vector<uint32_t>>();
    QTest::newRow("int32ARRAY") << 3 << qMetaTypeId<std::vector<int32_t>>();
    QTest::newRow("uint64ARRAY") << 4 << qMetaTypeId<std::vector<quint64>>();
    QTest::newRow("int64ARRAY") << 5 << qMetaTypeId<std::vector<qint64>>();
    QTest::newRow("stringARRAY") << 6 << static_cast<int>(QMetaType::QStringList);
}

void tst_ArrayKind::noTextsMakeAnEmptyArray()
{
    QFETCH(int, row);
    QFETCH(int, type);
    const QVariant array = arrayKinds[static_cast<std::size_t>(row)].fromTexts({});
    QCOMPARE(array.userType(), type);
    QCOMPARE(array.value<QSequentialIterable>().size(), 0);
}

void tst_ArrayKind::textsBecomeNumbers()
{
    const QStringList texts { QStringLiteral("7"),
                              QStringLiteral("-1"),
                              QStringLiteral("1.5"),
                              QStringLiteral("abc"),
                              QString(),
                              QStringLiteral("99999999999") };
    const auto made = [&texts](const char *word) {
        return findArrayKind(QString::fromLatin1(word))->fromTexts(texts);
    };
    QCOMPARE(made("doubleARRAY").value<std::vector<double>>(),
             (std::vector<double> { 7, -1, 1.5, 0, 0, 99999999999.0 }));
    QCOMPARE(made("floatARRAY").value<std::vector<double>>(),
             (std::vector<double> { 7, -1, 1.5, 0, 0, 99999999999.0 }));
    QCOMPARE(made("uint32ARRAY").value<std::vector<uint32_t>>(),
             (std::vector<uint32_t> { 7, 0, 0, 0, 0, 0 }));
    QCOMPARE(made("int32ARRAY").value<std::vector<int32_t>>(),
             (std::vector<int32_t> { 7, -1, 0, 0, 0, 0 }));
    QCOMPARE(made("uint64ARRAY").value<std::vector<quint64>>(),
             (std::vector<quint64> { 7, 0, 0, 0, 0, 99999999999 }));
    QCOMPARE(made("int64ARRAY").value<std::vector<qint64>>(),
             (std::vector<qint64> { 7, -1, 0, 0, 0, 99999999999 }));
}

void tst_ArrayKind::textsStayTexts()
{
    const QStringList texts { QStringLiteral("7"), QString(), QStringLiteral(" \u00e9 ") };
    const QVariant array = findArrayKind(QStringLiteral("stringARRAY"))->fromTexts(texts);
    QCOMPARE(array.userType(), static_cast<int>(QMetaType::QStringList));
    QCOMPARE(array.toStringList(), texts);
}

QTEST_APPLESS_MAIN(tst_ArrayKind)
#include "tst_arraykind.moc"
