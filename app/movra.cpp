// SPDX-License-Identifier: MIT
#include "app/movra.h"

#include "bus/connection.h"
#include "bus/proxies.h"

#include <QCoreApplication>
#include <QDBusConnection>
#include <QDBusError>

#include <cstdio>

Movra::Movra(QObject *parent)
    : QObject(parent)
{
}

// The proxy stays on purpose: the process ends right after the client object.
Movra::~Movra() = default;

bool Movra::connectToService(const std::string &service, const std::string &path)
{
    registerBusTypes();
    iface =
        new KorAppInterface(QString::fromLatin1(service.c_str()), QString::fromLatin1(path.c_str()),
                            QDBusConnection::sessionBus(), nullptr);
    if (iface->isValid()) {
        return true;
    }
    // A bus that ends now adds no second line.
    outliveBus();
    std::printf("Client DBus Interface not valid, error: %s\n", recordLastError().constData());
    // Without effect where the event loop has not started, as in main, which ends the run itself.
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
