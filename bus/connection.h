// SPDX-License-Identifier: MIT
// The session bus, with what libdbus offers and Qt D-Bus does not: a process that ends with the
// bus, and a limit to the memory for received messages.
#pragma once

#include <QDBusConnection>
#include <QObject>

/// How a process ends that cannot connect.
struct ConnectFailure {
    int descriptor; ///< where the line is written
    const char *line; ///< complete with its line end; kept, not copied
    int status; ///< exit status
};

/// Opens the session bus for messages of any size; if there is none, the connection is not
/// connected.
///
/// The process ends as the failure says if the bus does not respond for 25 seconds, or if it ends
/// before endWithBus() or outliveBus() is called. Qt D-Bus 5.15 would wait without end.
QDBusConnection openSessionBus(const ConnectFailure &failure);

/// From now on the end of the bus ends the process at once with this status, and so does a bus that
/// has ended already. Nothing is printed.
void endWithBus(int status);

/// From now on the process outlives the bus. Does not return if the bus has ended the process.
void outliveBus();

/// Ends the process now if it must end with the bus and the connection is closed. For a call that
/// Qt D-Bus could not send: it fails before the end of the bus is noticed.
void endIfBusEnded();

/// While this object exists, signals stay in the bus once the main thread is 8,000 of them behind,
/// or 2 MiB.
///
/// Qt D-Bus's thread counts the signals that it queues for the main thread. After every 1000th, or
/// 256 KiB, it takes one of 8 tickets, and the main thread gives the ticket back when it has
/// handled the signals queued before. As long as there is no ticket the thread does not read: the
/// main thread must not wait for an answer from the bus meanwhile. Only signals are counted: Qt
/// D-Bus passes no method call on to another filter.
class FlowControl
{
public:
    /// In the main thread of a process that outlives the bus.
    FlowControl();
    ~FlowControl();
    FlowControl(const FlowControl &) = delete;
    FlowControl &operator=(const FlowControl &) = delete;

private:
    QObject mainThread; ///< receives the events that give tickets back
};
