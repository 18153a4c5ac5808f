// SPDX-License-Identifier: MIT
// Argument vectors, and calls of handlers with them in this process.
#pragma once

#include <QByteArray>
#include <QByteArrayList>

#include <memory>
#include <vector>

class Movra;

/// A vector as the kernel lays it out: words, null, environment, null. The vector and its texts
/// have exactly their size on the heap, so AddressSanitizer reports the first byte read beyond.
class ArgumentVector
{
public:
    explicit ArgumentVector(const QByteArrayList &words,
                            const QByteArrayList &environment = { "AFTER=the end", "", "12" });

    char **argv() { return entries.data(); }
    char **environment() { return &entries[environmentBegin]; }
    /// The words up to the first null entry, which Qt may have moved.
    QByteArrayList words() const;

private:
    void append(const QByteArrayList &words);

    std::vector<std::unique_ptr<char[]>> texts;
    std::vector<char *> entries;
    std::size_t environmentBegin;
};

/// What a request printed and how it ended.
struct Outcome {
    int status;
    QByteArray out;
    QByteArray err;
};

/// Looks up the command word and calls its handler, as the entry point does. Adds the line that the
/// entry point prints about a status.
Outcome callHandler(Movra &movra, char **argv);

/// The same with what is typed after the program's name.
Outcome callHandler(Movra &movra, const QByteArrayList &arguments);
