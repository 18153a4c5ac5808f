// SPDX-License-Identifier: MIT
#include "sim/announcer.h"

#include <QDBusMessage>

#include <utility>

Announcer::Announcer(const QDBusConnection &bus, QString objectPath)
    : connection(bus)
    , path(std::move(objectPath))
{
}

void Announcer::send(const QString &member, const QVariantList &arguments) const
{
    QDBusMessage signal = QDBusMessage::createSignal(path, QStringLiteral("varn.pim"), member);
    signal.setArguments(arguments);
    connection.send(signal);
}

void Announcer::info(const QString &text) const
{
    send(QStringLiteral("SigInfo"), { text });
}

void Announcer::error(const QString &text) const
{
    send(QStringLiteral("SigError"), { text });
}
