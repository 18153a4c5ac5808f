// SPDX-License-Identifier: MIT
// The catalogue: what the simulated service has when it starts, read from a JSON text.
#pragma once

#include "sim/items.h"

#include <QByteArray>
#include <QString>
#include <QStringList>
#include <QVariant>
#include <QVector>

/// A signal that an action ends with.
struct ActionEnd {
    QString member;
    QString message;
    QVariant data; ///< only SigTestCompleteWithData has any: the array as the bus carries it
};

/// One action.
struct Action {
    QString id;
    QString reply; ///< to a call with a value; the first `%1` stands for the value
    int duration = 0; ///< in milliseconds
    int drivenItem = -1; ///< the result that goes from 0 to 100 meanwhile; -1: none
    QVector<ActionEnd> ends;
};

/// Everything that a catalogue says.
struct Catalog {
    QVector<Item> items; ///< configs before results
    QVector<Action> actions;
    QStringList logs;
    QStringList debugLogs;
};

/// A catalogue, or what is wrong with its text.
struct CatalogText {
    Catalog catalog;
    QString problem; ///< empty when the catalogue is good
};

/// Reads a catalogue; anything that is not understood is refused.
CatalogText readCatalog(const QByteArray &text);
