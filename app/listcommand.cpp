// SPDX-License-Identifier: MIT
// LIST: prints one of the service's catalogues, an entry a line.
#include "app/answer.h"
#include "app/commandline.h"
#include "app/movra.h"
#include "app/textline.h"
#include "bus/proxies.h"

namespace
{

/// Prints what a catalogue call answers. A failed call is neither printed nor recorded: it shows in
/// the status alone, which no other command does.
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

/// The log ids come as one string, printed as it is.
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
    // Prefixes, in this order: "CONFIGS" is served as well as "CONFIG".
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
    // Not the status that other commands have for an unknown word.
    return ArgumentMissing;
}
