// SPDX-License-Identifier: MIT
// The command line of the simulator.
#pragma once

#include "sim/errors.h"

#include <QStringList>
#include <QVector>

#include <optional>

/// Fault injection: a fault of calls of one member.
struct Fault {
    enum class Kind { Delay, Refuse, WrongType, Vanish, Silence };
    QString member = {}; ///< null: every member
    QString id = {}; ///< only calls whose first argument is this id or contains it; null: all
    int only = 0; ///< only the call with this number, from 1; 0: all
    Kind kind = Kind::Silence;
    int delay = 0; ///< in milliseconds, for Kind::Delay
    QString error = "Refused"_q; ///< the name of the refusal, for Kind::Refuse
    QString text = {}; ///< of the refusal
    int calls = 0; ///< matching calls so far
};

/// What the command line asks for.
struct Options {
    enum class Task { Serve, Capture, Check, Print };
    Task task = Task::Serve;
    QString text; ///< for Task::Print
    QString service;
    QString path;
    QString catalogFile; ///< empty: the built-in catalogue
    QString logFile; ///< `-`: standard output; empty: none
    std::optional<QString> stateDirectory; ///< absolute or empty; without one, the default
    char *const *command = nullptr; ///< its words, up to a null; null: there is no command
    QVector<Fault> faults; ///< in the order given
};

/// Reads the arguments, of which the first one is the program's own name; throws a Refusal.
Options parseOptions(const QStringList &arguments);
