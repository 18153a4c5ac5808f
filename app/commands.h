// SPDX-License-Identifier: MIT
// The command table: the only place that connects a command word with its handler.
#pragma once

#include "app/movra.h"

#include <array>
#include <string>

struct Command {
    const char *word; ///< compared exactly, as a whole
    int (Movra::*handler)(char **argv); ///< takes the whole argument vector, returns the status
    bool listens = false; ///< whether the process then prints signals until the bus ends
};

/// Searched from the top. A word that is not in the table is unknown.
constexpr std::array<Command, 11> commandTable { {
    { "DBG", &Movra::dbgCommand },
    { "SIG", &Movra::sigCommand, true },
    { "NOTIFY", &Movra::notifyCommand },
    { "SET", &Movra::setCommand },
    { "SETARRAY", &Movra::setArrayCommand },
    { "GET", &Movra::getCommand },
    { "LIST", &Movra::listCommand },
    { "FILE", &Movra::fileCommand },
    { "ACTION", &Movra::actionCommand },
    { "SERVERSTAT", &Movra::serverStatCommand },
    { "SERVERCMD", &Movra::serverCmdCommand },
} };

/// The table's row for a word, or null for an unknown word.
const Command *findCommand(const std::string &word);
