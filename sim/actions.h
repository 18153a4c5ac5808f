// SPDX-License-Identifier: MIT
// What changes by itself: the actions of a catalogue and those that run at the moment, and the
// timeline.
#pragma once

#include "sim/items.h"
#include "sim/log.h"

#include <QElapsedTimer>
#include <QHash>
#include <QObject>
#include <QString>
#include <QStringList>
#include <QTimer>
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

/// Starts actions and ends them when their time is over.
class Actions : public QObject
{
    Q_OBJECT

public:
    Actions(QVector<Action> catalogue, Items &drivenItems, Log &logOfActions,
            Announcer &announcerOfEnds);

    /// The identifiers in catalogue order.
    QStringList ids() const;
    /// How many run now.
    int runningCount() const { return stepsDone.size(); }
    /// Starts an action that is not running, with the caller's value unless that is null.
    void start(const QString &id, const QString *value);
    /// What a caller who gave a value is told about a known action.
    QString replyTo(const QString &id, const QString &value) const;

protected:
    void timerEvent(QTimerEvent *event) override;

private:
    void scheduleStep(int index);
    void drive(const Action &action, int percent);
    void end(int index);

    QVector<Action> all;
    QHash<QString, int> indexes;
    QHash<int, int> stepsDone; ///< of each running action, by its index
    QHash<int, int> timers; ///< the action whose next step a timer waits for
    Items &items;
    Log &log;
    Announcer &announcer;
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

/// Carries out the entries when their times have come; those of one time in catalogue order.
class Timeline : public QObject
{
    Q_OBJECT

public:
    Timeline(QVector<Moment> catalogue, Items &changedItems, Log &logOfChanges,
             Announcer &announcerOfSignals);

    /// The time begins.
    void start();

private:
    void wait();
    void run();
    void carryOut(const Moment &moment);

    QVector<Moment> all;
    std::set<std::pair<qint64, int>> due; ///< times with indexes
    QElapsedTimer clock;
    QTimer timer;
    Items &items;
    Log &log;
    Announcer &announcer;
};
