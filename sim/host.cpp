// SPDX-License-Identifier: MIT
#include "sim/host.h"

#include "bus/connection.h"
#include "sim/catalog.h"
#include "sim/service.h"

#include <QCoreApplication>
#include <QDBusConnection>
#include <QDBusConnectionInterface>
#include <QDBusReply>
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

/// Lets the signals that end the program end the event loop.
void catchSignals(QObject *context)
{
    if (::pipe2(wakePipe.data(), O_CLOEXEC | O_NONBLOCK) != 0) {
        // They then keep ending the process at once.
        return;
    }
    auto *notifier = new QSocketNotifier(wakePipe[0], QSocketNotifier::Read, context);
    QObject::connect(notifier, &QSocketNotifier::activated, context, [notifier] {
        notifier->setEnabled(false);
        QCoreApplication::quit();
    });
    for (const int number : { SIGINT, SIGTERM, SIGHUP }) {
        struct sigaction action {
        };
        ::sigaction(number, nullptr, &action);
        // Whoever started the program in the background, or with nohup, means it.
        if (number != SIGTERM && action.sa_handler == SIG_IGN) {
            continue;
        }
        action = {};
        action.sa_handler = &wake;
        action.sa_flags = SA_RESTART;
        ::sigaction(number, &action, nullptr);
    }
}

void ownName(const QDBusConnection &bus, const QString &name)
{
    const QDBusReply<QDBusConnectionInterface::RegisterServiceReply> reply =
        bus.interface()->registerService(name);
    outliveBus(); // busLost() sees to that from now on
    if (reply.isValid() && reply.value() == QDBusConnectionInterface::ServiceRegistered) {
        return;
    }
    const QString reason = reply.isValid() ? "somebody else owns it"_q : reply.error().message();
    throw Refusal { bus.isConnected() ? "Name"_q : "Bus"_q,
                    "the bus name %1 cannot be owned: %2"_q.arg(quoted(name), reason) };
}

} // namespace

QDBusConnection openBus()
{
    constexpr int noBus = 3;
    QDBusConnection bus = openSessionBus(
        { STDERR_FILENO, "movra-sim: there is no session bus: Not connected to D-Bus server\n",
          noBus });
    if (!bus.isConnected()) {
        throw Refusal { "Bus"_q, "there is no session bus: "_q + bus.lastError().message() };
    }
    return bus;
}

void Host::serve(const Options &options, const std::function<void()> &announceReady)
{
    const Catalog catalog = loadCatalog(options.catalogFile);
    StateFiles files(options.stateDirectory.value_or(StateFiles::defaultDirectory()));
    if (options.stateDirectory) {
        const Place place { "State"_q, {}, "the state directory cannot be used"_q };
        if (options.stateDirectory->isEmpty()) {
            throw place.refusal("its name is empty"_q);
        }
        files.prepare(place);
    }

    Record record(options.logFile);

    QDBusConnection bus = openBus();
    bus.connect({}, "/org/freedesktop/DBus/Local"_q, "org.freedesktop.DBus.Local"_q,
                "Disconnected"_q, this, SLOT(busLost()));
    Announcer announcer(bus, options.path, record);
    Service service(catalog, files, announcer, record, options.faults);
    bus.registerVirtualObject(options.path, &service);
    constexpr int withoutAWord = 1;
    connect(&service, &Service::vanished, this, [] { QCoreApplication::exit(withoutAWord); });
    catchSignals(this);
    ownName(bus, options.service);
    announceReady();
    service.startTimeline();
    if (QCoreApplication::exec() != withoutAWord) {
        announcer.send({ "SigDBusServerClosing"_q, { "movra-sim is closing"_q } });
    }
    // The answer of the bus to this call shows that all that was sent before it has arrived as
    // well.
    bus.unregisterService(options.service);
    bus.unregisterObject(options.path);
    record.check();
    if (!hasBus) {
        throw Refusal { "Bus"_q, "the session bus went away"_q };
    }
}

void Host::busLost()
{
    hasBus = false;
    QCoreApplication::quit();
}
