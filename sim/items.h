// SPDX-License-Identifier: MIT
// The configs and results as they are at the moment, and the list of those whose changes are
// announced.
#pragma once

#include "sim/log.h"
#include "sim/value.h"

#include <QHash>
#include <QObject>
#include <QSet>
#include <QString>
#include <QStringList>
#include <QTimer>
#include <QVariant>
#include <QVector>

#include <optional>
#include <set>

/// Clients can set configs; results change only by themselves.
enum class ItemKind { Config, Result };

/// One config or result.
struct Item {
    QString id;
    ItemKind kind = ItemKind::Config;
    const ValueType *type = nullptr; ///< never null in a catalogue
    QVariant value = {}; ///< as the bus carries it
    int status = 0;
};

/// A value on its way into an item.
struct Assignment {
    int index = 0;
    QVariant value; ///< of the item's type; not valid: the value stays
    std::optional<int> status = {}; ///< without one, the status stays
};

/// All items; an item's index is its place in the catalogue, configs before results. The notify
/// list is one list for configs and results; each kind is started, stopped and paced by itself.
class Items : public QObject
{
public:
    Items(QVector<Item> catalogue, Log &logOfChanges, Announcer &announcerOfUpdates);

    int count() const { return all.size(); }
    const Item &at(int index) const { return all.at(index); }
    /// The item's index, or -1.
    int indexOf(const QString &id) const { return indexes.value(id, -1); }
    /// The indexes of items that must all be there.
    QVector<int> find(const QStringList &ids) const;
    /// The identifiers of one kind in catalogue order.
    QStringList ids(ItemKind kind) const;
    /// Puts values and statuses in place, one after the other. In the log, `before` and `after`
    /// surround each value.
    void assign(const QVector<Assignment> &assignments, const QString &before,
                const QString &after = {});

    /// Puts items on the notify list; changes count from now on.
    void listen(const QStringList &ids);
    /// Takes those that are there off the list, with changes that are not announced yet.
    void ignore(const QStringList &ids);
    /// Takes all items of a kind off the list.
    void ignoreAll(ItemKind kind);
    /// From now on each tick announces what has changed.
    void start(ItemKind kind);
    /// Changes are kept until the next start.
    void stop(ItemKind kind);
    /// The time between two ticks; 0: each change is announced at once.
    void setPace(ItemKind kind, int milliseconds);

private:
    struct Schedule {
        QTimer timer;
        int pace = 1000;
        bool started = false;
        std::set<int> pending; ///< the indexes of changed items
    };

    Schedule &of(ItemKind kind) { return kind == ItemKind::Config ? configs : results; }
    void run(ItemKind kind);
    void announce(ItemKind kind);

    QVector<Item> all;
    QHash<QString, int> indexes;
    Log &log;
    Announcer &announcer;
    QSet<int> listed;
    Schedule configs;
    Schedule results;
};
