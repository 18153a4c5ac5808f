// SPDX-License-Identifier: MIT
// The simulator's life: from the options to the exit status.
#pragma once

#include "sim/exitstatus.h"
#include "sim/options.h"

#include <QObject>
#include <QString>

class StateFiles;
struct Catalog;

/// How a life ended.
struct Ending {
    ExitStatus status = ExitStatus::Closed;
    QString sentence; ///< empty unless something is wrong
};

/// Runs one simulator.
class Host : public QObject
{
    Q_OBJECT

public:
    explicit Host(Options hostOptions, QObject *parent = nullptr);

    /// Serves until the process is told to end. `announceReady` is called once the name is owned.
    Ending serve(void (*announceReady)());

private Q_SLOTS:
    // A slot, because what comes from the bus is connected by name.
    void busLost();

private:
    Ending serveOnBus(const Catalog &catalog, const StateFiles &files, void (*announceReady)());

    Options options;
    Ending ending;
};
