// SPDX-License-Identifier: MIT
#include "tests/fuzz/arguments.h"

#include "app/arraykind.h"
#include "app/commandline.h"
#include "app/commands.h"
#include "app/usage.h"
#include "bus/proxies.h"
#include "tests/fuzz/expected.h"
#include "tests/support/capture.h"
#include "tests/support/openmovra.h"

#include <QCoreApplication>
#include <QDBusArgument>
#include <QSequentialIterable>

#include <algorithm>
#include <memory>
#include <sstream>

#include <unistd.h>

namespace
{

/// A vector as the kernel lays it out: words, null, environment, null. While it lives, its
/// environment is the process's.
class ArgumentVector
{
public:
    explicit ArgumentVector(const Words &words)
        : count(static_cast<int>(words.size()))
    {
        append(words);
        const std::size_t behindWords = entries.size();
        append({ "DBUS_SESSION_BUS_ADDRESS=unix:path=/nowhere", "", "12" });
        entries.shrink_to_fit();
        environ = &entries[behindWords];
    }
    ~ArgumentVector() { environ = environmentBefore; }
    ArgumentVector(const ArgumentVector &) = delete;
    ArgumentVector &operator=(const ArgumentVector &) = delete;

    char **argv() { return entries.data(); }
    /// The words up to the vector's end, which Qt may have moved.
    Words words() const
    {
        return { entries.begin(), std::find(entries.begin(), entries.end(), nullptr) };
    }

    int count; ///< of the words; Qt counts it down

private:
    void append(const Words &words)
    {
        for (const std::string &word : words) {
            texts.push_back(std::make_unique<char[]>(word.size() + 1));
            std::copy(word.begin(), word.end(), texts.back().get());
            entries.push_back(texts.back().get());
        }
        entries.push_back(nullptr);
    }

    std::vector<std::unique_ptr<char[]>> texts;
    std::vector<char *> entries;
    char **const environmentBefore = environ;
};

Words wordsIn(const std::string &typed)
{
    Words words { "movra" };
    std::istringstream lines(typed);
    for (std::string line; std::getline(lines, line);) {
        words.emplace_back(line.c_str()); // no word holds a byte of value 0
    }
    return words;
}

std::string complaints; // what Qt would have written to standard error

void recordComplaint(QtMsgType /*type*/, const QMessageLogContext & /*context*/,
                     const QString &message)
{
    // A debug build says where as well.
    const int where = message.indexOf(QLatin1String(" in "));
    complaints += message.left(where).toStdString() + '\n';
}

std::string differs(const char *what, const std::string &is, const std::string &expected)
{
    return is == expected ? "" : what + (" is: " + is) + "\nexpected: " + expected + '\n';
}

std::string problemWithPositions(char **argv, const Words &words)
{
    std::string problem;
    for (const Position position :
         { ServicePosition, PathPosition, CommandPosition, FirstArgument, ThirdArgument }) {
        const auto index = static_cast<std::size_t>(position);
        problem +=
            differs("word", wordAt(argv, position), index < words.size() ? words[index] : "");
    }
    return problem;
}

/// Makes what SETARRAY sends out of the values, and what goes on the wire out of that.
std::string problemWithArray(const std::string &id, const Words &values)
{
    QStringList texts;
    for (const std::string &value : values) {
        texts.append(QString::fromLatin1(value.c_str()));
    }
    const QVariant array = findArrayKind(QString::fromLatin1(id.c_str()))->fromTexts(texts);

    const auto elements = array.value<QSequentialIterable>();
    std::string problem = differs("number of elements", std::to_string(elements.size()),
                                  std::to_string(values.size()));
    for (std::size_t i = 0; problem.empty() && i < values.size(); ++i) {
        const std::string element =
            elements.at(static_cast<int>(i)).toString().toLatin1().toStdString();
        problem = differs("element", element, expectedElement(id, values[i]).value_or(element));
    }

    // The bus library ends the process if a text is not what the bus allows.
    QDBusArgument wire;
    wire << QList<IdValueStruct> { { QString::fromUtf8(id.c_str()), array } };
    return problem + differs("signature", wire.currentSignature().toStdString(), "a(sv)");
}

} // namespace

std::string problemWith(const std::string &typed)
{
    Words words = wordsIn(typed);
    ArgumentVector vector(words);
    char **const argv = vector.argv();
    const bool usage = asksForUsage(argv);
    std::string problem = problemWithPositions(argv, words)
        + differs("usage", std::to_string(usage), std::to_string(usageExpected(words)));
    if (usage || !problem.empty()) {
        return problem;
    }

    QCoreApplication application(vector.count, argv);
    words = vector.words();
    problem += problemWithPositions(argv, words);
    const std::string word = wordAt(argv, CommandPosition);
    const Command *const command = findCommand(word);

    OpenMovra movra;
    bool connected = true;
    Errors errors;
    int status = NotRun;
    complaints.clear();
    const QtMessageHandler usual = qInstallMessageHandler(recordComplaint);
    const QByteArray printed = captureOutput([&] {
        connected =
            movra.connectToService(wordAt(argv, ServicePosition), wordAt(argv, PathPosition));
        errors.ofConnection = movra.lastErrorText.toLatin1().toStdString();
        status = command != nullptr ? (movra.*command->handler)(argv) : NotRun;
    });
    qInstallMessageHandler(usual);
    const std::unique_ptr<KorAppInterface> proxy(movra.iface);
    errors.last = movra.lastErrorText.toLatin1().toStdString();

    const Outcome expected = expectedOutcome(words, errors);
    problem += differs("connected", std::to_string(connected), "0")
        + differs("connection error", std::to_string(isConnectionError(errors.ofConnection, words)),
                  "1")
        + differs("status", std::to_string(status), std::to_string(expected.status))
        + differs("output", printed.toStdString(), expected.printed)
        + differs("errors", complaints, expected.complaints);
    if (problem.empty() && status == Success && word == "SETARRAY") {
        problem +=
            problemWithArray(words[FirstArgument], { words.begin() + ThirdArgument, words.end() });
    }
    return problem;
}
