// SPDX-License-Identifier: MIT
// Fault injection: what the calls of a member meet with instead of a prompt answer.
#pragma once

#include <QString>
#include <QVector>

/// What happens to the calls of one member.
struct Fault {
    enum class Kind { Delay, Refuse, WrongType, Vanish, Silence };
    QString member; ///< `*`: every member that no other fault names
    Kind kind = Kind::Silence;
    int delay = 0; ///< in milliseconds; only Kind::Delay has any
    QString text; ///< the sentence of the error; only Kind::Refuse has any
};

/// Reads a fault such as `GetValue=delay:500`.
Fault readFault(const QString &text);

/// What calls of the member meet with, the last one given if there are several; null: nothing.
const Fault *faultOf(const QVector<Fault> &faults, const QString &member);
