// SPDX-License-Identifier: MIT
// DBG: forwards debug-log commands to the service and asks for its debug-log ids.
#include "app/answer.h"
#include "app/commandline.h"
#include "app/movra.h"
#include "bus/proxies.h"

#include <cstdio>

int Movra::dbgCommand(char **argv)
{
    if (argv[FirstArgument] == nullptr) {
        return ArgumentMissing;
    }
    const std::string word = argv[FirstArgument];
    if (word == "SAVE_STOP") {
        // A value on the command line is ignored.
        generateDbgLogCmd(word, {});
    } else if (word == "GET_IDS") {
        callDbgLogGetIds();
    } else if (argv[SecondArgument] == nullptr) {
        return NotSupported;
    } else {
        // Any word: the service decides what it accepts.
        generateDbgLogCmd(word, argv[SecondArgument]);
    }
    return Success;
}

void Movra::generateDbgLogCmd(std::string cmd, std::string value)
{
    const QDBusReply<void> reply = answerTo(
        iface->DbgLogCmd(QString::fromLatin1(cmd.c_str()), QString::fromLatin1(value.c_str())));
    if (!reply.isValid()) {
        std::printf("DBG %s   ERROR     err=%s\n", cmd.c_str(), recordLastError().constData());
    }
}

void Movra::callDbgLogGetIds()
{
    const QDBusReply<QStringList> reply = answerTo(iface->DbgLogGetIds());
    if (!reply.isValid()) {
        // The blanks differ from those of the other error line. Scripts rely on both.
        std::printf("DBG GET_IDS  ERROR  err=%s\n", recordLastError().constData());
        return;
    }
    const QStringList ids = reply.value();
    for (const QString &id : ids) {
        std::puts(id.toLatin1().constData());
    }
}
