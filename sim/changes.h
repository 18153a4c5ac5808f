// SPDX-License-Identifier: MIT
// What changes by itself: the actions of a catalogue while they run, and the timeline.
#pragma once

#include "sim/items.h"
#include "sim/log.h"

#include <QElapsedTimer>
#include <QObject>
#include <QSet>
#include <QString>
#include <QStringList>
#include <QVector>

#include <set>
#include <utility>

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
