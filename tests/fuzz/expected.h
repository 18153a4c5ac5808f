// SPDX-License-Identifier: MIT
// The expected outcome of a run without a bus, computed from the words and the table of command
// forms without the code of the program.
#pragma once

#include <QByteArray>
#include <QByteArrayList>

#include <optional>

/// Whether a run with these words prints only the usage text; the first is the program's name.
bool usageExpected(const QByteArrayList &words);

/// Whether Qt may write this warning for these words without a bus.
bool isConnectionError(const QByteArray &error, const QByteArrayList &words);

/// The error of Qt that the client recorded: when the connection failed, and at the end. They
/// differ if the service or the path is an empty word.
struct Errors {
    QByteArray ofConnection;
    QByteArray last;
};

/// The outcome of a run.
struct ExpectedOutcome {
    int status;
    QByteArray printed; ///< on standard output
    QByteArray warnings; ///< of Qt, on standard error
};

/// The outcome of a run that does not print the usage text and continues after the failed
/// connection.
ExpectedOutcome expectedOutcome(const QByteArrayList &words, const Errors &errors);

/// What SETARRAY sends for one value, as text; nothing where the rule needs more than two lines, as
/// for numbers with a fraction. The id contains a kind word.
std::optional<QByteArray> expectedElement(const QByteArray &id, const QByteArray &typed);
