// SPDX-License-Identifier: MIT
// What the program ends with; `movra-sim --help` lists the same.
#pragma once

/// The exit statuses.
enum class ExitStatus : int {
    Closed = 0, ///< told to end, or vanished, or help or version printed
    WrongUsage = 1, ///< wrong options or stray arguments
    BadCatalog = 2, ///< the catalogue cannot be read or is malformed
    NoBus = 3, ///< there is no session bus, or it went away
    NoName = 4, ///< the name is malformed, taken or not allowed
    BadPath = 5, ///< the object path is malformed
    BadState = 6, ///< the state directory named cannot be used
};
