// SPDX-License-Identifier: MIT
// A bus that fails while a program connects to it.
#pragma once

#include <QByteArray>
#include <QTemporaryDir>

#include <array>
#include <list>
#include <thread>

/// Forwards all bytes between programs and a real bus until a program sends a certain text.
class CutBus
{
public:
    /// The failure: the connection is closed, or no more bytes are forwarded.
    enum class Cut { Close, Silence };

    /// `bus` is the address of the real bus; every program sends the empty text. Throws
    /// std::runtime_error if no socket can be opened.
    CutBus(const QByteArray &bus, const QByteArray &text, Cut cut);
    ~CutBus();
    CutBus(const CutBus &) = delete;
    CutBus &operator=(const CutBus &) = delete;

    QByteArray address; ///< for DBUS_SESSION_BUS_ADDRESS

private:
    void accept();
    void forward(int program) const;

    /// Holds the socket. The path of TMPDIR may not fit into an address.
    QTemporaryDir directory { QStringLiteral("/tmp/movra-bus-XXXXXX") };
    QByteArray realSocket;
    QByteArray lastText;
    Cut cut;
    int listening = -1;
    std::array<int, 2> over { -1, -1 }; ///< a pipe that the destructor closes
    std::thread accepting;
    std::list<std::thread> connections;
};
