// SPDX-License-Identifier: MIT
// The simulator's life on the bus: its name, the signals that end it, its shutdown; and a command
// that runs beside it on a bus of their own.
#pragma once

#include "sim/options.h"

#include <QCoreApplication>
#include <QDBusConnection>

#include <array>
#include <functional>

/// The application object, which Qt D-Bus needs, without words of its own.
struct Application {
    int count = 1;
    std::array<char, 10> name { "movra-sim" };
    std::array<char *, 2> words { name.data(), nullptr };
    QCoreApplication application { count, words.data() };
};

/// Opens the session bus, or throws; ends the process with the same line if the bus does not
/// respond, or if it ends before outliveBus() is called.
QDBusConnection openBus();

/// Serves until the process is told to end. `announceReady` is called once the name is owned.
void serve(const Options &options, const std::function<void()> &announceReady);

/// Starts a private bus, serves on it in another process, runs the command of the options, ends all
/// that and returns the exit status. `carryOut` is called in the other processes: it carries out a
/// task and returns its status, or prints why that cannot be done. The calling process has no
/// threads.
int runCommand(Options options, int (*carryOut)(const std::function<int()> &task));
