// SPDX-License-Identifier: MIT
// The simulator on the bus: its name, the signals that end it, its shutdown; and a command that it
// runs on a private bus.
#pragma once

#include "sim/options.h"

#include <QCoreApplication>
#include <QDBusConnection>

#include <array>
#include <functional>

/// The application object, which Qt D-Bus needs. It gets no arguments.
struct Application {
    int count = 1;
    std::array<char, 10> name { "movra-sim" };
    std::array<char *, 2> words { name.data(), nullptr };
    QCoreApplication application { count, words.data() };
};

/// Whether SIGINT, SIGHUP or SIGTERM ends the program. An ignored one does not, except SIGTERM.
bool endsProgram(int signalNumber);

/// Opens the session bus, or throws; ends the process with the same line if the bus does not
/// respond, or if it ends before outliveBus() is called.
QDBusConnection openBus();

/// Serves until a signal ends it. `announceReady` is called when the name is owned.
void serve(const Options &options, const std::function<void()> &announceReady);

/// Starts a private bus, serves on it in another process, runs the command of the options, ends
/// both and returns the exit status. `carryOut` is called in the other processes: it executes a
/// task and returns its status, or prints the reason for a failure. The calling process must have
/// no other threads.
int runCommand(Options options, int (*carryOut)(const std::function<int()> &task));
