// SPDX-License-Identifier: MIT
// The named errors that calls are refused with.
#pragma once

#include <QString>

/// Why a call is refused.
struct Refusal {
    QString name; ///< of the bus error
    QString sentence;
};

/// No item, action or log has this identifier.
Refusal unknownId(const QString &id);
/// A value does not fit what it is meant for.
Refusal badValue(const QString &sentence);
/// Only configs can be set.
Refusal readOnly(const QString &id);
/// The name of a file is not one plain path component.
Refusal badName(const QString &sentence);
/// A file cannot be read, written or understood.
Refusal fileProblem(const QString &sentence);
/// A command word that nobody here knows.
Refusal unknownCommand(const QString &word);
/// A fault that was asked for.
Refusal onDemand(const QString &sentence);
/// The action is running already.
Refusal busy(const QString &id);
