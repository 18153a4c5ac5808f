// SPDX-License-Identifier: MIT
#include "tests/fuzz/expected.h"

#include <algorithm>
#include <string_view>

namespace
{

bool beginsWith(const std::string &text, const std::string &prefix)
{
    return text.compare(0, prefix.size(), prefix) == 0;
}

bool isOneOf(const std::string &text, const Words &words)
{
    return std::find(words.begin(), words.end(), text) != words.end();
}

bool areDigits(const std::string &text)
{
    return !text.empty() && text.find_first_not_of("0123456789") == std::string::npos;
}

std::string withoutLeadingZeros(const std::string &digits)
{
    const std::size_t first = digits.find_first_not_of('0');
    return first == std::string::npos ? "0" : digits.substr(first);
}

/// The first of the kind words that the identifier holds, or nothing.
std::string_view kindIn(const std::string &id)
{
    for (const char *kind : { "doubleARRAY", "floatARRAY", "uint32ARRAY", "int32ARRAY",
                              "uint64ARRAY", "int64ARRAY", "stringARRAY" }) {
        if (id.find(kind) != std::string::npos) {
            return kind;
        }
    }
    return {};
}

/// An unsigned decimal number of 32 bits, blanks around it and a plus before it allowed; 0 for
/// anything else.
unsigned long lengthIn(const std::string &typed)
{
    const char *const blanks = " \t\n\v\f\r\x85\xa0";
    const std::size_t first = typed.find_first_not_of(blanks);
    if (first == std::string::npos) {
        return 0;
    }
    std::string text = typed.substr(first, typed.find_last_not_of(blanks) - first + 1);
    if (text.front() == '+') {
        text.erase(0, 1);
    }
    if (!areDigits(text)) {
        return 0;
    }
    const std::string digits = withoutLeadingZeros(text);
    const unsigned long long number = digits.size() > 10 ? 0 : std::stoull(digits);
    return number > 4294967295 ? 0 : static_cast<unsigned long>(number);
}

Outcome ofNotify(const Words &arguments)
{
    const std::size_t count = arguments.size();
    if (count == 0) {
        return { 3 };
    }
    if (!isOneOf(arguments[0], { "CONFIG", "RESULT" }) || count == 1) {
        return { 2 };
    }
    const bool done = isOneOf(arguments[1], { "START", "STOP", "CLEAR" })
        || (isOneOf(arguments[1], { "ADD", "DEL" }) && count > 2);
    return { done ? 0 : 3 };
}

Outcome ofSetArray(const Words &arguments)
{
    if (arguments.size() < 3) {
        return { 3 };
    }
    const unsigned long length = lengthIn(arguments[1]);
    if (length < 1 || length > 512) {
        return { 2, "Unsupported  array size " + std::to_string(length) + "\n" };
    }
    return { kindIn(arguments[0]).empty() ? 2 : 0 };
}

Outcome ofGet(const Words &arguments, const std::string &error)
{
    if (arguments.empty()) {
        return { 3 };
    }
    const std::string &word = arguments[0];
    const bool served = arguments.size() == 1 || beginsWith(word, "STATUS")
        || beginsWith(word, "VALUE") || beginsWith(word, "VAL_STAT");
    return served ? Outcome { 0, "Reply Not Valid   err=" + error + "\n" } : Outcome { 2 };
}

Outcome ofDbg(const Words &arguments, const std::string &error)
{
    if (arguments.empty()) {
        return { 3 };
    }
    const std::string &word = arguments[0];
    if (word == "GET_IDS") {
        return { 0, "DBG GET_IDS  ERROR  err=" + error + "\n" };
    }
    if (word != "SAVE_STOP" && arguments.size() == 1) {
        return { 2 };
    }
    return { 0, "DBG " + word + "   ERROR     err=" + error + "\n" };
}

Outcome failedCall(const std::string &error)
{
    return { 0, "Reply Not Valid     err=" + error + "\n" };
}

/// FILE and SERVERCMD: one of two words, and a value.
Outcome ofWordAndValue(const Words &arguments, const Words &served, const std::string &error)
{
    if (arguments.size() < 2) {
        return { 3 };
    }
    return isOneOf(arguments[0], served) ? failedCall(error) : Outcome { 2 };
}

Outcome ofCommand(const std::string &command, const Words &arguments, const std::string &error)
{
    if (command == "DBG") {
        return ofDbg(arguments, error);
    }
    if (command == "SIG") {
        return { 0, "",
                 "QObject::connect: No such signal "
                 "KorAppInterface::SigLogNotification(QStringList)\n" };
    }
    if (command == "NOTIFY") {
        return ofNotify(arguments);
    }
    if (command == "SET") {
        return { arguments.size() < 2 ? 3 : 0 };
    }
    if (command == "SETARRAY") {
        return ofSetArray(arguments);
    }
    if (command == "GET") {
        return ofGet(arguments, error);
    }
    if (command == "LIST") {
        // Whatever is asked: a failed call has the status of a missing word.
        return { 3 };
    }
    if (command == "FILE") {
        return ofWordAndValue(arguments, { "SAVE", "LOAD" }, error);
    }
    if (command == "ACTION") {
        return arguments.empty() ? Outcome { 3 } : failedCall(error);
    }
    if (command == "SERVERSTAT") {
        return failedCall(error);
    }
    if (command == "SERVERCMD") {
        return ofWordAndValue(arguments, { "SET_RES_NOTIFY_TIMER", "SET_CFG_NOTIFY_TIMER" }, error);
    }
    return { 1 };
}

} // namespace

bool usageExpected(const Words &words)
{
    return words.size() < 4 || beginsWith(words[1], "-h") || beginsWith(words[1], "--h");
}

bool isConnectionError(const std::string &error, const Words &words)
{
    return error == "Not connected to D-Bus server"
        || (words.size() > 1 && error == "Invalid service name: " + words[1])
        || (words.size() > 2 && error == "Invalid object path: " + words[2]);
}

Outcome expectedOutcome(const Words &words, const Errors &errors)
{
    Outcome outcome { 1 };
    if (words.size() > 3) {
        outcome = ofCommand(words[3], { words.begin() + 4, words.end() }, errors.last);
    }
    outcome.printed.insert(0,
                           "Client DBus Interface not valid, error: " + errors.ofConnection + "\n");
    return outcome;
}

std::optional<std::string> expectedElement(const std::string &id, const std::string &typed)
{
    const std::string_view kind = kindIn(id);
    if (kind == "stringARRAY") {
        return typed;
    }
    const bool negative = beginsWith(typed, "-");
    const std::string digits = typed.substr(negative ? 1 : 0);
    if (areDigits(digits) && digits.size() < 10) {
        const std::string number = withoutLeadingZeros(digits);
        if (!negative) {
            return number;
        }
        if (number != "0") {
            return kind.front() == 'u' ? "0" : "-" + number;
        }
    }
    // "inf" and "nan" are doubles.
    const bool whole = kind != "doubleARRAY" && kind != "floatARRAY";
    if (whole && typed.find_first_of("0123456789") == std::string::npos) {
        return "0";
    }
    return {};
}
