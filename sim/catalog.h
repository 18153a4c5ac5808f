// SPDX-License-Identifier: MIT
// Catalogues, which define the simulated service, and saved configurations. Both are JSON texts; an
// unknown key is refused.
#pragma once

#include "sim/items.h"

#include <QRegularExpression>

/// The contents of a catalogue.
struct Catalog {
    QVector<Item> items; ///< configurations before results
    QVector<Action> actions;
    QVector<Moment> timeline;
    QStringList logs;
    QStringList debugLogs;
};

/// Reads a catalogue; `intro` begins the sentence of a refusal.
Catalog readCatalog(const QByteArray &text, const QString &intro = {});
/// Reads the catalogue in a file; an empty name means the built-in one.
Catalog loadCatalog(const QString &fileName);
/// Makes a catalogue from the service with this name; in capture.cpp. What a catalogue cannot
/// express, or the service refuses, is left out with a line on standard error.
QByteArray captureCatalog(const QString &service, const QString &path);

/// The names that logs can have: LogGetIds joins them by blanks.
extern const QRegularExpression logName;
/// The names that debug logs can have: their commands separate them by commas.
extern const QRegularExpression debugLogName;

/// A file that is built into the program, such as `catalog.json`.
QByteArray builtIn(const QString &name);

/// The values of all configurations as JSON; readConfigs() reads it without loss.
QByteArray writeConfigs(const Items &items);
/// The values in a saved text; `place` says how a refusal begins and ends.
QVector<Assignment> readConfigs(const QByteArray &text, const Items &items, const Place &place);
