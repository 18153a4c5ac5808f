// SPDX-License-Identifier: MIT
// FILE: asks the service to save all configurations to a file of its own, or to load them.
#include "app/answer.h"
#include "app/commandline.h"
#include "app/movra.h"
#include "bus/proxies.h"

#include <string>

int Movra::fileCommand(char **argv)
{
    if (argv[FirstArgument] == nullptr || argv[SecondArgument] == nullptr) {
        return ArgumentMissing;
    }
    const std::string word = argv[FirstArgument];
    const QString name = QString::fromLatin1(argv[SecondArgument]);
    const bool saves = word == "SAVE";
    if (!saves && word != "LOAD") {
        return NotSupported;
    }
    // The reply's value, true or false, is ignored on purpose.
    const QDBusReply<bool> reply =
        answerTo(saves ? iface->SaveConfig(name) : iface->LoadConfig(name));
    if (!reply.isValid()) {
        reportFailedReply();
    }
    return Success;
}
