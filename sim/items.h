// SPDX-License-Identifier: MIT
// The configs and results as they are at the moment.
#pragma once

#include "sim/value.h"

#include <QHash>
#include <QObject>
#include <QString>
#include <QStringList>
#include <QVariant>
#include <QVector>

/// Clients can set configs; results change only by themselves.
enum class ItemKind { Config, Result };

/// One config or result.
struct Item {
    QString id;
    ItemKind kind = ItemKind::Config;
    ValueType type = ValueType::String;
    QVariant value; ///< as the bus carries it
    int status = 0; ///< as the catalogue has it
};

/// A value on its way into an item.
struct Assignment {
    int index = 0;
    QVariant value; ///< of the item's type
};

/// All items; an item's index is its place in the catalogue, configs before results.
class Items : public QObject
{
    Q_OBJECT

public:
    explicit Items(QVector<Item> catalogue, QObject *parent = nullptr);

    int count() const { return all.size(); }
    const Item &at(int index) const { return all.at(index); }
    /// The item's index, or -1.
    int indexOf(const QString &id) const { return indexes.value(id, -1); }
    /// The identifiers of one kind in catalogue order.
    QStringList ids(ItemKind kind) const;
    /// Puts values in place, one after the other.
    void assign(const QVector<Assignment> &assignments);

Q_SIGNALS:
    /// Once for each assign() that made a difference, with the items concerned.
    void changed(const QVector<int> &changedIndexes);

private:
    QVector<Item> all;
    QHash<QString, int> indexes;
};
