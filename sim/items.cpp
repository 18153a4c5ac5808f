// SPDX-License-Identifier: MIT
#include "sim/items.h"

#include <nlohmann/json.hpp>
#include <utility>

Items::Items(QVector<Item> catalogue, Announcer &announcerOfUpdates)
    : all(std::move(catalogue))
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

void Items::assign(const QVector<Assignment> &assignments)
{
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

void Items::ignore(int index)
{
    listed.remove(index);
    of(at(index).kind).pending.erase(index);
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
