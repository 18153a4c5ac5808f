// SPDX-License-Identifier: MIT
#include "sim/jsonscan.h"

#include "sim/text.h"

#include <QJsonArray>
#include <QJsonDocument>
#include <QLatin1String>
#include <QSet>

#include <cstring>

namespace
{

constexpr int deepestNesting = 100;

/// Walks over a text; each member stops at the first fault and is then false.
class Scanner
{
public:
    explicit Scanner(const QByteArray &text)
        : bytes(text)
        , at(text.startsWith("\xef\xbb\xbf") ? 3 : 0)
    {
    }

    std::optional<JsonFault> scan()
    {
        if (value(0)) {
            skipBlanks();
            if (at < bytes.size()) {
                expected("the end");
            }
        }
        return fault;
    }

private:
    /// The byte here; 0 at the end, which no JSON text holds.
    char here() const { return at < bytes.size() ? bytes.at(at) : '\0'; }
    bool isOneOf(const char *set) const
    {
        return here() != '\0' && std::strchr(set, here()) != nullptr;
    }
    /// Goes on behind all bytes of the set; true when there was one.
    bool skipAny(const char *set)
    {
        const int start = at;
        while (isOneOf(set)) {
            ++at;
        }
        return at > start;
    }
    void skipBlanks() { skipAny(" \t\n\r"); }
    /// Goes on behind this byte, if it is here.
    bool skip(char wanted)
    {
        const bool isHere = here() == wanted;
        at += isHere ? 1 : 0;
        return isHere;
    }

    bool wrong(int offset, const QString &reason)
    {
        fault = { offset, reason };
        return false;
    }
    bool expected(const char *wanted)
    {
        constexpr int longestCharacter = 4;
        const QString rest = QString::fromUtf8(bytes.mid(at, longestCharacter));
        const int length = !rest.isEmpty() && rest.at(0).isHighSurrogate() ? 2 : 1;
        return wrong(
            at,
            QStringLiteral("expected %1, found %2")
                .arg(QLatin1String(wanted),
                     rest.isEmpty() ? QStringLiteral("the end") : quoted(rest.left(length))));
    }

    bool value(int depth)
    {
        skipBlanks();
        if (depth > deepestNesting) {
            return wrong(at, QStringLiteral("nested too deeply"));
        }
        if (isOneOf("-0123456789")) {
            return number();
        }
        switch (here()) {
        case '{':
            return object(depth);
        case '[':
            return array(depth);
        case '"':
            return string();
        default:
            return word();
        }
    }

    bool object(int depth)
    {
        QSet<QString> keys;
        ++at;
        skipBlanks();
        if (skip('}')) {
            return true;
        }
        do {
            skipBlanks();
            if (here() != '"') {
                return expected(keys.isEmpty() ? "a key or \"}\"" : "a key");
            }
            const int start = at;
            if (!string()) {
                return false;
            }
            const QString key = unescaped(bytes.mid(start, at - start));
            if (keys.contains(key)) {
                return wrong(start, QStringLiteral("the key %1 is there already").arg(quoted(key)));
            }
            keys.insert(key);
            skipBlanks();
            if (!skip(':')) {
                return expected("\":\"");
            }
            if (!value(depth + 1)) {
                return false;
            }
            skipBlanks();
        } while (skip(','));
        return skip('}') || expected("\",\" or \"}\"");
    }

    bool array(int depth)
    {
        ++at;
        skipBlanks();
        if (skip(']')) {
            return true;
        }
        do {
            if (!value(depth + 1)) {
                return false;
            }
            skipBlanks();
        } while (skip(','));
        return skip(']') || expected("\",\" or \"]\"");
    }

    bool string()
    {
        ++at;
        while (!skip('"')) {
            if (static_cast<unsigned char>(here()) < ' ') {
                return expected("the closing quote");
            }
            if (!skip('\\')) {
                ++at;
            } else if (!escape()) {
                return false;
            }
        }
        return true;
    }

    bool escape()
    {
        if (!isOneOf("\"\\/bfnrtu")) {
            return expected("one of \"\\/bfnrtu");
        }
        if (!skip('u')) {
            ++at;
            return true;
        }
        constexpr int digits = 4;
        for (int digit = 0; digit < digits; ++digit, ++at) {
            if (!isOneOf("0123456789abcdefABCDEF")) {
                return expected("a hexadecimal digit");
            }
        }
        return true;
    }

    bool number()
    {
        skip('-');
        if (!skip('0') && !digits()) {
            return false;
        }
        if (skip('.') && !digits()) {
            return false;
        }
        if (skipOneOf("eE")) {
            skipOneOf("+-");
            return digits();
        }
        return true;
    }
    bool digits() { return skipAny("0123456789") || expected("a digit"); }
    bool skipOneOf(const char *set)
    {
        const bool isHere = isOneOf(set);
        at += isHere ? 1 : 0;
        return isHere;
    }

    bool word()
    {
        for (const char *each : { "true", "false", "null" }) {
            const int length = static_cast<int>(std::strlen(each));
            if (bytes.mid(at, length) == each) {
                at += length;
                return true;
            }
        }
        return expected("a value");
    }

    static QString unescaped(const QByteArray &quotedText)
    {
        return QJsonDocument::fromJson('[' + quotedText + ']').array().at(0).toString();
    }

    const QByteArray &bytes;
    int at;
    std::optional<JsonFault> fault;
};

} // namespace

std::optional<JsonFault> findJsonFault(const QByteArray &text)
{
    return Scanner(text).scan();
}
