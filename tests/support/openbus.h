// SPDX-License-Identifier: MIT
// The session bus for tests that receive signals.
#pragma once

#include <QCoreApplication>
#include <QDBusConnection>

/// Opens the session bus. Qt D-Bus holds signals back until the main thread has handled an event
/// that sessionBus() has posted, and then a newer signal may overtake them. If a service's end
/// overtakes its signals, Qt D-Bus discards them. After this function none is held back.
inline QDBusConnection openBus()
{
    QDBusConnection bus = QDBusConnection::sessionBus();
    QCoreApplication::sendPostedEvents();
    return bus;
}
