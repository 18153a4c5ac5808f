// SPDX-License-Identifier: MIT
// How a run must end while no bus can be reached, according to the words and the table of command
// forms, without the program's own code.
#pragma once

#include <QByteArray>
#include <QByteArrayList>

#include <optional>

/// Whether the usage text is all that the words of a run get; the first is the program's name.
bool usageExpected(const QByteArrayList &words);

/// Whether Qt may say this of these words where there is no bus.
bool isConnectionError(const QByteArray &error, const QByteArrayList &words);

/// What Qt said, as the client recorded it: when the connection failed, and at the end. They differ
/// where the service or the path is an empty word.
struct Errors {
    QByteArray ofConnection;
    QByteArray last;
};

/// How a run ends.
struct ExpectedOutcome {
    int status;
    QByteArray printed; ///< on standard output
    QByteArray warnings; ///< of Qt, on standard error
};

/// The outcome of a run that gets past the usage text and goes on after its connection has failed.
ExpectedOutcome expectedOutcome(const QByteArrayList &words, const Errors &errors);

/// What SETARRAY sends for one value, as text; nothing where the rule takes more than a line or
/// two, as for numbers with a fraction. The identifier holds a kind word.
std::optional<QByteArray> expectedElement(const QByteArray &id, const QByteArray &typed);
