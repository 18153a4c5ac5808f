// SPDX-License-Identifier: MIT
// The calls that list and start actions.
#include "sim/service.h"

Answer Service::refusedAction(const QString &id, const Refusal &refusal)
{
    journal.recordRefusal(id, refusal);
    return { {}, refusal };
}

Answer Service::doAction(const QVariantList &arguments)
{
    const QString id = arguments.at(0).toString();
    if (const auto refusal = actions.start(id, {})) {
        return refusedAction(id, *refusal);
    }
    return {};
}

Answer Service::doActionWithValue(const QVariantList &arguments)
{
    const QString id = arguments.at(0).toString();
    const QString value = arguments.at(1).toString();
    if (const auto refusal = actions.start(id, value)) {
        return refusedAction(id, *refusal);
    }
    return { { actions.replyTo(id, value) }, {} };
}

Answer Service::listActionIds(const QVariantList & /*arguments*/)
{
    return { { actions.ids() }, {} };
}
