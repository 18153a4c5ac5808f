// SPDX-License-Identifier: MIT
// The three descriptors that every program expects to have, and how standard output is written.
#pragma once

/// Opens /dev/null in place of each standard stream that is closed. Otherwise the connection to the
/// bus would get its descriptor, and printed text would be sent to the bus.
void replaceClosedStreams();

/// Makes `stdout` and `std::cout` one line-buffered stream that waits where a non-blocking
/// descriptor is full. A reader of a pipe receives each line when it is printed, and a killed
/// process loses none. Must be called before anything is printed.
void prepareOutput();
