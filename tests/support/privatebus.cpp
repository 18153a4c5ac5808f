// SPDX-License-Identifier: MIT
#include "tests/support/privatebus.h"

#include <QFile>

#include <stdexcept>

PrivateBus::PrivateBus(const QByteArray &furtherRules)
{
    QFile base(QStringLiteral(MOVRA_BUS_CONFIGURATION));
    if (!base.open(QIODevice::ReadOnly) || !configuration.open()) {
        throw std::runtime_error("no configuration for a bus");
    }
    // A daemon that is killed does not remove its socket.
    const QByteArray folder = QFile::encodeName(directory.path());
    const QByteArray end = "</busconfig>";
    configuration.write(
        base.readAll().replace("tmpdir=/tmp", "tmpdir=" + folder).replace(end, furtherRules + end));
    configuration.close();
    daemon = std::make_unique<Program>(
        "dbus-daemon",
        QByteArrayList { "--nofork", "--nopidfile", "--print-address",
                         "--config-file=" + QFile::encodeName(configuration.fileName()) },
        QByteArrayList());
    if (!daemon->waitForLines(1)) {
        throw std::runtime_error("dbus-daemon: " + daemon->err.toStdString());
    }
    address = daemon->out.trimmed();
}
