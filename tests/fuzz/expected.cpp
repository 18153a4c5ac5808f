// SPDX-License-Identifier: MIT
#include "tests/fuzz/expected.h"

#include "tests/support/commandforms.h"
#include "tests/support/movrarun.h"

#include <algorithm>

namespace
{

bool areDigits(const QByteArray &text)
{
    return !text.isEmpty()
        && std::all_of(text.begin(), text.end(), [](char c) { return c >= '0' && c <= '9'; });
}

QByteArray withoutLeadingZeros(QByteArray digits)
{
    while (digits.size() > 1 && digits.startsWith('0')) {
        digits.remove(0, 1);
    }
    return digits;
}

/// The first kind word that the id contains, or nothing.
QByteArray kindIn(const QByteArray &id)
{
    for (const char *kind : { "doubleARRAY", "floatARRAY", "uint32ARRAY", "int32ARRAY",
                              "uint64ARRAY", "int64ARRAY", "stringARRAY" }) {
        if (id.contains(kind)) {
            return kind;
        }
    }
    return {};
}

/// An unsigned decimal number of 32 bits, blanks around it and a plus before it allowed; 0 for
/// anything else.
qulonglong lengthIn(QByteArray text)
{
    const QByteArray blanks = " \t\n\v\f\r\x85\xa0";
    while (!text.isEmpty() && blanks.contains(text.front())) {
        text.remove(0, 1);
    }
    while (!text.isEmpty() && blanks.contains(text.back())) {
        text.chop(1);
    }
    if (text.startsWith('+')) {
        text.remove(0, 1);
    }
    const QByteArray digits = withoutLeadingZeros(text);
    const qulonglong number = areDigits(digits) && digits.size() <= 10 ? digits.toULongLong() : 0;
    return number > 4294967295 ? 0 : number;
}

/// A SETARRAY with all its words.
ExpectedOutcome ofSetArray(const QByteArray &id, const QByteArray &length)
{
    const qulonglong number = lengthIn(length);
    if (number < 1 || number > 512) {
        return { 2, "Unsupported  array size " + QByteArray::number(number) + '\n' + error(2), {} };
    }
    return kindIn(id).isEmpty() ? ExpectedOutcome { 2, error(2), {} }
                                : ExpectedOutcome { 0, {}, {} };
}

ExpectedOutcome ofRequest(const QByteArrayList &request, const QByteArray &lastError)
{
    const CommandForm form = formOf(request);
    if (form.words.first() == "SIG") {
        return { 0, "",
                 "QObject::connect: No such signal "
                 "KorAppInterface::SigLogNotification(QStringList)\n" };
    }
    if (form.words.first() == "SETARRAY") {
        return ofSetArray(request[1], request[2]);
    }
    QByteArray failed = form.failed;
    if (failed.startsWith("DBG SET ")) {
        failed.replace(0, 7, "DBG " + request[1]); // the word that was typed
    }
    if (failed.endsWith("err=\n")) {
        failed.insert(failed.size() - 1, lastError);
    }
    return { form.failedStatus, failed, {} };
}

} // namespace

bool usageExpected(const QByteArrayList &words)
{
    return words.size() < 4 || words[1].startsWith("-h") || words[1].startsWith("--h");
}

bool isConnectionError(const QByteArray &error, const QByteArrayList &words)
{
    return error == "Not connected to D-Bus server"
        || error == "Invalid service name: " + words.value(1)
        || error == "Invalid object path: " + words.value(2);
}

ExpectedOutcome expectedOutcome(const QByteArrayList &words, const Errors &errors)
{
    ExpectedOutcome outcome = ofRequest(words.mid(3), errors.last);
    outcome.printed.prepend("Client DBus Interface not valid, error: " + errors.ofConnection
                            + '\n');
    return outcome;
}

std::optional<QByteArray> expectedElement(const QByteArray &id, const QByteArray &typed)
{
    const QByteArray kind = kindIn(id);
    if (kind == "stringARRAY") {
        return typed;
    }
    const bool negative = typed.startsWith('-');
    const QByteArray digits = typed.mid(negative ? 1 : 0);
    if (areDigits(digits) && digits.size() < 10) {
        QByteArray number = withoutLeadingZeros(digits);
        if (!negative) {
            return number;
        }
        if (number != "0") {
            return kind.startsWith('u') ? QByteArray("0") : "-" + number;
        }
    }
    // "inf" and "nan" are doubles.
    const bool whole = kind != "doubleARRAY" && kind != "floatARRAY";
    if (whole
        && std::none_of(typed.begin(), typed.end(), [](char c) { return c >= '0' && c <= '9'; })) {
        return QByteArray("0");
    }
    return {};
}
