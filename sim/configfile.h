// SPDX-License-Identifier: MIT
// The saved form of the configs: {"format": 1, "configs": {id: value, ...}}.
#pragma once

#include "sim/items.h"

#include <QByteArray>
#include <QString>
#include <QVector>

/// What a saved text would set, or what is wrong with it.
struct SavedConfigs {
    QVector<Assignment> assignments;
    QString problem; ///< empty when the text is good
};

/// All configs as text.
QByteArray writeConfigs(const Items &items);
/// Checks a saved text against the items. A config that is missing in it is left out of the result.
SavedConfigs readConfigs(const QByteArray &text, const Items &items);
