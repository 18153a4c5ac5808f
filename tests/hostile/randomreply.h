// SPDX-License-Identifier: MIT
// Replies that no correct service sends: a random signature, and values that fit it.
#pragma once

#include <QByteArray>

#include <random>

/// A reply's body.
struct RandomReply {
    QByteArray signature; ///< of the body, as on the wire
    QByteArray text; ///< GVariant text, a tuple
};

/// Makes replies from a seed: the same seed makes the same replies, everywhere.
class RandomReplies
{
public:
    explicit RandomReplies(unsigned seed);
    /// A body of up to three values. Sometimes it begins with `usual`, so that not every reply
    /// fails because of its signature.
    RandomReply next(const QByteArray &usual);
    /// The name of an error, up to the 255 bytes that D-Bus allows.
    QByteArray errorName();

private:
    /// A number from 0 to `most`.
    int pick(int most);
    QByteArray basicType();
    /// One complete type.
    QByteArray type(int depth);
    /// A value of the type that begins at `from` in `signature`; moves `from` past the type.
    QByteArray value(const QByteArray &signature, int &from, int depth);
    QByteArray text();

    std::mt19937 source;
};
