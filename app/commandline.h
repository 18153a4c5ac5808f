// SPDX-License-Identifier: MIT
// The positions in the argument vector and the exit statuses of all commands.
#pragma once

#include <string>

/// Positions in the argument vector, which ends with a null entry; 0 is the program's name.
enum Position : int {
    ServicePosition = 1, ///< bus name of the destination
    PathPosition = 2, ///< object path of the destination
    CommandPosition = 3, ///< command word
    FirstArgument = 4, ///< the command's own arguments begin here
    SecondArgument = 5,
    ThirdArgument = 6,
};

/// Exit statuses; the numbers are part of the interface to scripts.
enum Status : int {
    Success = 0, ///< most commands end with it also when the service refused the call
    NotRun = 1, ///< usage text, failed connection, unknown command word, end of the bus
    NotSupported = 2, ///< mostly: a word or a value is not supported
    ArgumentMissing = 3, ///< mostly: a required argument is missing
};

/// The unchanged word at a position; empty if the vector ends at or before it.
///
/// QCoreApplication removes its own options from the vector, so a position that existed at the
/// start of the program may be missing later, and entries after the end are stale.
std::string wordAt(char **argv, Position position);
