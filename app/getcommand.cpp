// SPDX-License-Identifier: MIT
// GET: reads an item's value, its status, or both, and prints them.
#include "app/answer.h"
#include "app/commandline.h"
#include "app/movra.h"
#include "app/textline.h"
#include "bus/proxies.h"

#include <cstdio>

int Movra::getCommand(char **argv)
{
    if (argv[FirstArgument] == nullptr) {
        return ArgumentMissing;
    }
    const QString first = QString::fromLatin1(argv[FirstArgument]);
    // A single word is always the id, even if it looks like a sub-word.
    if (argv[SecondArgument] == nullptr) {
        getValue(first);
        return Success;
    }
    const QString id = QString::fromLatin1(argv[SecondArgument]);
    // Prefixes, in this order. "ALL" is in the usage text, but rejected.
    if (first.startsWith(QLatin1String("STATUS"))) {
        getStatus(id);
    } else if (first.startsWith(QLatin1String("VALUE"))) {
        getValue(id);
    } else if (first.startsWith(QLatin1String("VAL_STAT"))) {
        getValueStatus(id);
    } else {
        return NotSupported;
    }
    return Success;
}

void Movra::getValue(const QString &id)
{
    const QDBusReply<QDBusVariant> reply = answerTo(iface->GetValue(id));
    if (reply.isValid()) {
        printValue(id, reply.value().variant());
    } else {
        reportFailedGet();
    }
}

void Movra::getStatus(const QString &id)
{
    const QDBusReply<int> reply = answerTo(iface->GetStatus(id));
    if (reply.isValid()) {
        std::printf("%d\n", reply.value());
    } else {
        reportFailedGet();
    }
}

void Movra::getValueStatus(const QString &id)
{
    const QDBusReply<IdValueStatusStruct> reply = answerTo(iface->GetValueStatus(id));
    if (reply.isValid()) {
        // The id of the command line decides how to print the value. The id in the reply is
        // ignored.
        const IdValueStatusStruct record = reply.value();
        std::printf("status=%d\n", record.status);
        printValue(id, record.value);
    } else {
        reportFailedGet();
    }
}

void Movra::printValue(const QString &id, const QVariant &value)
{
    if (qstrncmp(value.typeName(), "QDBusArgument", 13) == 0) {
        printArgumentValue(id, value.value<QDBusArgument>());
    } else if (qstrncmp(value.typeName(), "QStringList", 11) == 0) {
        const QStringList texts = value.toStringList();
        for (const QString &text : texts) {
            printLine(text);
        }
    } else {
        // A value that has no text form is an empty line.
        printLine(value.toString());
    }
}

void Movra::reportFailedGet()
{
    // Three blanks before "err", where FILE, ACTION, SERVERSTAT and SERVERCMD have five.
    std::printf("Reply Not Valid   err=%s\n", recordLastError().constData());
}
