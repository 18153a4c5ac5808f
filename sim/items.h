// SPDX-License-Identifier: MIT
// The configs and results as they are at the moment, the list of those whose changes are announced,
// and what changes by itself: actions while they run, and the timeline.
#pragma once

#include "sim/log.h"
#include "sim/value.h"

#include <QElapsedTimer>
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
#include <utility>

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

/// One action.
struct Action {
    QString id;
    QString reply; ///< to a call with a value; the first `%1` stands for the value
    int duration = 0; ///< in milliseconds
    int drivenItem = -1; ///< the result that goes from 0 to 100 meanwhile; -1: none
    QVector<Signal> ends; ///< sent when its time is over
};

/// One entry of the timeline: an item changes, or a signal is sent.
struct Moment {
    int at = 0; ///< the first time, in milliseconds from the start
    int every = 0; ///< the time between two times; 0: there is only one
    int item = -1; ///< -1: there is a signal
    QVariant value = {}; ///< not valid: the item's value stays
    std::optional<int> status = {};
    Signal signal = {};
};

/// Changes items and sends signals when their times have come.
class Changes : public QObject
{
public:
    Changes(QVector<Action> actionsOfCatalog, QVector<Moment> timelineOfCatalog,
            Items &changedItems, Log &logOfChanges, Announcer &announcerOfSignals);

    /// The time of the timeline begins.
    void startTimeline();

    /// The identifiers of the actions in catalogue order.
    QStringList actionIds() const;
    /// How many actions run now.
    int runningCount() const { return running.size(); }
    /// Starts an action that is not running, with the caller's value unless that is null; returns
    /// what a caller who gave a value is told.
    QString startAction(const QString &id, const QString *value);

private:
    /// Carries out a step of a running action, and schedules the next one or ends it.
    void advance(const Action &action, int step);
    void wait();
    void carryOutDue();

    const QVector<Action> actions;
    const QVector<Moment> timeline;
    QSet<QString> running; ///< identifiers of actions
    std::set<std::pair<qint64, int>>
        due; ///< times with indexes: those of one time keep their order
    QElapsedTimer clock;
    Items &items;
    Log &log;
    Announcer &announcer;
};
