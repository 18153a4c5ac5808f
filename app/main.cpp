// SPDX-License-Identifier: MIT
// One run: check the arguments, connect, run one command, run the event loop as the command table
// says, and exit with the command's status.
#include "app/commandline.h"
#include "app/commands.h"
#include "app/movra.h"
#include "app/standardstreams.h"
#include "app/usage.h"
#include "bus/connection.h"

#include <QCoreApplication>
#include <QTimer>

#include <iostream>
#include <string>

int main(int argc, char **argv)
{
    replaceClosedStreams();
    prepareOutput();

    if (asksForUsage(argv)) {
        printUsage();
        return NotRun;
    }

    QCoreApplication application(argc, argv);
    Movra client(&application);
    if (!client.connectToService(wordAt(argv, ServicePosition), wordAt(argv, PathPosition))) {
        return NotRun;
    }
    // From here on the end of the bus ends the process, without a line.
    endWithBus(NotRun);

    const std::string word = wordAt(argv, CommandPosition);
    const Command *const command = findCommand(word);
    const bool listens = command != nullptr && command->listens;
    if (listens) {
        // Qt D-Bus 5.15 asks for the owner of the service and waits for the reply even if the
        // connection has just been closed. libdbus would then abort the process.
        qputenv("DBUS_FATAL_WARNINGS", "0");
        // Qt D-Bus delivers this signal after everything that the bus sent before it ended.
        QDBusConnection::sessionBus().connect({}, QStringLiteral("/org/freedesktop/DBus/Local"),
                                              QStringLiteral("org.freedesktop.DBus.Local"),
                                              QStringLiteral("Disconnected"), &application,
                                              SLOT(quit()));
        // The bus may have ended before this connection was made.
        endIfBusEnded();
        outliveBus();
    }
    const int status = command != nullptr ? (client.*command->handler)(argv) : NotRun;
    if (status != Success) {
        // Nothing was sent, or the wait is over.
        outliveBus();
        std::cout << "Error While Parsing Command -- use -h for help   err:" << status << std::endl;
    }

    if (listens) {
        const FlowControl flow;
        QCoreApplication::exec();
        return NotRun;
    }
    constexpr int lingerMs = 500;
    QTimer::singleShot(lingerMs, &client, SLOT(quit()));
    QCoreApplication::exec();
    // For commands that do not wait for a reply.
    sendQueuedCalls();
    // Qt D-Bus closes the connection at exit. The bus has not ended then.
    outliveBus();
    return status;
}
