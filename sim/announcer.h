// SPDX-License-Identifier: MIT
// Sends the signals of the interface.
#pragma once

#include <QDBusConnection>
#include <QString>
#include <QVariant>

/// Where the parts of the simulator say what is to be announced; cheap to copy.
class Announcer
{
public:
    Announcer(const QDBusConnection &bus, QString objectPath);

    /// Sends one signal; it is on its way, not delivered, when this returns.
    void send(const QString &member, const QVariantList &arguments) const;
    /// Sends SigInfo.
    void info(const QString &text) const;
    /// Sends SigError.
    void error(const QString &text) const;

private:
    QDBusConnection connection;
    QString path;
};
