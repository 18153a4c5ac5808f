// SPDX-License-Identifier: MIT
#include "app/commands.h"

#include <algorithm>

const Command *findCommand(const std::string &word)
{
    const auto *const row =
        std::find_if(commandTable.begin(), commandTable.end(),
                     [&word](const Command &command) { return word == command.word; });
    return row == commandTable.end() ? nullptr : row;
}
