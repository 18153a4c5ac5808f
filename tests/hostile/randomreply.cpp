// SPDX-License-Identifier: MIT
#include "tests/hostile/randomreply.h"

#include <QByteArrayList>

namespace
{

constexpr int deepest = 6;

/// The position behind the type that begins at `from`.
int behind(const QByteArray &signature, int from)
{
    if (signature.at(from) == 'a') {
        return behind(signature, from + 1);
    }
    int open = 0;
    do {
        const char code = signature.at(from++);
        open += code == '(' || code == '{' ? 1 : code == ')' || code == '}' ? -1 : 0;
    } while (open > 0);
    return from;
}

} // namespace

RandomReplies::RandomReplies(unsigned seed)
    : source(seed)
{
}

int RandomReplies::pick(int most)
{
    // Not a distribution of the library's: those differ from one library to the next.
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
    return pick(50) == 0 ? "'" + QByteArray(100000, 'x') + "'" : texts.at(pick(texts.size() - 1));
}

QByteArray RandomReplies::value(const QByteArray &signature, int &from, int depth)
{
    static const QByteArrayList numbers { "0", "1", "7", "100" };
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
        // What lies in a variant has a type of its own.
        const QByteArray inner = type(depth + 1);
        int position = 0;
        return "<@" + inner + " " + value(inner, position, depth + 1) + ">";
    }
    case 'a': {
        const int element = from;
        const bool isMap = signature.at(element) == '{';
        QByteArrayList elements;
        for (int count = pick(3); count > 0; --count) {
            from = element;
            elements.append(value(signature, from, depth + 1));
        }
        from = behind(signature, element);
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
        return numbers.at(pick(numbers.size() - 1));
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
