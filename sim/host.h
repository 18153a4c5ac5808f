// SPDX-License-Identifier: MIT
// The simulator's life on the bus: its name, the signals that end it, its shutdown; and a command
// that runs beside it on a bus of their own.
#pragma once

#include "sim/options.h"

#include <QDBusConnection>
#include <QObject>

#include <functional>

/// Opens the session bus, or throws; ends the process with the same line if the bus does not
/// respond, or if it ends before outliveBus() is called.
QDBusConnection openBus();

/// Runs one simulator.
class Host : public QObject
{
    Q_OBJECT

public:
    /// Serves until the process is told to end. `announceReady` is called once the name is owned.
    void serve(const Options &options, const std::function<void()> &announceReady);

private Q_SLOTS:
    // A slot, because what comes from the bus is connected by name.
    void busLost();

private:
    bool hasBus = true;
};

/// Starts a private bus, serves on it in another process, runs the command of the options, ends all
/// that and returns the exit status. `serve` is called in the other process: it serves, calls its
/// argument once the command may run, and returns the status. The calling process has no threads.
int runCommand(Options options,
               const std::function<int(const Options &, const std::function<void()> &)> &serve);
