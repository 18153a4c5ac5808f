// SPDX-License-Identifier: MIT
#include "bus/proxies.h"

KorAppInterface::KorAppInterface(const QString &service, const QString &path,
                                 const QDBusConnection &connection, QObject *parent)
    : QDBusAbstractInterface(service, path, staticInterfaceName(), connection, parent)
{
}

KorAppInterface::~KorAppInterface() = default;

ComVarnDBusIntrospectableInterface::ComVarnDBusIntrospectableInterface(
    const QString &service, const QString &path, const QDBusConnection &connection, QObject *parent)
    : QDBusAbstractInterface(service, path, staticInterfaceName(), connection, parent)
{
}

ComVarnDBusIntrospectableInterface::~ComVarnDBusIntrospectableInterface() = default;
