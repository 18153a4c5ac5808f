// SPDX-License-Identifier: MIT
// One run: check the arguments, connect, run one command, linger in the event loop, end with its
// status.
#include "app/commandline.h"
#include "app/commands.h"
#include "app/movra.h"
#include "app/standardstreams.h"
#include "app/usage.h"

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

    const std::string word = wordAt(argv, CommandPosition);
    const Command *const command = findCommand(word);
    const int status = command != nullptr ? (client.*command->handler)(argv) : NotRun;
    if (status != Success) {
        std::cout << "Error While Parsing Command -- use -h for help   err:" << status << std::endl;
    }

    // Calls that nobody waits for go out meanwhile. The monitor has no end of its own.
    constexpr int lingerMs = 500;
    if (word != "SIG") {
        QTimer::singleShot(lingerMs, &client, SLOT(quit()));
    }
    QCoreApplication::exec();
    return status;
}
