// SPDX-License-Identifier: MIT
// Fault injection: what the calls of a member get instead of a prompt answer.
#pragma once

#include "sim/errors.h"

#include <QString>
#include <QStringList>
#include <QVector>

/// What happens to the calls of one member.
struct Fault {
    enum class Kind { Delay, Refuse, WrongType, Vanish, Silence };
    QString member; ///< `*`: every member
    QString id = {}; ///< only calls whose first argument is or names this; null: all
    int only = 0; ///< only this one of the calls, counted from 1; 0: all
    Kind kind = Kind::Silence;
    int delay = 0; ///< in milliseconds; only Kind::Delay has any
    QString error = "Refused"_q; ///< its name; only for Kind::Refuse, like the text
    QString text = "This call is refused on demand."_q;
    int calls = 0; ///< that the fault has been asked about
};

/// Reads a fault such as `GetValue(:id:)=delay:500@3`.
Fault readFault(const QString &text);

/// The fault for the call; null: none. Counts the call. Of several faults for the call, one
/// for a member comes before one for every member, then one for an identifier before one without,
/// then one for a single call; then the last one given counts.
const Fault *faultOf(QVector<Fault> &faults, const QString &member, const QStringList &ids);
