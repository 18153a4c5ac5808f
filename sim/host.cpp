// SPDX-License-Identifier: MIT
#include "sim/host.h"

#include "sim/catalog.h"
#include "sim/service.h"

#include <QCoreApplication>
#include <QDBusConnection>
#include <QDBusConnectionInterface>
#include <QDBusReply>
#include <QDir>
#include <QRegularExpression>
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

void wake(int signalNumber)
{
    const int savedError = errno;
    const char byte = static_cast<char>(signalNumber);
    // When the pipe is full, the event loop has enough to find.
    [[maybe_unused]] const ssize_t written = ::write(wakePipe[1], &byte, sizeof byte);
    errno = savedError;
}

/// Turns a signal into a byte of the pipe.
void catchSignal(int number)
{
    struct sigaction action {
    };
    action.sa_handler = &wake;
    action.sa_flags = SA_RESTART;
    ::sigaction(number, &action, nullptr);
}

Refusal refusal(const char *name, const QString &sentence)
{
    return { QString::fromLatin1(name), sentence, {} };
}

void ownName(const QDBusConnection &bus, const QString &name)
{
    const QDBusReply<QDBusConnectionInterface::RegisterServiceReply> reply =
        bus.interface()->registerService(name);
    if (reply.isValid() && reply.value() == QDBusConnectionInterface::ServiceRegistered) {
        return;
    }
    const QString reason =
        reply.isValid() ? QStringLiteral("somebody else owns it") : reply.error().message();
    throw refusal(bus.isConnected() ? "Name" : "Bus",
                  QStringLiteral("the bus name %1 cannot be owned: %2").arg(quoted(name), reason));
}

} // namespace

void Host::serve(const Options &options, void (*announceReady)())
{
    static const QRegularExpression objectPath(QStringLiteral("\\A(?:/|(?:/[A-Za-z0-9_]+)+)\\z"));
    if (!objectPath.match(options.path).hasMatch()) {
        throw refusal("Path", QStringLiteral("%1 is not an object path").arg(quoted(options.path)));
    }
    const Catalog catalog = loadCatalog(options.catalogFile);
    StateFiles files(options.stateDirectory
                         ? QDir::current().absoluteFilePath(*options.stateDirectory)
                         : StateFiles::defaultDirectory());
    if (options.stateDirectory) {
        const Place place { QStringLiteral("State"),
                            {},
                            QStringLiteral("the state directory cannot be used"),
                            {},
                            {} };
        if (options.stateDirectory->isEmpty()) {
            throw place.refusal(QStringLiteral("its name is empty"));
        }
        files.prepare(place);
    }

    QDBusConnection bus = QDBusConnection::sessionBus();
    if (!bus.isConnected()) {
        throw refusal("Bus",
                      QStringLiteral("there is no session bus: %1").arg(bus.lastError().message()));
    }
    bus.connect({}, QStringLiteral("/org/freedesktop/DBus/Local"),
                QStringLiteral("org.freedesktop.DBus.Local"), QStringLiteral("Disconnected"), this,
                SLOT(busLost()));
    Announcer announcer(bus, options.path);
    Service service(catalog, files, announcer, options.faults);
    bus.registerVirtualObject(options.path, &service);
    constexpr int withoutAWord = 1;
    connect(&service, &Service::vanished, this, [] { QCoreApplication::exit(withoutAWord); });

    if (::pipe2(wakePipe.data(), O_CLOEXEC | O_NONBLOCK) != 0) {
        throw refusal("Bus", qt_error_string(errno));
    }
    QSocketNotifier notifier(wakePipe[0], QSocketNotifier::Read);
    connect(&notifier, &QSocketNotifier::activated, this, &QCoreApplication::quit);
    for (const int number : { SIGINT, SIGTERM }) {
        catchSignal(number);
    }

    ownName(bus, options.service);
    announceReady();
    if (QCoreApplication::exec() != withoutAWord) {
        announcer.send(
            { QStringLiteral("SigDBusServerClosing"), { QStringLiteral("movra-sim is closing") } });
    }
    // The answer of the bus to this call shows that all that was sent before it has arrived as
    // well.
    bus.unregisterService(options.service);
    bus.unregisterObject(options.path);
    if (!hasBus) {
        throw refusal("Bus", QStringLiteral("the session bus went away"));
    }
}

void Host::busLost()
{
    hasBus = false;
    QCoreApplication::quit();
}
