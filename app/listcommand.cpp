// SPDX-License-Identifier: MIT
// LIST: prints the ids of one kind, each on a line.
#include "app/answer.h"
#include "app/commandline.h"
#include "app/movra.h"
#include "app/textline.h"
#include "bus/proxies.h"

namespace
{

/// Prints the ids of the reply. A failed call is neither printed nor recorded. Only the exit status
/// shows it, unlike in all other commands.
int printCatalogue(const QDBusReply<QStringList> &reply)
{
    if (!reply.isValid()) {
        return ArgumentMissing;
    }
    const QStringList ids = reply.value();
    for (const QString &id : ids) {
        printLine(id);
    }
    return Success;
}

/// The log ids are one string, which is printed unchanged.
int printLogIds(const QDBusReply<QString> &reply)
{
    if (!reply.isValid()) {
        return ArgumentMissing;
    }
    printLine(reply.value());
    return Success;
}

} // namespace

int Movra::listCommand(char **argv)
{
    if (argv[FirstArgument] == nullptr) {
        return ArgumentMissing;
    }
    // Prefixes, in this order: "CONFIGS" and "CONFIG" are both accepted.
    const QString word = QString::fromLatin1(argv[FirstArgument]);
    if (word.startsWith(QLatin1String("CONFIG"))) {
        return printCatalogue(answerTo(iface->ListConfigIds()));
    }
    if (word.startsWith(QLatin1String("RESULT"))) {
        return printCatalogue(answerTo(iface->ListResultIds()));
    }
    if (word.startsWith(QLatin1String("ACTION"))) {
        return printCatalogue(answerTo(iface->ListActionIds()));
    }
    if (word.startsWith(QLatin1String("LOG"))) {
        return printLogIds(answerTo(iface->LogGetIds()));
    }
    // Most other commands have another status for an unknown word.
    return ArgumentMissing;
}
