// SPDX-License-Identifier: MIT
// The session bus with two features of libdbus that Qt D-Bus does not offer: the process notices
// the end of the bus, and the memory for received messages is limited.
#pragma once

#include <QDBusConnection>
#include <QObject>

/// How a process that cannot connect ends.
struct ConnectFailure {
    int descriptor; ///< to which the line is written
    const char *line; ///< with its line end; kept, not copied
    int status; ///< exit status
};

/// Opens the session bus for messages of any size; if there is none, the connection is not
/// connected.
///
/// If the bus does not respond for 25 seconds, or ends before endWithBus() or outliveBus() is
/// called, the process ends as `failure` says. Qt D-Bus 5.15 would wait without limit.
QDBusConnection openSessionBus(const ConnectFailure &failure);

/// From now on the end of the bus ends the process immediately with this status. So does a bus that
/// has ended already. Nothing is printed.
void endWithBus(int status);

/// From now on the process outlives the bus. Does not return if the bus has ended the process.
void outliveBus();

/// Waits until all calls have been sent, at most 25 seconds if the bus does not read them. Qt D-Bus
/// would discard calls at exit that its thread, on a busy machine, has not sent yet. A process that
/// outlives the bus does not wait: it has the replies to its calls.
void sendQueuedCalls();

/// Ends the process now if it must end with the bus and the connection is closed. For a call that
/// Qt D-Bus could not send: it fails before the end of the bus is noticed.
void endIfBusEnded();

/// While this object exists, about 9,000 signals or 2.25 MiB at most are queued for the main
/// thread, or 9 signals that are larger than 256 KiB. Further signals stay in the bus.
///
/// Qt D-Bus's thread counts the signals that it queues for the main thread. After every 1000th, or
/// 256 KiB, it acquires one of 8 tickets. The main thread releases the ticket when it has handled
/// the signals that were queued before. While there is no ticket, the thread does not read, so the
/// main thread must not wait for a reply from the bus. Only signals are counted, because Qt D-Bus
/// does not forward method calls to other filters.
class FlowControl
{
public:
    /// In the main thread of a process that outlives the bus.
    FlowControl();
    ~FlowControl();
    FlowControl(const FlowControl &) = delete;
    FlowControl &operator=(const FlowControl &) = delete;

private:
    QObject mainThread; ///< receives the events that release tickets
};
