// SPDX-License-Identifier: MIT
#include "app/standardstreams.h"

#include <fcntl.h>
#include <unistd.h>

void replaceClosedStreams()
{
    // The lowest number that is free comes first.
    int descriptor = 0;
    while (descriptor >= STDIN_FILENO && descriptor <= STDERR_FILENO) {
        descriptor = open("/dev/null", O_RDWR);
    }
    if (descriptor > STDERR_FILENO) {
        close(descriptor);
    }
}
