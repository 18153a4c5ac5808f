// SPDX-License-Identifier: MIT
// What a run must come to while no bus can be reached, told from the words alone and without the
// program's own code.
#pragma once

#include <optional>
#include <string>
#include <vector>

/// The words of one run; the first is the program's name.
using Words = std::vector<std::string>;

/// Whether the usage text is all that these words get.
bool usageExpected(const Words &words);

/// Whether Qt may say this of these words where there is no bus.
bool isConnectionError(const std::string &error, const Words &words);

/// What a run comes to.
struct Outcome {
    int status;
    std::string printed {}; ///< on standard output
    std::string complaints {}; ///< of Qt, on standard error
};

/// What Qt said, as the client recorded it: when the connection failed, and at the end. They differ
/// where the service or the path is an empty word.
struct Errors {
    std::string ofConnection;
    std::string last;
};

/// The outcome of a run that gets past the usage text, goes on after its connection has failed, and
/// does not say itself that a status is not 0.
Outcome expectedOutcome(const Words &words, const Errors &errors);

/// What becomes of one value of SETARRAY, as text; nothing where this cannot be told in a line or
/// two, as for numbers with a fraction. The identifier holds a kind word.
std::optional<std::string> expectedElement(const std::string &id, const std::string &typed);
