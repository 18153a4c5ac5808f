// SPDX-License-Identifier: MIT
// The simulator's life on the bus: its name, the signals that end it, its shutdown.
#pragma once

#include "sim/options.h"

#include <QObject>

/// Runs one simulator.
class Host : public QObject
{
    Q_OBJECT

public:
    /// Serves until the process is told to end. `announceReady` is called once the name is owned.
    void serve(const Options &options, void (*announceReady)());

private Q_SLOTS:
    // A slot, because what comes from the bus is connected by name.
    void busLost();

private:
    bool hasBus = true;
};
