// SPDX-License-Identifier: MIT
// The three descriptors that every program expects to have, and how standard output is written.
#pragma once

/// Opens /dev/null in place of each standard stream that is closed. The connection to the bus would
/// get its number otherwise, and hear what is printed.
void replaceClosedStreams();

/// Makes `stdout` and `std::cout` one line-buffered stream that waits where a non-blocking
/// descriptor takes no more. A reader on a pipe has each line when it is printed, and a killed
/// process loses none. To be called before anything is printed.
void prepareOutput();
