// SPDX-License-Identifier: MIT
// The usage text and when it is shown.
#pragma once

/// True if the service, the path or the command word is missing, or if the service begins with "-h"
/// or "--h". No other position is checked for help. Longer words count as well.
bool asksForUsage(char **argv);

/// Writes the usage text to standard output, each line flushed.
void printUsage();
