// SPDX-License-Identifier: MIT
// SET: writes one item, always as text; the service turns it into the item's type.
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
    // The id is read as UTF-8, unlike everything else that is typed.
    // The reply is dropped: whether the service accepted the value is never learned.
    (void)iface->SetValue(QList<IdValueStruct> { { QString::fromUtf8(id), value } });
}
