// SPDX-License-Identifier: MIT
#include "tests/support/cutbus.h"

#include <QFile>

#include <cstring>
#include <stdexcept>

#include <fcntl.h>
#include <poll.h>
#include <sys/socket.h>
#include <sys/un.h>
#include <unistd.h>

namespace
{

int openSocket(const QByteArray &path, decltype(&::connect) attach)
{
    const int descriptor = socket(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC, 0);
    sockaddr_un name {};
    name.sun_family = AF_UNIX;
    qstrncpy(name.sun_path, path.constData(), sizeof name.sun_path);
    if (attach(descriptor, reinterpret_cast<const sockaddr *>(&name), sizeof name) != 0) {
        throw std::runtime_error("no socket at " + path.toStdString());
    }
    return descriptor;
}

} // namespace

CutBus::CutBus(const QByteArray &bus, const QByteArray &text, Cut cutBy)
    : lastText(text)
    , cut(cutBy)
{
    const QByteArray begin = "unix:path=";
    const int end = bus.indexOf(',');
    realSocket = bus.mid(begin.size(), end < 0 ? -1 : end - begin.size());
    const QByteArray path = QFile::encodeName(directory.filePath(QStringLiteral("bus")));
    listening = openSocket(path, &::bind);
    if (!bus.startsWith(begin) || listen(listening, 64) != 0
        || pipe2(over.data(), O_CLOEXEC) != 0) {
        throw std::runtime_error("a socket or pipe cannot be opened");
    }
    address = begin + path;
    accepting = std::thread([this] { accept(); });
}

CutBus::~CutBus()
{
    close(over[1]);
    accepting.join();
    for (std::thread &connection : connections) {
        connection.join();
    }
    close(over[0]);
    close(listening);
}

void CutBus::accept()
{
    while (true) {
        std::array<pollfd, 2> waiting { { { over[0], POLLIN, 0 }, { listening, POLLIN, 0 } } };
        poll(waiting.data(), waiting.size(), -1);
        if (waiting[0].revents != 0) {
            return;
        }
        const int program = accept4(listening, nullptr, nullptr, SOCK_CLOEXEC);
        connections.emplace_back([this, program] { forward(program); });
    }
}

void CutBus::forward(int program) const
{
    const int bus = openSocket(realSocket, &::connect);
    QByteArray sent;
    std::array<char, 4096> buffer {};
    bool open = true;
    while (open) {
        std::array<pollfd, 3> waiting {
            { { over[0], POLLIN, 0 }, { program, POLLIN, 0 }, { bus, POLLIN, 0 } }
        };
        poll(waiting.data(), waiting.size(), -1);
        const bool fromProgram = waiting[1].revents != 0;
        if (waiting[0].revents != 0) {
            break;
        }
        const int from = fromProgram ? program : bus;
        const ssize_t count = read(from, buffer.data(), buffer.size());
        open = count > 0;
        if (fromProgram && open) {
            sent.append(buffer.data(), static_cast<int>(count));
            if (sent.contains(lastText)) {
                break;
            }
        }
        if (open) {
            open =
                write(fromProgram ? bus : program, buffer.data(), static_cast<std::size_t>(count))
                == count;
        }
    }
    if (open && cut == Cut::Silence) {
        pollfd waiting { over[0], POLLIN, 0 };
        poll(&waiting, 1, -1);
    }
    close(bus);
    close(program);
}
