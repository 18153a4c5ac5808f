// SPDX-License-Identifier: MIT
#include "sim/host.h"

#include "bus/connection.h"
#include "sim/service.h"

#include <QDBusConnectionInterface>
#include <QSocketNotifier>

#include <csignal>

#include <sys/eventfd.h>
#include <unistd.h>

namespace
{

// Few functions are allowed in a signal handler, so it only makes this descriptor readable.
int wakeUp = -1;

/// Lets the signals that end the program end the event loop.
void catchSignals(QObject *context)
{
    wakeUp = eventfd(0, EFD_CLOEXEC);
    if (wakeUp < 0) {
        // The signals then end the process immediately.
        return;
    }
    const auto *notifier = new QSocketNotifier(wakeUp, QSocketNotifier::Read, context);
    QObject::connect(notifier, &QSocketNotifier::activated, &QCoreApplication::quit);
    for (const int number : { SIGINT, SIGTERM, SIGHUP }) {
        if (endsProgram(number)) {
            std::signal(number, [](int /*signal*/) { ::eventfd_write(wakeUp, 1); });
        }
    }
}

void ownName(const QDBusConnection &bus, const QString &name)
{
    const auto reply = bus.interface()->registerService(name);
    endIfBusEnded();
    outliveBus(); // its end ends the event loop from now on
    if (reply.isValid() && reply.value() == QDBusConnectionInterface::ServiceRegistered) {
        return;
    }
    const QString reason = reply.isValid() ? "somebody else owns it"_q : reply.error().message();
    throw Refusal { bus.isConnected() ? "Name"_q : "Bus"_q,
                    "the bus name %1 cannot be owned: %2"_q.arg(quoted(name), reason) };
}

} // namespace

bool endsProgram(int signalNumber)
{
    struct sigaction atStart {
    };
    sigaction(signalNumber, nullptr, &atStart);
    // A shell ignores the others on purpose for a program in the background or under nohup.
    return signalNumber == SIGTERM || atStart.sa_handler != SIG_IGN;
}

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

void serve(const Options &options, const std::function<void()> &announceReady)
{
    const Application application;
    const Catalog catalog = loadCatalog(options.catalogFile);
    StateFiles files(options.stateDirectory.value_or(StateFiles::defaultDirectory()));
    if (options.stateDirectory) {
        const Place place { "State"_q, {}, "the state directory cannot be used"_q };
        if (options.stateDirectory->isEmpty()) {
            throw place.refusal("its name is empty"_q);
        }
        files.prepare(place);
    }
    // Before the connection: a refusal here would close it, and that would end the process.
    Announcer announcer(options.path, options.logFile);
    QDBusConnection bus = openBus();
    bus.connect({}, "/org/freedesktop/DBus/Local"_q, "org.freedesktop.DBus.Local"_q,
                "Disconnected"_q, QCoreApplication::instance(), SLOT(quit()));
    Service service(catalog, files, announcer, options.faults);
    bus.registerVirtualObject(options.path, &service);
    catchSignals(&service);
    ownName(bus, options.service);
    announceReady();
    service.startTimeline();
    QCoreApplication::exec();
    // When the bus answers this call, all calls that it has sent before are here: execute them.
    bus.interface()->isServiceRegistered(options.service);
    QCoreApplication::sendPostedEvents();
    const bool hasBus = bus.isConnected();
    if (!service.hasVanished()) {
        announcer.send({ "SigDBusServerClosing"_q, { "movra-sim is closing"_q } });
    }
    // When the bus answers this call, everything that was sent before it has arrived.
    bus.unregisterService(options.service);
    bus.unregisterObject(options.path);
    announcer.checkRecord();
    if (!hasBus) {
        throw Refusal { "Bus"_q, "the session bus went away"_q };
    }
}
