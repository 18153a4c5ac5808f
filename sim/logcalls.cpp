// SPDX-License-Identifier: MIT
// The calls about the logs and the debug log.
#include "sim/service.h"

Answer Service::dbgLogCmd(const QVariantList &arguments)
{
    return { {}, debugLog.command(arguments.at(0).toString(), arguments.at(1).toString()) };
}

Answer Service::dbgLogGetIds(const QVariantList & /*arguments*/)
{
    return { { debugLog.names() }, {} };
}

Answer Service::logClear(const QVariantList &arguments)
{
    return { {}, journal.clear(arguments.at(0).toString()) };
}

Answer Service::logGetIds(const QVariantList & /*arguments*/)
{
    return { { journal.names().join(QLatin1Char(' ')) }, {} };
}

Answer Service::logStartNotify(const QVariantList &arguments)
{
    return { {}, journal.startNotify(arguments.at(0).toString()) };
}

Answer Service::logStopNotify(const QVariantList &arguments)
{
    return { {}, journal.stopNotify(arguments.at(0).toString()) };
}
