// SPDX-License-Identifier: MIT
// A strict look at a JSON text before Qt reads it: Qt's parser keeps the last of repeated keys,
// takes some numbers that are none, and tells only about where it stopped.
#pragma once

#include <QByteArray>
#include <QString>

#include <optional>

/// The first thing that is wrong with a text.
struct JsonFault {
    int offset = 0; ///< in bytes
    QString reason;
};

/// Looks for faults of syntax and for repeated keys; texts that are no UTF-8 are left to Qt.
std::optional<JsonFault> findJsonFault(const QByteArray &text);
