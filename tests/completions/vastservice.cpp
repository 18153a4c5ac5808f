// SPDX-License-Identifier: MIT
// A service with more than a shell can show: 200,000 nodes, 200,000 ids, and ids of 10 MB.
// Prints "ready" and runs until it is killed.
#include "tests/support/fakeservice.h"

#include <cstdio>

#include <unistd.h>

int main()
{
    QByteArray nodes, ids;
    for (int number = 0; number < 200000; ++number) {
        const QByteArray digits = QByteArray::number(number).rightJustified(6, '0');
        nodes += "<node name=\"n" + digits + "\"/>";
        ids += "':result:" + digits + ":', ";
    }
    const QByteArray longId = "':long:" + QByteArray(10000000, 'x') + "', ";

    FakeService service("com.varn.vast");
    service.answer("Introspect", "('<node><interface name=\"varn.pim\"/>" + nodes + "</node>',)");
    service.answer("ListConfigIds", "([':config:first:', " + longId + "':config:last:'],)");
    service.answer("ListResultIds", "([" + ids.chopped(2) + "],)");
    std::puts("ready");
    std::fflush(stdout);
    pause();
    return 0;
}
