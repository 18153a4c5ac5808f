// SPDX-License-Identifier: MIT
// A bus that a test may stop and kill, or that follows rules of the test's own.
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
    /// configuration in the end, where they win; throws std::runtime_error if it does not start.
    explicit PrivateBus(const QByteArray &furtherRules = {});

    QByteArray address; ///< for DBUS_SESSION_BUS_ADDRESS
    std::unique_ptr<Program> daemon; ///< killed with this object

private:
    QTemporaryDir directory; ///< holds the socket
    QTemporaryFile configuration;
};
