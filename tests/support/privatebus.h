// SPDX-License-Identifier: MIT
// A bus that a test can stop, kill and configure.
#pragma once

#include "tests/support/program.h"

#include <QByteArray>
#include <QTemporaryDir>
#include <QTemporaryFile>

#include <memory>

class PrivateBus
{
public:
    /// Starts a session bus as in scripts/private-bus.conf, with further elements of a bus
    /// configuration at the end, where they take precedence; throws std::runtime_error if it does
    /// not start.
    explicit PrivateBus(const QByteArray &furtherRules = {});

    QByteArray address; ///< for DBUS_SESSION_BUS_ADDRESS
    std::unique_ptr<Program> daemon; ///< killed with this object

private:
    /// Holds the socket. The path of TMPDIR may not fit into an address.
    QTemporaryDir directory { QStringLiteral("/tmp/movra-bus-XXXXXX") };
    QTemporaryFile configuration;
};
