// SPDX-License-Identifier: MIT
#include "sim/items.h"

#include <iterator>
#include <nlohmann/json.hpp>

Items::Items(QVector<Item> catalogue, Log &logOfChanges, Announcer &announcerOfUpdates)
    : all(std::move(catalogue))
    , log(logOfChanges)
    , announcer(announcerOfUpdates)
{
    for (int index = 0; index < all.size(); ++index) {
        indexes.insert(all.at(index).id, index);
    }
    for (const ItemKind kind : { ItemKind::Config, ItemKind::Result }) {
        connect(&of(kind).timer, &QTimer::timeout, this, [this, kind] { announce(kind); });
    }
}

QStringList Items::ids(ItemKind kind) const
{
    QStringList found;
    for (const Item &item : all) {
        if (item.kind == kind) {
            found.append(item.id);
        }
    }
    return found;
}

QVector<int> Items::find(const QStringList &ids) const
{
    QVector<int> found;
    found.reserve(ids.size());
    for (const QString &id : ids) {
        found.append(indexOf(id));
        if (found.last() < 0) {
            throw unknownId(id);
        }
    }
    return found;
}

void Items::assign(const QVector<Assignment> &assignments, const QString &before,
                   const QString &after)
{
    for (const Assignment &assignment : assignments) {
        Item &item = all[assignment.index];
        const QVariant value = assignment.value.isValid() ? assignment.value : item.value;
        if (assignment.value.isValid()) {
            log.record(LogLevel::Info, item.id, before + shown(item.type->toText(value)) + after);
        }
        if (assignment.status) {
            log.record(LogLevel::Info, item.id, "has status %1"_q.arg(*assignment.status));
        }
        const int status = assignment.status.value_or(item.status);
        // As JSON, nan is the same as nan.
        if (listed.contains(assignment.index)
            && (status != item.status
                || item.type->toJson(item.value) != item.type->toJson(value))) {
            of(item.kind).pending.insert(assignment.index);
        }
        item.value = value;
        item.status = status;
    }
    for (const ItemKind kind : { ItemKind::Config, ItemKind::Result }) {
        if (of(kind).started && of(kind).pace == 0) {
            announce(kind);
        }
    }
}

void Items::listen(const QStringList &ids)
{
    const QVector<int> found = find(ids);
    for (const int index : found) {
        log.record(LogLevel::Info, at(index).id, "put on the notify list"_q);
        listed.insert(index);
    }
}

void Items::ignore(const QStringList &ids)
{
    for (const QString &id : ids) {
        const int index = indexOf(id);
        if (index >= 0) {
            log.record(LogLevel::Info, id, "taken off the notify list"_q);
            listed.remove(index);
            of(at(index).kind).pending.erase(index);
        }
    }
}

void Items::ignoreAll(ItemKind kind)
{
    of(kind).pending.clear();
    for (auto index = listed.begin(); index != listed.end();) {
        index = at(*index).kind == kind ? listed.erase(index) : std::next(index);
    }
}

void Items::start(ItemKind kind)
{
    // A second start must not delay the next tick.
    if (!of(kind).started) {
        of(kind).started = true;
        setPace(kind, of(kind).pace);
    }
}

void Items::stop(ItemKind kind)
{
    of(kind).started = false;
    of(kind).timer.stop();
}

void Items::setPace(ItemKind kind, int milliseconds)
{
    Schedule &schedule = of(kind);
    schedule.pace = milliseconds;
    if (schedule.started && milliseconds > 0) {
        schedule.timer.start(milliseconds);
    } else if (schedule.started) {
        schedule.timer.stop();
        announce(kind);
    }
}

void Items::announce(ItemKind kind)
{
    for (const int index : std::exchange(of(kind).pending, {})) {
        const QString text = at(index).type->toText(at(index).value);
        announcer.send({ "SigUpdate"_q, { at(index).id + QLatin1Char('=') + text } });
    }
}

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

QString Changes::startAction(const QString &id, const std::optional<QString> &value)
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
    // A signal returns the value, together with the id.
    if (value && value->size() > longestText) {
        const QString sentence = "The value for %1 is longer than %2 characters."_q;
        throw badValue(sentence.arg(quoted(id), QString::number(longestText)), id);
    }
    running.insert(id);
    const QString started = value ? "started with "_q : "started"_q;
    const QString with = value.value_or(QString());
    log.record(LogLevel::Info, id, started + shown(with));
    announcer.info(id + QLatin1Char(' ') + started + with);
    advance(action, 0);
    QString reply = action.reply;
    const int placeholder = reply.indexOf("%1"_q);
    return placeholder < 0 ? reply : reply.replace(placeholder, 2, with);
}

void Changes::advance(const Action &action, int step)
{
    constexpr int steps = 10;
    if (action.drivenItem >= 0) {
        const ValueType *type = items.at(action.drivenItem).type;
        const QVariant percent = type->fromText(QString::number(100 * step / steps), {});
        items.assign({ { action.drivenItem, percent } }, "driven to "_q,
                     " by "_q + shown(action.id));
    }
    if (step < steps) {
        // Without a duration there is only the last step.
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
    QTimer::singleShot(0, this, &Changes::carryOutDue);
}

void Changes::carryOutDue()
{
    const qint64 now = clock.elapsed();
    while (!due.empty() && due.begin()->first <= now) {
        const auto [time, index] = *due.begin();
        due.erase(due.begin());
        const Moment &moment = timeline.at(index);
        if (moment.change) {
            items.assign({ *moment.change }, "changed to "_q);
        } else {
            announcer.send(moment.signal);
        }
        if (moment.every > 0) {
            // Missed times are skipped.
            due.emplace(now + moment.every - (now - time) % moment.every, index);
        }
    }
    if (!due.empty()) {
        const qint64 rest = std::max<qint64>(0, due.begin()->first - clock.elapsed());
        QTimer::singleShot(static_cast<int>(rest), Qt::PreciseTimer, this, &Changes::carryOutDue);
    }
}
