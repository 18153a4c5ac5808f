// SPDX-License-Identifier: MIT
// The configurations and results with their current values, the notify list, and what changes items
// without a call: running actions and the timeline.
#pragma once

#include "sim/log.h"
#include "sim/value.h"

#include <QElapsedTimer>
#include <QObject>
#include <QSet>
#include <QTimer>
#include <QVector>

#include <optional>
#include <set>

/// The longest duration, interval or delay that can be asked for, in milliseconds.
constexpr int longestTime = 3600000;

/// Clients can set configurations. Only actions and the timeline change results.
enum class ItemKind { Config, Result };

/// One config or result.
struct Item {
    QString id;
    ItemKind kind = ItemKind::Config;
    const ValueType *type = nullptr; ///< never null in a catalogue
    QVariant value = {}; ///< of the type that is sent on the bus
    int status = 0;
};

/// A new value for an item.
struct Assignment {
    int index = 0;
    QVariant value; ///< of the item's type; not valid: the value stays
    std::optional<int> status = {}; ///< without one, the status stays
};

/// All items. An item's index is its position in the catalogue, configurations before
/// results. Both share one notify list; each kind has its own start, stop and interval.
class Items : public QObject
{
public:
    Items(QVector<Item> catalogue, Log &logOfChanges, Announcer &announcerOfUpdates);

    const Item &at(int index) const { return all.at(index); }
    /// The item's index, or -1.
    int indexOf(const QString &id) const { return indexes.value(id, -1); }
    /// The indexes of these items; throws if one does not exist.
    QVector<int> find(const QStringList &ids) const;
    /// The ids of one kind in catalogue order.
    QStringList ids(ItemKind kind) const;
    /// Assigns values and statuses in order. The log entry is `before`, the value and `after`.
    void assign(const QVector<Assignment> &assignments, const QString &before,
                const QString &after = {});

    /// Puts items on the notify list; later changes are announced.
    void listen(const QStringList &ids);
    /// Removes items from the list, with their changes that are not announced yet.
    void ignore(const QStringList &ids);
    /// Removes all items of a kind from the list.
    void ignoreAll(ItemKind kind);
    /// From now on each tick announces what has changed.
    void start(ItemKind kind);
    /// Changes are kept until the next start.
    void stop(ItemKind kind);
    /// The interval of ticks in milliseconds; 0: each change is announced immediately.
    void setPace(ItemKind kind, int milliseconds);

private:
    struct Schedule {
        QTimer timer;
        int pace = 1000;
        bool started = false;
        std::set<int> pending; ///< the indexes of changed items
    };

    Schedule &of(ItemKind kind) { return kind == ItemKind::Config ? configs : results; }
    /// Sends the changes that are not announced yet.
    void announce(ItemKind kind);

    QVector<Item> all;
    QHash<QString, int> indexes;
    Log &log;
    Announcer &announcer;
    QSet<int> listed;
    Schedule configs;
    Schedule results;
};

/// One action.
struct Action {
    QString id;
    QString reply; ///< to a call with a value; the first `%1` is replaced by the value
    int duration = 0; ///< in milliseconds
    int drivenItem = -1; ///< the result that shows the progress from 0 to 100; -1: none
    QVector<Signal> ends; ///< sent when it ends
};

/// One entry of the timeline: an item changes, or a signal is sent.
struct Moment {
    int at = 0; ///< the first time, in milliseconds from the start
    int every = 0; ///< the interval; 0: only once
    std::optional<Assignment> change = {}; ///< without one, the signal is sent
    Signal signal = {};
};

/// Runs actions and the timeline.
class Changes : public QObject
{
public:
    Changes(QVector<Action> actionsOfCatalog, QVector<Moment> timelineOfCatalog,
            Items &changedItems, Log &logOfChanges, Announcer &announcerOfSignals);

    /// Starts the timeline.
    void startTimeline();

    /// The ids of the actions in catalogue order.
    QStringList actionIds() const;
    /// The number of running actions.
    int runningCount() const { return running.size(); }
    /// Starts an action, with the caller's value if there is one; throws if it is running. Returns
    /// the answer to a caller with a value.
    QString startAction(const QString &id, const std::optional<QString> &value);

private:
    /// Executes a step of a running action, and schedules the next step or ends the action.
    void advance(const Action &action, int step);
    /// Carries out the moments whose time has come, and waits for the next one.
    void carryOutDue();

    const QVector<Action> actions;
    const QVector<Moment> timeline;
    QSet<QString> running; ///< ids of actions
    /// Times with indexes: those of one time keep their order.
    std::set<std::pair<qint64, int>> due;
    QElapsedTimer clock;
    Items &items;
    Log &log;
    Announcer &announcer;
};
