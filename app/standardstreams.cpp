// SPDX-License-Identifier: MIT
#include "app/standardstreams.h"

#include <cerrno>
#include <cstdio>
#include <iostream>

#include <ext/stdio_sync_filebuf.h>
#include <fcntl.h>
#include <poll.h>
#include <unistd.h>

namespace
{

/// The stream's write function. Another process that shares the descriptor may make it non-blocking
/// at any time and rely on that, so the flags are not changed.
ssize_t writeAll(void * /*cookie*/, const char *bytes, std::size_t size)
{
    std::size_t written = 0;
    while (written < size) {
        const ssize_t count = write(STDOUT_FILENO, bytes + written, size - written);
        if (count > 0) {
            written += static_cast<std::size_t>(count);
        } else if (count < 0 && errno == EAGAIN) {
            pollfd output { STDOUT_FILENO, POLLOUT, 0 };
            poll(&output, 1, -1);
        } else if (count == 0 || errno != EINTR) {
            break;
        }
    }
    return static_cast<ssize_t>(written);
}

} // namespace

void replaceClosedStreams()
{
    // open() returns the lowest free descriptor.
    int descriptor = 0;
    while (descriptor >= STDIN_FILENO && descriptor <= STDERR_FILENO) {
        descriptor = open("/dev/null", O_RDWR);
    }
    if (descriptor > STDERR_FILENO) {
        close(descriptor);
    }
}

void prepareOutput()
{
    stdout = fopencookie(nullptr, "w", { nullptr, &writeAll, nullptr, nullptr });
    (void)std::setvbuf(stdout, nullptr, _IOLBF, BUFSIZ);
    // Never deleted: std::cout is flushed after everything else.
    std::cout.rdbuf(new __gnu_cxx::stdio_sync_filebuf<char>(stdout));
}
