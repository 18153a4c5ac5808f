// SPDX-License-Identifier: MIT
// The one error type of the simulator, and how text from outside is shown in sentences.
#pragma once

#include <QString>

#include <algorithm>
#include <cstddef>

/// A literal as text; it is UTF-8.
inline QString operator""_q(const char *text, std::size_t length)
{
    return QString::fromUtf8(text, static_cast<int>(length));
}

/// Why something cannot be done; thrown. It becomes the error reply to the current call, or the
/// last line of the program.
struct Refusal {
    /// A word such as `BadValue`, short for varn.pim.Error.BadValue, or the whole name of a bus
    /// error.
    QString name;
    QString sentence;
    QString about = {}; ///< the id whose log gets an entry; null: no entry
};

inline bool isControl(QChar character)
{
    return character.category() == QChar::Other_Control;
}

/// At most 200 characters on one line: a longer text ends in "...", control characters become
/// blanks. This limits the length of error replies.
inline QString shown(const QString &text)
{
    constexpr int longest = 200;
    QString line = text.left(longest);
    if (!line.isEmpty() && line.at(line.size() - 1).isHighSurrogate()) {
        line.chop(1);
    }
    std::replace_if(line.begin(), line.end(), isControl, QLatin1Char(' '));
    return text.size() > longest ? line + "..."_q : line;
}

/// shown() between double quotes.
inline QString quoted(const QString &text)
{
    return QLatin1Char('"') + shown(text) + QLatin1Char('"');
}

/// A client sent a value that does not fit.
inline Refusal badValue(const QString &sentence, const QString &about = {})
{
    return { "BadValue"_q, sentence, about };
}

/// No item, action or log has this id.
inline Refusal unknownId(const QString &id)
{
    return { "UnknownId"_q, "There is no %1 here."_q.arg(quoted(id)), id };
}

/// Where a value comes from, for the sentence that refuses it.
struct Place {
    QString error; ///< the name of the refusal
    QString intro = {}; ///< begins the sentence
    QString path = {}; ///< such as `configs[3].value`; the reason follows after a colon
    QString after = {}; ///< ends the sentence
    QString about = {}; ///< as in Refusal
    int element = -1; ///< of an array; -1: the value as a whole

    Place in(const QString &key) const
    {
        Place place = *this;
        place.path = path.isEmpty() ? key : path + QLatin1Char('.') + key;
        return place;
    }
    Place at(int index) const
    {
        Place place = *this;
        place.path += "[%1]"_q.arg(index);
        return place;
    }
    Refusal refusal(const QString &reason) const
    {
        const QString where = element < 0 ? path : at(element).path;
        return { error, intro + where + ": "_q + reason + after, about };
    }
};
