// SPDX-License-Identifier: MIT
// The calls about the notify list.
#include "sim/service.h"

Answer Service::addToNotifyList(const QVariantList &arguments)
{
    QVector<int> indexes;
    if (auto refusal = lookUp(arguments.at(0).toStringList(), indexes)) {
        return { {}, refusal };
    }
    for (const int index : indexes) {
        journal.record(LogLevel::Info, items.at(index).id,
                       QStringLiteral("put on the notify list"));
        notifier.add(index);
    }
    return {};
}

Answer Service::deleteFromNotifyList(const QVariantList &arguments)
{
    const QStringList ids = arguments.at(0).toStringList();
    for (const QString &id : ids) {
        const int index = items.indexOf(id);
        if (index >= 0) {
            journal.record(LogLevel::Info, id, QStringLiteral("taken off the notify list"));
            notifier.remove(index);
        }
    }
    return {};
}

Answer Service::clearConfigNotifyList(const QVariantList & /*arguments*/)
{
    notifier.clear(ItemKind::Config);
    return {};
}

Answer Service::clearResultNotifyList(const QVariantList & /*arguments*/)
{
    notifier.clear(ItemKind::Result);
    return {};
}

Answer Service::startConfigNotify(const QVariantList & /*arguments*/)
{
    notifier.start(ItemKind::Config);
    return {};
}

Answer Service::startResultNotify(const QVariantList & /*arguments*/)
{
    notifier.start(ItemKind::Result);
    return {};
}

Answer Service::stopConfigNotify(const QVariantList & /*arguments*/)
{
    notifier.stop(ItemKind::Config);
    return {};
}

Answer Service::stopResultNotify(const QVariantList & /*arguments*/)
{
    notifier.stop(ItemKind::Result);
    return {};
}
