// SPDX-License-Identifier: MIT
#include "sim/items.h"

#include <nlohmann/json.hpp>
#include <utility>

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
        const Item &item = at(assignment.index);
        if (assignment.value.isValid()) {
            const QString text = item.type->toText(assignment.value);
            log.record(LogLevel::Info, item.id, before + shown(text) + after);
        }
        if (assignment.status) {
            log.record(LogLevel::Info, item.id, "has status %1"_q.arg(*assignment.status));
        }
    }
    for (const Assignment &assignment : assignments) {
        Item &item = all[assignment.index];
        const QVariant value = assignment.value.isValid() ? assignment.value : item.value;
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
    // A second start must not put the next tick off.
    if (!of(kind).started) {
        of(kind).started = true;
        run(kind);
    }
}

void Items::stop(ItemKind kind)
{
    of(kind).started = false;
    of(kind).timer.stop();
}

void Items::setPace(ItemKind kind, int milliseconds)
{
    of(kind).pace = milliseconds;
    if (of(kind).started) {
        run(kind);
    }
}

void Items::run(ItemKind kind)
{
    Schedule &schedule = of(kind);
    if (schedule.pace == 0) {
        schedule.timer.stop();
        announce(kind);
    } else {
        schedule.timer.start(schedule.pace);
    }
}

void Items::announce(ItemKind kind)
{
    for (const int index : std::exchange(of(kind).pending, {})) {
        const QString text = at(index).type->toText(at(index).value);
        announcer.send({ "SigUpdate"_q, { at(index).id + QLatin1Char('=') + text } });
    }
}
