// SPDX-License-Identifier: MIT
// The notify list: which items' changes are announced, and at what pace.
#pragma once

#include "sim/announcer.h"
#include "sim/items.h"

#include <QObject>
#include <QSet>
#include <QTimer>
#include <QVector>

/// One list for configs and results; each kind is started, stopped and paced by itself.
class Notifier : public QObject
{
    Q_OBJECT

public:
    Notifier(const Items &watchedItems, const Announcer &announcerOfUpdates,
             QObject *parent = nullptr);

    /// Puts an item on the list; changes count from now on.
    void add(int index) { listed.insert(index); }
    /// Takes an item off the list, with the change that was waiting to be announced.
    void remove(int index);
    /// Takes all items of a kind off the list.
    void clear(ItemKind kind);
    /// From now on each tick announces what has changed.
    void start(ItemKind kind);
    /// Changes are still kept in mind until the next start.
    void stop(ItemKind kind);
    /// The time between two ticks; 0: each change is announced at once.
    void setPace(ItemKind kind, int milliseconds);

private:
    struct Schedule {
        QTimer timer;
        int pace = 1000;
        bool started = false;
    };

    Schedule &of(ItemKind kind) { return kind == ItemKind::Config ? configs : results; }
    void run(ItemKind kind);
    void note(const QVector<int> &changedIndexes);
    void announce(ItemKind kind);

    const Items &items;
    Announcer announcer;
    Schedule configs;
    Schedule results;
    QSet<int> listed;
    QSet<int> pending;
};
