// SPDX-License-Identifier: MIT
#include "sim/host.h"

#include "bus/connection.h"
#include "sim/catalog.h"
#include "sim/quitsignals.h"
#include "sim/resources.h"
#include "sim/service.h"
#include "sim/statefiles.h"
#include "sim/text.h"

#include <QCoreApplication>
#include <QDBusConnection>
#include <QDBusConnectionInterface>
#include <QDBusReply>
#include <QDir>
#include <QFile>
#include <QRegularExpression>

#include <utility>

#include <unistd.h>

namespace
{

CatalogText loadCatalog(const QString &fileName)
{
    if (fileName.isEmpty()) {
        return readCatalog(builtInCatalog());
    }
    QFile file(fileName);
    if (!file.open(QIODevice::ReadOnly)) {
        return { {}, file.errorString() };
    }
    const QByteArray bytes = file.read(StateFiles::mostBytes + 1);
    if (file.error() != QFileDevice::NoError) {
        return { {}, file.errorString() };
    }
    if (bytes.size() > StateFiles::mostBytes) {
        return { {}, QStringLiteral("is larger than 16 MiB") };
    }
    return readCatalog(bytes);
}

/// Why the name cannot be owned, or nothing once it is.
QString ownName(const QDBusConnection &bus, const QString &name)
{
    const QDBusReply<QDBusConnectionInterface::RegisterServiceReply> reply =
        bus.interface()->registerService(name);
    if (!reply.isValid()) {
        return reply.error().message();
    }
    return reply.value() == QDBusConnectionInterface::ServiceRegistered
        ? QString()
        : QStringLiteral("somebody else owns it");
}

} // namespace

Host::Host(Options hostOptions, QObject *parent)
    : QObject(parent)
    , options(std::move(hostOptions))
{
}

Ending Host::serve(void (*announceReady)())
{
    static const QRegularExpression objectPath(QStringLiteral("\\A(?:/|(?:/[A-Za-z0-9_]+)+)\\z"));
    if (!objectPath.match(options.path).hasMatch()) {
        return { ExitStatus::BadPath,
                 QStringLiteral("%1 is not an object path").arg(quoted(options.path)) };
    }
    const CatalogText text = loadCatalog(options.catalogFile);
    if (!text.problem.isEmpty()) {
        return { ExitStatus::BadCatalog,
                 QStringLiteral("the catalogue %1 is no good: %2")
                     .arg(quoted(options.catalogFile), text.problem) };
    }
    const StateFiles files(options.stateDirectory
                               ? QDir::current().absoluteFilePath(*options.stateDirectory)
                               : StateFiles::defaultDirectory());
    if (options.stateDirectory) {
        const QString reason = options.stateDirectory->isEmpty()
            ? QStringLiteral("its name is empty")
            : files.prepare();
        if (!reason.isEmpty()) {
            return { ExitStatus::BadState,
                     QStringLiteral("the state directory cannot be used: %1").arg(reason) };
        }
    }
    return serveOnBus(text.catalog, files, announceReady);
}

Ending Host::serveOnBus(const Catalog &catalog, const StateFiles &files, void (*announceReady)())
{
    QDBusConnection bus = openSessionBus(
        { STDERR_FILENO, "movra-sim: there is no session bus: Not connected to D-Bus server\n",
          static_cast<int>(ExitStatus::NoBus) });
    if (!bus.isConnected()) {
        return { ExitStatus::NoBus,
                 QStringLiteral("there is no session bus: %1").arg(bus.lastError().message()) };
    }
    bus.connect({}, QStringLiteral("/org/freedesktop/DBus/Local"),
                QStringLiteral("org.freedesktop.DBus.Local"), QStringLiteral("Disconnected"), this,
                SLOT(busLost()));

    const Announcer announcer(bus, options.path);
    Service service(catalog, files, announcer, options.faults);
    bus.registerVirtualObject(options.path, &service);
    const QuitSignals quitSignals;
    constexpr int withoutAWord = 1;
    connect(&service, &Service::vanished, this, [] { QCoreApplication::exit(withoutAWord); });
    connect(&quitSignals, &QuitSignals::received, this, &QCoreApplication::quit);
    const QString problem = ownName(bus, options.service);
    outliveBus(); // busLost() sees to that from now on
    if (!problem.isEmpty()) {
        return { bus.isConnected() ? ExitStatus::NoName : ExitStatus::NoBus,
                 QStringLiteral("the bus name %1 cannot be owned: %2")
                     .arg(quoted(options.service), problem) };
    }
    announceReady();
    if (QCoreApplication::exec() != withoutAWord) {
        announcer.send(QStringLiteral("SigDBusServerClosing"),
                       { QStringLiteral("movra-sim is closing") });
    }
    // The answer of the bus to this call shows that all that was sent before it has arrived as
    // well.
    bus.unregisterService(options.service);
    bus.unregisterObject(options.path);
    return ending;
}

void Host::busLost()
{
    ending = { ExitStatus::NoBus, QStringLiteral("the session bus went away") };
    QCoreApplication::quit();
}
