// SPDX-License-Identifier: MIT
#include "tests/support/listening.h"

#include <QTest>

bool waitUntilListening(const FakeService &service, int monitors, const QByteArray &name)
{
    constexpr int namesOfSignals = 7; // one rule for each
    const auto haveAllRules = [&] {
        return service.matchRules(name).size() == namesOfSignals * monitors;
    };
    return QTest::qWaitFor(haveAllRules, patienceMs);
}

bool waitUntilHeard(Program &monitor, FakeService &service)
{
    if (!waitUntilListening(service)) {
        return false;
    }
    service.emitSignal("SigInfo", "('first',)");
    const bool heard =
        monitor.waitForLines(1) && monitor.out == "===Client sigInfoSlot  msg=first\n";
    monitor.forgetOutput();
    return heard;
}
