// SPDX-License-Identifier: MIT
// The command line of the simulator.
#pragma once

#include "sim/errors.h"
#include "sim/faults.h"

#include <QString>
#include <QStringList>
#include <QVector>

#include <optional>

/// What the command line asks for.
struct Options {
    enum class Task { Serve, Capture, Check, Help, Version };
    Task task = Task::Serve;
    QString service;
    QString path;
    QString catalogFile; ///< empty: the built-in catalogue
    QString logFile; ///< `-`: standard output; empty: none
    std::optional<QString> stateDirectory; ///< without one, the default
    char *const *command = nullptr; ///< its words, up to a null; null: there is no command
    QVector<Fault> faults; ///< in the order given
};

/// Reads the arguments, of which the first one is the program's own name; throws a Refusal.
Options parseOptions(const QStringList &arguments);
/// What --help prints.
QString helpText();
/// What --version prints.
QString versionText();
