// SPDX-License-Identifier: MIT
// ACTION, SERVERSTAT and SERVERCMD: each makes one call and waits for the reply. The exit status of
// a failed call is also 0.
#include "app/answer.h"
#include "app/commandline.h"
#include "app/movra.h"
#include "app/textline.h"
#include "bus/proxies.h"

#include <cstdio>
#include <cstring>

namespace
{

bool isTimerWord(const char *word)
{
    return std::strcmp(word, "SET_RES_NOTIFY_TIMER") == 0
        || std::strcmp(word, "SET_CFG_NOTIFY_TIMER") == 0;
}

} // namespace

int Movra::actionCommand(char **argv)
{
    if (argv[FirstArgument] == nullptr) {
        return ArgumentMissing;
    }
    const QString id = QString::fromLatin1(argv[FirstArgument]);
    if (argv[SecondArgument] == nullptr) {
        const QDBusReply<void> reply = answerTo(iface->DoAction(id));
        if (!reply.isValid()) {
            reportFailedReply();
        }
        return Success;
    }
    const QDBusReply<QString> reply =
        answerTo(iface->DoAction(id, QString::fromLatin1(argv[SecondArgument])));
    if (reply.isValid()) {
        printLine(reply.value());
    } else {
        reportFailedReply();
    }
    return Success;
}

int Movra::serverStatCommand(char ** /*argv*/)
{
    const QDBusReply<int> reply = answerTo(iface->DBusServerStatus());
    if (reply.isValid()) {
        std::printf("%d\n", reply.value());
    } else {
        reportFailedReply();
    }
    return Success;
}

int Movra::serverCmdCommand(char **argv)
{
    // Both positions are checked before the word.
    if (argv[FirstArgument] == nullptr || argv[SecondArgument] == nullptr) {
        return ArgumentMissing;
    }
    if (!isTimerWord(argv[FirstArgument])) {
        return NotSupported;
    }
    // Text that is no number in the range of an int is sent as 0.
    const int timeout = QString::fromLatin1(argv[SecondArgument]).toInt();
    const QDBusReply<void> reply = answerTo(
        iface->DBusServerCmd(QString::fromLatin1(argv[FirstArgument]), QDBusVariant(timeout)));
    if (!reply.isValid()) {
        reportFailedReply();
    }
    return Success;
}

void Movra::reportFailedReply()
{
    // Five blanks before "err".
    std::printf("Reply Not Valid     err=%s\n", recordLastError().constData());
}
