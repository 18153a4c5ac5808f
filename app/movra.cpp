// SPDX-License-Identifier: MIT
#include "app/movra.h"

#include "app/commandline.h"
#include "bus/connection.h"
#include "bus/proxies.h"

#include <QCoreApplication>
#include <QDBusError>

#include <cstdio>

#include <unistd.h>

Movra::Movra(QObject *parent)
    : QObject(parent)
{
}

// The proxy is not deleted on purpose: the process exits right after the client object.
Movra::~Movra() = default;

bool Movra::connectToService(const std::string &service, const std::string &path)
{
    // Before the connection: at exit Qt destroys it first, and calls without a reply still hold
    // values of these types.
    registerBusTypes();
    // This line is for a wait that ends the process; the line below has the same text.
    const QDBusConnection bus = openSessionBus(
        { STDOUT_FILENO, "Client DBus Interface not valid, error: Not connected to D-Bus server\n",
          NotRun });
    iface = new KorAppInterface(QString::fromLatin1(service.c_str()),
                                QString::fromLatin1(path.c_str()), bus, nullptr);
    // The proxy's question may fail before the end of the bus is noticed.
    endIfBusEnded();
    // From here on the caller decides what the end of the bus means.
    outliveBus();
    if (iface->isValid()) {
        return true;
    }
    std::printf("Client DBus Interface not valid, error: %s\n", recordLastError().constData());
    // This has no effect before the event loop starts, as in main, which exits itself.
    QCoreApplication::quit();
    return false;
}

void Movra::quit()
{
    QCoreApplication::quit();
}

QByteArray Movra::recordLastError()
{
    lastErrorText = iface->lastError().message();
    return lastErrorText.toLatin1();
}
