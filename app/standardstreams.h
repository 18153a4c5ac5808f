// SPDX-License-Identifier: MIT
// The three descriptors that every program expects to have.
#pragma once

/// Opens /dev/null in place of each standard stream that is closed. The connection to the bus would
/// get its number otherwise, and hear what is printed.
void replaceClosedStreams();
