// SPDX-License-Identifier: MIT
#include "sim/actions.h"

#include <Qt>
#include <QTimerEvent>

#include <algorithm>
#include <utility>

namespace
{

constexpr int steps = 10;

int elapsedAfter(int step, int duration)
{
    return static_cast<int>(static_cast<qint64>(duration) * step / steps);
}

} // namespace

Actions::Actions(QVector<Action> catalogue, Items &drivenItems, Log &logOfActions,
                 Announcer &announcerOfEnds)
    : all(std::move(catalogue))
    , items(drivenItems)
    , log(logOfActions)
    , announcer(announcerOfEnds)
{
    for (int index = 0; index < all.size(); ++index) {
        indexes.insert(all.at(index).id, index);
    }
}

QStringList Actions::ids() const
{
    QStringList found;
    for (const Action &action : all) {
        found.append(action.id);
    }
    return found;
}

void Actions::start(const QString &id, const QString *value)
{
    const int index = indexes.value(id, -1);
    if (index < 0) {
        throw unknownId(id);
    }
    if (stepsDone.contains(index)) {
        throw Refusal { "Busy"_q, "%1 is running already."_q.arg(quoted(id)), id };
    }
    // The value comes back in a signal, together with the identifier.
    if (value != nullptr && value->size() > longestText) {
        throw Refusal { "BadValue"_q,
                        "The value for %1 is longer than %2 characters."_q.arg(
                            quoted(id), QString::number(longestText)),
                        id };
    }
    stepsDone.insert(index, 0);
    const QString with = value == nullptr ? QString() : " with "_q;
    const QString started = "started"_q + with;
    log.record(LogLevel::Info, id, value == nullptr ? started : started + shown(*value));
    announcer.info(id + QLatin1Char(' ') + (value == nullptr ? started : started + *value));
    drive(all.at(index), 0);
    scheduleStep(index);
}

QString Actions::replyTo(const QString &id, const QString &value) const
{
    const QString placeholder = "%1"_q;
    QString reply = all.at(indexes.value(id)).reply;
    const int at = reply.indexOf(placeholder);
    return at < 0 ? reply : reply.replace(at, placeholder.size(), value);
}

void Actions::scheduleStep(int index)
{
    const int duration = all.at(index).duration;
    const int done = stepsDone.value(index);
    const int timer = startTimer(elapsedAfter(done + 1, duration) - elapsedAfter(done, duration),
                                 Qt::PreciseTimer);
    timers.insert(timer, index);
}

void Actions::timerEvent(QTimerEvent *event)
{
    killTimer(event->timerId());
    const int index = timers.take(event->timerId());
    const Action &action = all.at(index);
    // Without a duration there is no time between the steps, so that the last one is the only one.
    const int done = action.duration == 0 ? steps : stepsDone.value(index) + 1;
    stepsDone.insert(index, done);
    drive(action, 100 * done / steps);
    if (done == steps) {
        end(index);
    } else {
        scheduleStep(index);
    }
}

void Actions::drive(const Action &action, int percent)
{
    if (action.drivenItem < 0) {
        return;
    }
    const Item &item = items.at(action.drivenItem);
    log.record(LogLevel::Info, item.id, "driven to %1 by %2"_q.arg(percent).arg(shown(action.id)));
    items.assign({ { action.drivenItem, item.type->fromText(QString::number(percent), {}) } });
}

void Actions::end(int index)
{
    stepsDone.remove(index);
    const Action &action = all.at(index);
    log.record(LogLevel::Info, action.id, "ended"_q);
    for (const Signal &signal : action.ends) {
        announcer.send(signal);
    }
}

Timeline::Timeline(QVector<Moment> catalogue, Items &changedItems, Log &logOfChanges,
                   Announcer &announcerOfSignals)
    : all(std::move(catalogue))
    , items(changedItems)
    , log(logOfChanges)
    , announcer(announcerOfSignals)
{
    timer.setSingleShot(true);
    timer.setTimerType(Qt::PreciseTimer);
    connect(&timer, &QTimer::timeout, this, &Timeline::run);
}

void Timeline::start()
{
    for (int index = 0; index < all.size(); ++index) {
        due.emplace(all.at(index).at, index);
    }
    clock.start();
    wait();
}

void Timeline::wait()
{
    if (!due.empty()) {
        timer.start(static_cast<int>(std::max<qint64>(0, due.begin()->first - clock.elapsed())));
    }
}

void Timeline::run()
{
    const qint64 now = clock.elapsed();
    while (!due.empty() && due.begin()->first <= now) {
        const auto [time, index] = *due.begin();
        due.erase(due.begin());
        const Moment &moment = all.at(index);
        carryOut(moment);
        if (moment.every > 0) {
            // Times that were missed are left out.
            due.emplace(now + moment.every - (now - time) % moment.every, index);
        }
    }
    wait();
}

void Timeline::carryOut(const Moment &moment)
{
    if (moment.item < 0) {
        announcer.send(moment.signal);
        return;
    }
    const Item &item = items.at(moment.item);
    if (moment.value.isValid()) {
        log.record(LogLevel::Info, item.id,
                   "changed to "_q + shown(item.type->toText(moment.value)));
    }
    if (moment.status) {
        log.record(LogLevel::Info, item.id, "has status %1"_q.arg(*moment.status));
    }
    items.assign({ { moment.item, moment.value, moment.status } });
}
