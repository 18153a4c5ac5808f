// SPDX-License-Identifier: MIT
#include "sim/quitsignals.h"

#include <QSocketNotifier>

#include <array>
#include <cerrno>
#include <csignal>

#include <fcntl.h>
#include <unistd.h>

namespace
{

// A signal handler may do next to nothing, so it writes one byte for the event loop to find.
std::array<int, 2> wakePipe { -1, -1 };

void wake(int /*signalNumber*/)
{
    const int savedError = errno;
    const char byte = 0;
    // When the pipe is full, the event loop has enough to find.
    [[maybe_unused]] const ssize_t written = ::write(wakePipe[1], &byte, sizeof byte);
    errno = savedError;
}

} // namespace

QuitSignals::QuitSignals(QObject *parent)
    : QObject(parent)
{
    if (::pipe2(wakePipe.data(), O_CLOEXEC | O_NONBLOCK) != 0) {
        // Both signals then keep ending the process at once.
        return;
    }
    auto *notifier = new QSocketNotifier(wakePipe[0], QSocketNotifier::Read, this);
    connect(notifier, &QSocketNotifier::activated, this, [this, notifier] {
        notifier->setEnabled(false);
        Q_EMIT received();
    });
    struct sigaction action {
    };
    action.sa_handler = &wake;
    action.sa_flags = SA_RESTART;
    ::sigaction(SIGINT, &action, nullptr);
    ::sigaction(SIGTERM, &action, nullptr);
}
