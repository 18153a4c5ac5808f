// SPDX-License-Identifier: MIT
// The command table: the only place that connects a command word with its handler.
#pragma once

#include "app/movra.h"

#include <array>
#include <string>

/// What the process does after a handler has returned Success.
enum class Ending {
    Answered, ///< nothing: the handler waited for the reply
    Sent, ///< sends the call: the handler did not wait for the reply
    Listening, ///< prints signals until the bus ends
};

struct Command {
    const char *word; ///< compared exactly, as a whole
    int (Movra::*handler)(char **argv); ///< takes the whole argument vector, returns the status
    Ending ending;
};

/// Searched from the top. A word that is not in the table is unknown.
constexpr std::array<Command, 11> commandTable { {
    { "DBG", &Movra::dbgCommand, Ending::Answered },
    { "SIG", &Movra::sigCommand, Ending::Listening },
    { "NOTIFY", &Movra::notifyCommand, Ending::Sent },
    { "SET", &Movra::setCommand, Ending::Sent },
    { "SETARRAY", &Movra::setArrayCommand, Ending::Sent },
    { "GET", &Movra::getCommand, Ending::Answered },
    { "LIST", &Movra::listCommand, Ending::Answered },
    { "FILE", &Movra::fileCommand, Ending::Answered },
    { "ACTION", &Movra::actionCommand, Ending::Answered },
    { "SERVERSTAT", &Movra::serverStatCommand, Ending::Answered },
    { "SERVERCMD", &Movra::serverCmdCommand, Ending::Answered },
} };

/// The table's row for a word, or null for an unknown word.
const Command *findCommand(const std::string &word);
