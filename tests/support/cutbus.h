// SPDX-License-Identifier: MIT
// A bus that fails while a program connects to it.
#pragma once

#include <QByteArray>
#include <QTemporaryDir>

#include <array>
#include <list>
#include <thread>

/// Passes on what programs and a real bus send each other, until a program sends a certain text.
class CutBus
{
public:
    /// What happens then: the connection is closed, or nothing is passed on any more.
    enum class Cut { Close, Silence };

    /// `bus` is the address of the real bus; an empty text is sent by everybody. Throws
    /// std::runtime_error if there is no socket to be had.
    CutBus(const QByteArray &bus, const QByteArray &text, Cut cut);
    ~CutBus();
    CutBus(const CutBus &) = delete;
    CutBus &operator=(const CutBus &) = delete;

    QByteArray address; ///< for DBUS_SESSION_BUS_ADDRESS

private:
    void accept();
    void passOn(int program) const;

    QTemporaryDir directory; ///< holds the socket
    QByteArray realSocket;
    QByteArray lastText;
    Cut cut;
    int listening = -1;
    std::array<int, 2> over { -1, -1 }; ///< a pipe that is closed when the object goes
    std::thread accepting;
    std::list<std::thread> connections;
};
