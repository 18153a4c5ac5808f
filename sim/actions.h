// SPDX-License-Identifier: MIT
// The actions of a catalogue and those that run at the moment.
#pragma once

#include "sim/announcer.h"
#include "sim/catalog.h"
#include "sim/items.h"
#include "sim/journal.h"
#include "sim/refusal.h"

#include <QHash>
#include <QObject>
#include <QString>
#include <QStringList>
#include <QVector>

#include <optional>

/// Starts actions and ends them when their time is over.
class Actions : public QObject
{
    Q_OBJECT

public:
    Actions(QVector<Action> catalogue, Items &drivenItems, Journal &journalOfActions,
            Announcer announcerOfEnds, QObject *parent = nullptr);

    /// The identifiers in catalogue order.
    QStringList ids() const;
    /// How many run now.
    int runningCount() const { return stepsDone.size(); }
    /// Starts an action that is not running, with the caller's value if there is one.
    std::optional<Refusal> start(const QString &id, const std::optional<QString> &value);
    /// What a caller who gave a value is told about a known action.
    QString replyTo(const QString &id, const QString &value) const;

protected:
    void timerEvent(QTimerEvent *event) override;

private:
    int indexOf(const QString &id) const;
    void scheduleStep(int index);
    void step(int index);
    void drive(const Action &action, int percent);
    void end(int index);

    QVector<Action> all;
    QHash<int, int> stepsDone; ///< of each running action, by its index
    QHash<int, int> timers; ///< the action whose next step a timer waits for
    Items &items;
    Journal &journal;
    Announcer announcer;
};
