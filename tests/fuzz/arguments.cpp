// SPDX-License-Identifier: MIT
#include "tests/fuzz/arguments.h"

#include "app/arraykind.h"
#include "app/commandline.h"
#include "app/usage.h"
#include "bus/proxies.h"
#include "tests/fuzz/expected.h"
#include "tests/support/argumentvector.h"
#include "tests/support/capture.h"
#include "tests/support/openmovra.h"

#include <QCoreApplication>
#include <QDBusArgument>
#include <QSequentialIterable>

#include <memory>

#include <unistd.h>

namespace
{

/// Sets the environment of the process to that of a vector during its lifetime.
class Environment
{
public:
    explicit Environment(ArgumentVector &vector) { environ = vector.environment(); }
    ~Environment() { environ = before; }
    Environment(const Environment &) = delete;
    Environment &operator=(const Environment &) = delete;

private:
    char **const before = environ;
};

QByteArrayList wordsIn(QByteArray typed)
{
    if (typed.endsWith('\n')) {
        typed.chop(1);
    } else if (typed.isEmpty()) {
        return { "movra" };
    }
    QByteArrayList words { "movra" };
    for (const QByteArray &line : typed.split('\n')) {
        words.append(line.constData()); // no word contains a byte of value 0
    }
    return words;
}

QByteArray warnings; // what Qt writes to standard error

void recordWarning(QtMsgType /*type*/, const QMessageLogContext & /*context*/,
                   const QString &message)
{
    // A debug build appends the place.
    const int where = message.indexOf(QLatin1String(" in "));
    warnings += message.left(where).toUtf8() + '\n';
}

QByteArray differs(const char *what, const QByteArray &is, const QByteArray &expected)
{
    return is == expected ? QByteArray() : what + (" is: " + is) + "\nexpected: " + expected + '\n';
}

QByteArray differs(const char *what, int is, int expected)
{
    return differs(what, QByteArray::number(is), QByteArray::number(expected));
}

QByteArray problemWithPositions(char **argv, const QByteArrayList &words)
{
    QByteArray problem;
    for (const Position position :
         { ServicePosition, PathPosition, CommandPosition, FirstArgument, ThirdArgument }) {
        problem += differs("word", QByteArray::fromStdString(wordAt(argv, position)),
                           words.value(position));
    }
    return problem;
}

/// Converts the values as SETARRAY does, and marshals the array.
QByteArray problemWithArray(const QByteArray &id, const QByteArrayList &values)
{
    QStringList texts;
    for (const QByteArray &value : values) {
        texts.append(QString::fromLatin1(value));
    }
    const QVariant array = findArrayKind(QString::fromLatin1(id))->fromTexts(texts);

    const auto elements = array.value<QSequentialIterable>();
    QByteArray problem = differs("number of elements", elements.size(), values.size());
    for (int i = 0; problem.isEmpty() && i < values.size(); ++i) {
        const QByteArray element = elements.at(i).toString().toLatin1();
        problem = differs("element", element, expectedElement(id, values[i]).value_or(element));
    }

    // The bus library ends the process if a text is not valid on the bus.
    QDBusArgument wire;
    wire << QList<IdValueStruct> { { QString::fromUtf8(id), array } };
    return problem + differs("signature", wire.currentSignature().toLatin1(), "a(sv)");
}

} // namespace

QByteArray problemWith(const QByteArray &typed)
{
    QByteArrayList words = wordsIn(typed);
    ArgumentVector vector(words, { "DBUS_SESSION_BUS_ADDRESS=unix:path=/nowhere", "", "12" });
    const Environment environment(vector);
    char **const argv = vector.argv();
    int argc = words.size();
    const bool usage = asksForUsage(argv);
    QByteArray problem =
        problemWithPositions(argv, words) + differs("usage", usage, usageExpected(words));
    if (usage || !problem.isEmpty()) {
        return problem;
    }

    QCoreApplication application(argc, argv);
    words = vector.words();
    problem += problemWithPositions(argv, words);

    OpenMovra movra;
    bool connected = true;
    warnings.clear();
    const QtMessageHandler usual = qInstallMessageHandler(recordWarning);
    const QByteArray printed = captureOutput([&] {
        connected =
            movra.connectToService(wordAt(argv, ServicePosition), wordAt(argv, PathPosition));
    });
    const QByteArray connectionError = movra.lastErrorText.toLatin1();
    const Outcome outcome = callHandler(movra, argv);
    qInstallMessageHandler(usual);
    const std::unique_ptr<KorAppInterface> proxy(movra.iface);

    const ExpectedOutcome expected =
        expectedOutcome(words, { connectionError, movra.lastErrorText.toLatin1() });
    problem += differs("connected", connected, false)
        + differs("connection error", isConnectionError(connectionError, words), true)
        + differs("status", outcome.status, expected.status)
        + differs("output", printed + outcome.out, expected.printed)
        + differs("standard error", warnings + outcome.err, expected.warnings);
    if (problem.isEmpty() && outcome.status == Success && words[CommandPosition] == "SETARRAY") {
        problem += problemWithArray(words[FirstArgument], words.mid(ThirdArgument));
    }
    return problem;
}
