// SPDX-License-Identifier: MIT
// SET: writes one item, always as text. The service converts it to the item's type.
#include "app/commandline.h"
#include "app/movra.h"
#include "bus/proxies.h"

int Movra::setCommand(char **argv)
{
    if (argv[FirstArgument] == nullptr || argv[SecondArgument] == nullptr) {
        return ArgumentMissing;
    }
    sendValue(argv[FirstArgument], QString::fromLatin1(argv[SecondArgument]));
    return Success;
}

void Movra::sendValue(const char *id, const QVariant &value)
{
    // The id is read as UTF-8, unlike all other words.
    // The reply is dropped, so a refusal is not noticed.
    (void)iface->SetValue(QList<IdValueStruct> { { QString::fromUtf8(id), value } });
}
