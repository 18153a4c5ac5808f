// SPDX-License-Identifier: MIT
// For LD_PRELOAD: every thread but the main one wakes up 600 ms late, as on a very busy machine.
#include <dlfcn.h>
#include <poll.h>
#include <unistd.h>

#include <chrono>
#include <csignal>
#include <thread>

namespace
{

template <typename Function> Function next(Function /*type*/, const char *name)
{
    return reinterpret_cast<Function>(dlsym(RTLD_NEXT, name));
}

int late(int result)
{
    if (gettid() != getpid()) {
        std::this_thread::sleep_for(std::chrono::milliseconds(600));
    }
    return result;
}

} // namespace

// GLib's event loop calls the first, that of Qt the second. glibc's parameter names are reserved.
// NOLINTNEXTLINE(readability-inconsistent-declaration-parameter-name)
extern "C" int poll(pollfd *descriptors, nfds_t count, int limit)
{
    return late(next(&poll, "poll")(descriptors, count, limit));
}

// NOLINTNEXTLINE(readability-inconsistent-declaration-parameter-name)
extern "C" int ppoll(pollfd *descriptors, nfds_t count, const timespec *limit,
                     const sigset_t *signals)
{
    return late(next(&ppoll, "ppoll")(descriptors, count, limit, signals));
}
