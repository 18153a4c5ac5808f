// SPDX-License-Identifier: MIT
#include "tests/hostile/randomreply.h"

#include <QByteArrayList>

#include <cstring>

namespace
{

constexpr int deepest = 6; // levels, except in deep values

// D-Bus allows arrays in arrays and structures in structures up to these levels, and 64 levels in
// all. The message around them needs a few.
constexpr int deepestArray = 31;
constexpr int deepestStructure = 30;
constexpr int deepestVariant = 60;

/// An extreme number of the type.
QByteArray extreme(char code)
{
    switch (code) {
    case 'y':
        return "255";
    case 'n':
        return "-32768";
    case 'q':
        return "65535";
    case 'i':
        return "-2147483648";
    case 'u':
        return "4294967295";
    case 'x':
        return "-9223372036854775808";
    default:
        return "18446744073709551615";
    }
}

/// The position after the type that begins at `from`.
int positionAfter(const QByteArray &signature, int from)
{
    if (signature.at(from) == 'a') {
        return positionAfter(signature, from + 1);
    }
    int open = 0;
    do {
        const char code = signature.at(from++);
        open += code == '(' || code == '{' ? 1 : code == ')' || code == '}' ? -1 : 0;
    } while (open > 0);
    return from;
}

/// Containers in containers, down to one byte.
RandomReply deep(int arrays, int structures, int variants)
{
    RandomReply reply { "y", "7" };
    for (int i = 0; i < structures; ++i) {
        reply = { "(" + reply.signature + ")", "(" + reply.text + ",)" };
    }
    for (int i = 0; i < arrays; ++i) {
        reply = { "a" + reply.signature, "[" + reply.text + "]" };
    }
    for (int i = 0; i < variants; ++i) {
        reply = { "v", "<" + (i == 0 ? "@" + reply.signature + " " : "") + reply.text + ">" };
    }
    return reply;
}

} // namespace

RandomReplies::RandomReplies(unsigned seed)
    : source(seed)
{
}

int RandomReplies::pick(int most)
{
    // The distributions of the standard libraries differ.
    return static_cast<int>(source() % (static_cast<unsigned>(most) + 1));
}

QByteArray RandomReplies::basicType()
{
    static const QByteArray codes = "bynqiuxtdsogh";
    return codes.mid(pick(codes.size() - 1), 1);
}

QByteArray RandomReplies::type(int depth)
{
    switch (depth < deepest ? pick(9) : 0) {
    case 1:
        return "v";
    case 2:
    case 3:
        return "a" + type(depth + 1);
    case 4:
        return "a{" + basicType() + type(depth + 1) + "}";
    case 5: {
        QByteArray members;
        for (int i = 0; i <= pick(2); ++i) {
            members += type(depth + 1);
        }
        return "(" + members + ")";
    }
    default:
        return basicType();
    }
}

QByteArray RandomReplies::text()
{
    static const QByteArrayList texts {
        "''",
        "'text'",
        "'%s%n%d'",
        "'é€'",
        "'\U0001F600'",
        "'\\n\\t\\r'",
        "'\\u0001\\u001b[2J'",
        "':config:doubleARRAY:'",
    };
    if (pick(50) == 0) {
        return "'" + QByteArray(pick(9) == 0 ? 1000000 : 10000, 'x') + "'";
    }
    return texts.at(pick(texts.size() - 1));
}

QByteArray RandomReplies::value(const QByteArray &signature, int &from, int depth)
{
    static const QByteArrayList doubles { "0.0", "-1.5", "1e300", "inf", "nan", "1234567.0" };
    const char code = signature.at(from++);
    switch (code) {
    case 'b':
        return pick(1) == 0 ? "true" : "false";
    case 'd':
        return doubles.at(pick(doubles.size() - 1));
    case 's':
        return text();
    case 'o':
        return pick(1) == 0 ? "'/'" : "'/a/b'";
    case 'g':
        return pick(1) == 0 ? "''" : "'a{sv}'";
    case 'h':
        return pick(9) == 0 ? "7" : "0";
    case 'v': {
        if (depth == 1 && pick(30) == 0) {
            const RandomReply inner = pick(2) == 0
                ? deep(0, 0, pick(deepestVariant))
                : deep(pick(deepestArray), pick(deepestStructure), 0);
            return "<@" + inner.signature + " " + inner.text + ">";
        }
        // The content of a variant has its own type.
        const QByteArray inner = type(depth + 1);
        int position = 0;
        return "<@" + inner + " " + value(inner, position, depth + 1) + ">";
    }
    case 'a': {
        const int element = from;
        const bool isMap = signature.at(element) == '{';
        // Long arrays are flat. Nested ones would be too large.
        const bool isLong = std::strchr("av({", signature.at(element)) == nullptr && pick(30) == 0;
        QByteArrayList elements;
        for (int count = isLong ? 1000 : pick(3); count > 0; --count) {
            from = element;
            elements.append(value(signature, from, depth + 1));
        }
        from = positionAfter(signature, element);
        const QByteArray all = elements.join(", ");
        return isMap ? "{" + all + "}" : "[" + all + "]";
    }
    case '{': {
        const QByteArray key = value(signature, from, depth + 1);
        const QByteArray mapped = value(signature, from, depth + 1);
        ++from; // the closing bracket
        return key + ": " + mapped;
    }
    case '(': {
        QByteArrayList members;
        while (signature.at(from) != ')') {
            members.append(value(signature, from, depth + 1));
        }
        ++from;
        return "(" + members.join(", ") + (members.size() == 1 ? ",)" : ")");
    }
    default:
        return pick(2) == 0 ? extreme(code) : QByteArray::number(pick(127));
    }
}

RandomReply RandomReplies::next(const QByteArray &usual)
{
    RandomReply reply;
    if (pick(1) == 0) {
        reply.signature = usual;
    }
    for (int i = pick(2); i > 0; --i) {
        reply.signature += type(0);
    }
    const QByteArray tuple = "(" + reply.signature + ")";
    int from = 0;
    reply.text = "@" + tuple + " " + value(tuple, from, 0);
    return reply;
}

QByteArray RandomReplies::errorName()
{
    static const QByteArrayList names {
        "varn.pim.Error.UnknownId",
        "org.freedesktop.DBus.Error.ServiceUnknown",
        "org.freedesktop.DBus.Error.NoReply",
        "org.freedesktop.DBus.Error.Disconnected",
        "org.freedesktop.DBus.Error.NoMemory",
        "org.freedesktop.DBus.Error.InvalidSignature",
        "com.trolltech.QtDBus.Error.InternalError",
        "_.__",
        "a." + QByteArray(253, 'b'),
    };
    return names.at(pick(names.size() - 1));
}
