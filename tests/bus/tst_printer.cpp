// SPDX-License-Identifier: MIT
// The printer of packed values that no reply contains: arguments that were stepped into, and large
// arrays.
#include "app/movra.h"
#include "bus/types.h"
#include "tests/support/capture.h"
#include "tests/support/fakeservice.h"
#include "tests/support/patience.h"

#include <QDBusArgument>
#include <QDBusConnection>
#include <QDBusMessage>
#include <QTest>

#include <functional>
#include <memory>

namespace
{

/// Steps into a received argument, or out of it.
using Step = std::function<void(const QDBusArgument &)>;

} // namespace

Q_DECLARE_METATYPE(Step)

class tst_Printer : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void initTestCase();
    void typesThatAreNoArrays_data();
    void typesThatAreNoArrays();
    void anArgumentThatWasNeverReceived();
    void numbersAndErrorLinesStayInOrder();
    void manyElements();

private:
    /// Asks the service for a value, GVariant text, and returns it packed.
    QDBusArgument received(const QByteArray &value);

    std::unique_ptr<FakeService> service;
};

void tst_Printer::initTestCase()
{
    registerBusTypes();
    service = std::make_unique<FakeService>();
}

QDBusArgument tst_Printer::received(const QByteArray &value)
{
    service->answer("Get", "(" + value + ",)");
    const QDBusMessage reply = QDBusConnection::sessionBus().call(
        QDBusMessage::createMethodCall(QStringLiteral("com.varn.tul"), QStringLiteral("/"),
                                       QStringLiteral("varn.pim"), QStringLiteral("Get")),
        QDBus::Block, patienceMs);
    return reply.arguments().value(0).value<QDBusArgument>();
}

void tst_Printer::typesThatAreNoArrays_data()
{
    QTest::addColumn<QByteArray>("value");
    QTest::addColumn<Step>("in");
    QTest::addColumn<Step>("out"); ///< the opposite of `in`; without it Qt D-Bus leaks
    QTest::addColumn<QByteArray>("line");

    const auto row = [](const char *name, const char *value, const Step &in, const Step &out,
                        const char *line) {
        QTest::newRow(name) << QByteArray(value) << in << out << QByteArray(line);
    };
    const Step stay = [](const QDBusArgument &) {};
    const Step intoStructure = [](const QDBusArgument &value) { value.beginStructure(); };
    const Step outOfStructure = [](const QDBusArgument &value) { value.endStructure(); };
    row("basic: one blank after the colon", "(1, 2)", intoStructure, outOfStructure,
        "Error: value QDBusArgument BasicType\n");
    row("an array of bytes counts as basic", "(b'abc', 1)", intoStructure, outOfStructure,
        "Error: value QDBusArgument BasicType\n");
    row("variant: two blanks, and two before the type", "(<1>, 2)", intoStructure, outOfStructure,
        "Error:  value QDBusArgument  VariantType\n");
    row("structure", "(1, 2)", stay, stay, "Error:  value QDBusArgument StructureType\n");
    row("map", "{'a': 1}", stay, stay, "Error:  value QDBusArgument MapType\n");
    row(
        "map entry", "{'a': 1}", [](const QDBusArgument &value) { value.beginMap(); },
        [](const QDBusArgument &value) { value.endMap(); },
        "Error:  value QDBusArgument MapEntryType\n");
    row(
        "after the end", "(1, 2)",
        [](const QDBusArgument &value) {
            int number = 0;
            value.beginStructure();
            value >> number >> number;
        },
        outOfStructure, "Error:  value QDBusArgument UnknownType\n");
}

void tst_Printer::typesThatAreNoArrays()
{
    QFETCH(QByteArray, value);
    QFETCH(Step, in);
    QFETCH(Step, out);
    QFETCH(QByteArray, line);

    Movra movra(nullptr);
    const QDBusArgument argument = received(value);
    in(argument);
    QCOMPARE(captureOutput([&] { movra.printArgumentValue(QStringLiteral("x"), argument); }), line);
    out(argument);
}

void tst_Printer::anArgumentThatWasNeverReceived()
{
    Movra movra(nullptr);
    QCOMPARE(captureOutput([&] { movra.printArgumentValue(QStringLiteral("x"), {}); }),
             QByteArray("Error:  value QDBusArgument UnknownType\n"));
}

void tst_Printer::numbersAndErrorLinesStayInOrder()
{
    Movra movra(nullptr);
    const QString id = QStringLiteral("x");
    const QDBusArgument array = received("[1.5, 2.5]");
    const QDBusArgument structure = received("(1, 2)");
    const QDBusArgument another = received("[uint32 7]");
    QCOMPARE(captureOutput([&] {
                 movra.printArgumentValue(id, array);
                 movra.printArgumentValue(id, structure);
                 movra.printArgumentValue(id, another);
             }),
             QByteArray("1.5\n2.5\nError:  value QDBusArgument StructureType\n7\n"));
}

void tst_Printer::manyElements()
{
    constexpr int count = 200000;
    QByteArray value = "[uint32 0";
    QByteArray lines = "0\n";
    for (int i = 1; i < count; ++i) {
        const QByteArray number = QByteArray::number(i);
        value += ", " + number;
        lines += number + '\n';
    }
    Movra movra(nullptr);
    const QDBusArgument argument = received(value + "]");
    const QByteArray out = captureOutput(
        [&] { movra.printArgumentValue(QStringLiteral(":x:uint32ARRAY:"), argument); });
    QCOMPARE(out.size(), lines.size());
    QVERIFY(out == lines);
}

QTEST_GUILESS_MAIN(tst_Printer)
#include "tst_printer.moc"
