// SPDX-License-Identifier: MIT
#include "sim/notifier.h"

#include <QList>

#include <algorithm>

Notifier::Notifier(const Items &watchedItems, const Announcer &announcerOfUpdates, QObject *parent)
    : QObject(parent)
    , items(watchedItems)
    , announcer(announcerOfUpdates)
{
    connect(&items, &Items::changed, this, &Notifier::note);
    connect(&configs.timer, &QTimer::timeout, this, [this] { announce(ItemKind::Config); });
    connect(&results.timer, &QTimer::timeout, this, [this] { announce(ItemKind::Result); });
}

void Notifier::remove(int index)
{
    listed.remove(index);
    pending.remove(index);
}

void Notifier::clear(ItemKind kind)
{
    const QList<int> indexes = listed.values();
    for (const int index : indexes) {
        if (items.at(index).kind == kind) {
            remove(index);
        }
    }
}

void Notifier::start(ItemKind kind)
{
    // A second start must not put the next tick off.
    if (!of(kind).started) {
        of(kind).started = true;
        run(kind);
    }
}

void Notifier::stop(ItemKind kind)
{
    of(kind).started = false;
    of(kind).timer.stop();
}

void Notifier::setPace(ItemKind kind, int milliseconds)
{
    of(kind).pace = milliseconds;
    if (of(kind).started) {
        run(kind);
    }
}

void Notifier::run(ItemKind kind)
{
    Schedule &schedule = of(kind);
    if (schedule.pace == 0) {
        schedule.timer.stop();
        announce(kind);
    } else {
        schedule.timer.start(schedule.pace);
    }
}

void Notifier::note(const QVector<int> &changedIndexes)
{
    for (const int index : changedIndexes) {
        if (listed.contains(index)) {
            pending.insert(index);
        }
    }
    for (const ItemKind kind : { ItemKind::Config, ItemKind::Result }) {
        if (of(kind).started && of(kind).pace == 0) {
            announce(kind);
        }
    }
}

void Notifier::announce(ItemKind kind)
{
    QList<int> indexes = pending.values();
    std::sort(indexes.begin(), indexes.end());
    for (const int index : indexes) {
        const Item &item = items.at(index);
        if (item.kind == kind) {
            pending.remove(index);
            announcer.send(QStringLiteral("SigUpdate"),
                           { item.id + QLatin1Char('=') + valueToText(item.type, item.value) });
        }
    }
}
