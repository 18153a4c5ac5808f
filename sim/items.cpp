// SPDX-License-Identifier: MIT
#include "sim/items.h"

#include <utility>

Items::Items(QVector<Item> catalogue, QObject *parent)
    : QObject(parent)
    , all(std::move(catalogue))
{
    for (int index = 0; index < all.size(); ++index) {
        indexes.insert(all.at(index).id, index);
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
    QVector<int> changedIndexes;
    for (const Assignment &assignment : assignments) {
        Item &item = all[assignment.index];
        if (!sameValue(item.type, item.value, assignment.value)) {
            changedIndexes.append(assignment.index);
        }
        item.value = assignment.value;
    }
    if (!changedIndexes.isEmpty()) {
        Q_EMIT changed(changedIndexes);
    }
}
