// SPDX-License-Identifier: MIT
// Catalogues, which define the simulated service, and saved configurations. Both are JSON texts; an
// unknown key is refused.
#pragma once

#include "sim/items.h"

/// The contents of a catalogue.
struct Catalog {
    QVector<Item> items; ///< configs before results
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

/// Whether a log can have this name: LogGetIds joins them by blanks.
bool isLogName(const QString &name);
/// Whether a debug log can have this name: its commands separate them by commas.
bool isDebugLogName(const QString &name);

/// A file that is built into the program, such as `catalog.json`.
QByteArray builtIn(const QString &name);

/// The values of all configs as JSON; readConfigs() reads it without loss.
QByteArray writeConfigs(const Items &items);
/// The values in a saved text; `place` says how a refusal begins and ends.
QVector<Assignment> readConfigs(const QByteArray &text, const Items &items, const Place &place);
