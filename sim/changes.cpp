// SPDX-License-Identifier: MIT
#include "sim/changes.h"

#include <Qt>
#include <QTimer>

#include <algorithm>
#include <iterator>

namespace
{

constexpr int steps = 10;

} // namespace

Changes::Changes(QVector<Action> actionsOfCatalog, QVector<Moment> timelineOfCatalog,
                 Items &changedItems, Log &logOfChanges, Announcer &announcerOfSignals)
    : actions(std::move(actionsOfCatalog))
    , timeline(std::move(timelineOfCatalog))
    , items(changedItems)
    , log(logOfChanges)
    , announcer(announcerOfSignals)
{
}

QStringList Changes::actionIds() const
{
    QStringList ids;
    std::transform(actions.begin(), actions.end(), std::back_inserter(ids),
                   [](const Action &action) { return action.id; });
    return ids;
}

QString Changes::startAction(const QString &id, const QString *value)
{
    const auto found = std::find_if(actions.begin(), actions.end(),
                                    [&id](const Action &each) { return each.id == id; });
    if (found == actions.end()) {
        throw unknownId(id);
    }
    const Action &action = *found;
    if (running.contains(id)) {
        throw Refusal { "Busy"_q, "%1 is running already."_q.arg(quoted(id)), id };
    }
    // The value comes back in a signal, together with the identifier.
    if (value != nullptr && value->size() > longestText) {
        const QString sentence = "The value for %1 is longer than %2 characters."_q;
        throw badValue(sentence.arg(quoted(id)).arg(longestText), id);
    }
    running.insert(id);
    const QString started = value == nullptr ? "started"_q : "started with "_q;
    const QString with = value == nullptr ? QString() : *value;
    log.record(LogLevel::Info, id, started + shown(with));
    announcer.info(id + QLatin1Char(' ') + started + with);
    advance(action, 0);
    QString reply = action.reply;
    const int placeholder = reply.indexOf("%1"_q);
    return placeholder < 0 ? reply : reply.replace(placeholder, 2, with);
}

void Changes::advance(const Action &action, int step)
{
    if (action.drivenItem >= 0) {
        const ValueType *type = items.at(action.drivenItem).type;
        const QVariant percent = type->fromText(QString::number(100 * step / steps), {});
        items.assign({ { action.drivenItem, percent } }, "driven to "_q,
                     " by "_q + shown(action.id));
    }
    if (step < steps) {
        // Without a duration there is no time between the steps: only the last one is left.
        const int next = action.duration == 0 ? steps : step + 1;
        const int pause = action.duration * next / steps - action.duration * step / steps;
        QTimer::singleShot(pause, Qt::PreciseTimer, this,
                           [this, &action, next] { advance(action, next); });
        return;
    }
    running.remove(action.id);
    log.record(LogLevel::Info, action.id, "ended"_q);
    for (const Signal &signal : action.ends) {
        announcer.send(signal);
    }
}

void Changes::startTimeline()
{
    for (int index = 0; index < timeline.size(); ++index) {
        due.emplace(timeline.at(index).at, index);
    }
    clock.start();
    wait();
}

void Changes::wait()
{
    if (!due.empty()) {
        const qint64 rest = std::max<qint64>(0, due.begin()->first - clock.elapsed());
        QTimer::singleShot(static_cast<int>(rest), Qt::PreciseTimer, this, &Changes::carryOutDue);
    }
}

void Changes::carryOutDue()
{
    const qint64 now = clock.elapsed();
    while (!due.empty() && due.begin()->first <= now) {
        const auto [time, index] = *due.begin();
        due.erase(due.begin());
        const Moment &moment = timeline.at(index);
        if (moment.item < 0) {
            announcer.send(moment.signal);
        } else {
            items.assign({ { moment.item, moment.value, moment.status } }, "changed to "_q);
        }
        if (moment.every > 0) {
            // Times that were missed are left out.
            due.emplace(now + moment.every - (now - time) % moment.every, index);
        }
    }
    wait();
}
