// SPDX-License-Identifier: MIT
#include "bus/connection.h"

#include <QCoreApplication>
#include <QDeadlineTimer>
#include <QMetaObject>
#include <QSemaphore>
#include <QThread>

#include <dbus/dbus.h>

#include <chrono>
#include <csignal>
#include <cstring>
#include <ctime>
#include <limits>
#include <mutex>

#include <unistd.h>

namespace
{

/// The connection of libdbus that Qt D-Bus uses; null until the session bus is open. Qt D-Bus keeps
/// it until the process ends.
DBusConnection *connection = nullptr;

ConnectFailure connectFailure {};

/// How long a bus may not respond: as long as Qt D-Bus waits for a reply.
constexpr std::chrono::seconds patience(25);

/// Async-signal-safe.
[[noreturn]] void failToConnect()
{
    [[maybe_unused]] const ssize_t written =
        write(connectFailure.descriptor, connectFailure.line, std::strlen(connectFailure.line));
    _exit(connectFailure.status);
}

/// Ends the process as a failure to connect unless it is destroyed in time. It works without a
/// second thread, because the process may not be allowed to create one.
class ConnectLimit
{
public:
    ConnectLimit()
    {
        // Not alarm(): the parent may have set it to limit the whole run.
        const int expired = SIGRTMIN;
        struct sigaction action {
        };
        action.sa_handler = [](int /*signal*/) { failToConnect(); };
        sigaction(expired, &action, &before);
        sigset_t signals;
        sigemptyset(&signals);
        sigaddset(&signals, expired);
        pthread_sigmask(SIG_UNBLOCK, &signals, nullptr);

        sigevent event {};
        event.sigev_notify = SIGEV_SIGNAL;
        event.sigev_signo = expired;
        isSet = timer_create(CLOCK_MONOTONIC, &event, &timer) == 0;
        if (isSet) {
            constexpr itimerspec limit { {}, { patience.count(), 0 } };
            timer_settime(timer, 0, &limit, nullptr);
        }
    }
    ~ConnectLimit()
    {
        if (isSet) {
            timer_delete(timer);
        }
        sigaction(SIGRTMIN, &before, nullptr);
    }
    ConnectLimit(const ConnectLimit &) = delete;
    ConnectLimit &operator=(const ConnectLimit &) = delete;

private:
    struct sigaction before {
    };
    timer_t timer {};
    bool isSet = false;
};

enum class BusEnd { FailsToConnect, EndsProcess, IsOutlived };

std::mutex busEndMutex; // guards the two below
BusEnd busEnd = BusEnd::IsOutlived;
int statusAtBusEnd = 0;

void onBusEnd(BusEnd end, int status = 0)
{
    const std::lock_guard<std::mutex> lock(busEndMutex);
    busEnd = end;
    statusAtBusEnd = status;
}

void busEnded()
{
    // Held until the process has ended, so that outliveBus() does not return.
    const std::lock_guard<std::mutex> lock(busEndMutex);
    if (busEnd == BusEnd::FailsToConnect) {
        failToConnect();
    } else if (busEnd == BusEnd::EndsProcess) {
        _exit(statusAtBusEnd);
    }
}

/// A filter of libdbus, which runs in Qt D-Bus's thread.
DBusHandlerResult noticeBusEnd(DBusConnection * /*from*/, DBusMessage *message, void * /*data*/)
{
    if (dbus_message_is_signal(message, DBUS_INTERFACE_LOCAL, "Disconnected") != FALSE) {
        busEnded();
    }
    return DBUS_HANDLER_RESULT_NOT_YET_HANDLED;
}

constexpr int messagesPerTicket = 1000;
constexpr std::size_t bytesPerTicket = 262144;
QSemaphore tickets(8);
std::mutex flowMutex; // guards the one below
QObject *ticketReceiver = nullptr; // set while flow control is on

bool isOfNumbers(DBusMessageIter &array)
{
    const int element = dbus_message_iter_get_element_type(&array);
    // libdbus does not return an array of file descriptors as a whole.
    return dbus_type_is_fixed(element) != FALSE && element != DBUS_TYPE_UNIX_FD;
}

/// An estimate of a signal's bytes: its texts, and 8 for each element of an array of numbers. Any
/// signal of any sender may come here; other arguments are not counted.
std::size_t sizeOf(DBusMessage *signal)
{
    std::size_t size = 0;
    DBusMessageIter argument;
    if (dbus_message_iter_init(signal, &argument) == FALSE) {
        return size;
    }
    do {
        const int type = dbus_message_iter_get_arg_type(&argument);
        if (type == DBUS_TYPE_STRING) {
            const char *text = nullptr;
            dbus_message_iter_get_basic(&argument, &text);
            size += std::strlen(text);
        } else if (type == DBUS_TYPE_ARRAY && isOfNumbers(argument)) {
            DBusMessageIter elements;
            dbus_message_iter_recurse(&argument, &elements);
            const void *first = nullptr;
            int count = 0;
            dbus_message_iter_get_fixed_array(&elements, &first, &count);
            size += static_cast<std::size_t>(count) * sizeof(double);
        }
    } while (dbus_message_iter_has_next(&argument) != FALSE
             && dbus_message_iter_next(&argument) != FALSE);
    return size;
}

/// A filter of libdbus, which runs in Qt D-Bus's thread, after Qt's own has queued the message.
DBusHandlerResult limitFlow(DBusConnection * /*from*/, DBusMessage *message, void * /*data*/)
{
    static int messages = 0;
    static std::size_t bytes = 0;
    if (dbus_message_get_type(message) != DBUS_MESSAGE_TYPE_SIGNAL) {
        return DBUS_HANDLER_RESULT_NOT_YET_HANDLED;
    }
    ++messages;
    bytes += sizeOf(message);
    if (messages == messagesPerTicket || bytes >= bytesPerTicket) {
        messages = 0;
        bytes = 0;
        tickets.acquire();
        const std::lock_guard<std::mutex> lock(flowMutex);
        if (ticketReceiver != nullptr) {
            QMetaObject::invokeMethod(
                ticketReceiver, [] { tickets.release(); }, Qt::QueuedConnection);
        }
    }
    // libdbus does not need to search for an object: Qt D-Bus has none for signals.
    return DBUS_HANDLER_RESULT_HANDLED;
}

} // namespace

QDBusConnection openSessionBus(const ConnectFailure &failure)
{
    connectFailure = failure;
    const ConnectLimit limit;
    QDBusConnection bus = QDBusConnection::sessionBus();
    // Qt D-Bus holds messages back until the main thread has handled an event that sessionBus() has
    // posted, and then a new message may overtake them. Before the first request none is held.
    QCoreApplication::sendPostedEvents();
    if (connection == nullptr && bus.internalPointer() != nullptr) {
        connection = static_cast<DBusConnection *>(bus.internalPointer());
        // Above its limit libdbus stops reading, and Qt D-Bus 5.15 cannot make it read again.
        dbus_connection_set_max_received_size(connection, std::numeric_limits<long>::max());
        dbus_connection_add_filter(connection, &noticeBusEnd, nullptr, nullptr);
    }
    onBusEnd(BusEnd::FailsToConnect);
    // The bus may have ended before the filter was added.
    endIfBusEnded();
    return bus;
}

void endWithBus(int status)
{
    onBusEnd(BusEnd::EndsProcess, status);
    endIfBusEnded();
}

void outliveBus()
{
    onBusEnd(BusEnd::IsOutlived);
}

void sendQueuedCalls()
{
    if (const std::lock_guard<std::mutex> lock(busEndMutex); busEnd == BusEnd::IsOutlived) {
        return;
    }
    // Qt D-Bus's thread carries out this request, which fails, after all earlier ones.
    QDBusConnection::connectToPeer({}, QStringLiteral("none"));
    // What the socket could not take at once is sent as the bus reads it.
    const QDeadlineTimer limit(patience);
    while (dbus_connection_has_messages_to_send(connection) != FALSE && !limit.hasExpired()) {
        QThread::msleep(1);
    }
}

void endIfBusEnded()
{
    if (connection != nullptr && dbus_connection_get_is_connected(connection) == FALSE) {
        busEnded();
    }
}

FlowControl::FlowControl()
{
    ticketReceiver = &mainThread;
    dbus_connection_remove_filter(connection, &noticeBusEnd, nullptr);
    dbus_connection_add_filter(connection, &limitFlow, nullptr, nullptr);
}

FlowControl::~FlowControl()
{
    dbus_connection_remove_filter(connection, &limitFlow, nullptr);
    const std::lock_guard<std::mutex> lock(flowMutex);
    ticketReceiver = nullptr;
    // Qt D-Bus's thread may wait for a ticket.
    tickets.release();
}
