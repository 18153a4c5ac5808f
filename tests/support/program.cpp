// SPDX-License-Identifier: MIT
#include "tests/support/program.h"

#include <algorithm>
#include <array>
#include <cerrno>
#include <csignal>
#include <cstring>
#include <stdexcept>
#include <string>
#include <thread>
#include <vector>

#include <fcntl.h>
#include <poll.h>
#include <spawn.h>
#include <sys/ioctl.h>
#include <sys/socket.h>
#include <sys/wait.h>
#include <unistd.h>

namespace
{

using Clock = std::chrono::steady_clock;

std::vector<char *> vectorOf(QByteArrayList &words)
{
    std::vector<char *> entries;
    for (QByteArray &word : words) {
        entries.push_back(word.data());
    }
    entries.push_back(nullptr);
    return entries;
}

/// Appends what the pipe holds; closes it at its end.
void drain(int &pipe, QByteArray &to)
{
    std::array<char, 65536> buffer {};
    const ssize_t count = read(pipe, buffer.data(), buffer.size());
    if (count > 0) {
        to.append(buffer.data(), static_cast<int>(count));
    } else if (count == 0 || errno != EINTR) {
        close(pipe);
        pipe = -1;
    }
}

} // namespace

Program::Program(const QByteArray &file, const QByteArrayList &arguments,
                 const QByteArrayList &environment, Output output)
{
    QByteArrayList words { file };
    words += arguments;
    QByteArrayList variables = environment;

    std::array<int, 2> outEnds {};
    std::array<int, 2> errEnds {};
    if (pipe2(outEnds.data(), O_CLOEXEC) != 0 || pipe2(errEnds.data(), O_CLOEXEC) != 0) {
        throw std::runtime_error(std::string("pipe: ") + strerror(errno));
    }
    if (output == Output::NonBlockingSocket) {
        close(outEnds[0]);
        close(outEnds[1]);
        if (socketpair(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC, 0, outEnds.data()) != 0) {
            throw std::runtime_error(std::string("socketpair: ") + strerror(errno));
        }
    }
    if (output == Output::NonBlockingPipe || output == Output::NonBlockingSocket) {
        fcntl(outEnds[1], F_SETFL, O_WRONLY | O_NONBLOCK);
    }
    outPipe = outEnds[0];
    errPipe = errEnds[0];

    posix_spawn_file_actions_t actions;
    posix_spawn_file_actions_init(&actions);
    posix_spawn_file_actions_addopen(&actions, STDIN_FILENO, "/dev/null", O_RDONLY, 0);
    if (output == Output::Closed) {
        posix_spawn_file_actions_addclose(&actions, STDOUT_FILENO);
    } else if (output == Output::Full) {
        posix_spawn_file_actions_addopen(&actions, STDOUT_FILENO, "/dev/full", O_WRONLY, 0);
    } else {
        posix_spawn_file_actions_adddup2(&actions, outEnds[1], STDOUT_FILENO);
    }
    if (output == Output::LeftPipe) {
        leaveOutput();
    }
    posix_spawn_file_actions_adddup2(&actions, errEnds[1], STDERR_FILENO);
    // GLib in this process ignores SIGPIPE, and background jobs of a shell inherit SIGINT ignored.
    posix_spawnattr_t attributes;
    posix_spawnattr_init(&attributes);
    sigset_t all;
    sigfillset(&all);
    posix_spawnattr_setsigdefault(&attributes, &all);
    sigset_t none;
    sigemptyset(&none);
    posix_spawnattr_setsigmask(&attributes, &none);
    posix_spawnattr_setflags(&attributes, POSIX_SPAWN_SETSIGDEF | POSIX_SPAWN_SETSIGMASK);
    // If this process ignored SIGCHLD, the system would discard the exit status.
    std::signal(SIGCHLD, SIG_DFL);
    started = Clock::now();
    const int failure = posix_spawnp(&pid, file.constData(), &actions, &attributes,
                                     vectorOf(words).data(), vectorOf(variables).data());
    posix_spawn_file_actions_destroy(&actions);
    posix_spawnattr_destroy(&attributes);
    close(outEnds[1]);
    close(errEnds[1]);
    if (failure != 0) {
        throw std::runtime_error(file.toStdString() + ": " + strerror(failure));
    }
}

Program::~Program()
{
    if (pid > 0) {
        kill(pid, SIGKILL);
        waitpid(pid, nullptr, 0);
    }
    for (const int pipe : { outPipe, errPipe }) {
        if (pipe >= 0) {
            close(pipe);
        }
    }
}

bool Program::readSome(Clock::time_point deadline)
{
    const auto left =
        std::chrono::duration_cast<std::chrono::milliseconds>(deadline - Clock::now());
    std::array<pollfd, 2> pipes { { { outPipe, POLLIN, 0 }, { errPipe, POLLIN, 0 } } };
    if (left.count() <= 0
        || poll(pipes.data(), pipes.size(), static_cast<int>(left.count())) <= 0) {
        return Clock::now() < deadline;
    }
    if (pipes[0].revents != 0) {
        const int before = out.size();
        drain(outPipe, out);
        lines += static_cast<int>(std::count(out.cbegin() + before, out.cend(), '\n'));
    }
    if (pipes[1].revents != 0) {
        drain(errPipe, err);
    }
    return true;
}

void Program::send(int signal)
{
    if (pid > 0) {
        kill(pid, signal);
    }
}

bool Program::runs() const
{
    siginfo_t end {};
    return waitid(P_PID, static_cast<id_t>(pid), &end, WEXITED | WNOHANG | WNOWAIT) == 0
        && end.si_pid == 0;
}

bool Program::waitUntilStalled() const
{
    const auto deadline = Clock::now() + patience;
    int before = 0;
    int bytes = 0;
    do {
        before = bytes;
        std::this_thread::sleep_for(std::chrono::milliseconds(50));
        ioctl(outPipe, FIONREAD, &bytes);
    } while ((bytes == 0 || bytes != before) && Clock::now() < deadline);
    return bytes != 0 && bytes == before;
}

void Program::leaveOutput()
{
    close(outPipe);
    outPipe = -1;
}

bool Program::waitForLines(int count)
{
    return readUntil([this, count] { return lines >= count; });
}

bool Program::waitForLastLine(const QByteArray &line)
{
    return readUntil([this, &line] { return out.endsWith(line); });
}

bool Program::readUntil(const std::function<bool()> &enough)
{
    const auto deadline = Clock::now() + patience;
    while (!enough()) {
        if (outPipe < 0 || !readSome(deadline)) {
            return false;
        }
    }
    return true;
}

void Program::forgetOutput()
{
    out.clear();
    lines = 0;
}

bool Program::waitForEnd(std::chrono::seconds limit)
{
    if (pid < 0) {
        return true;
    }
    const auto deadline = Clock::now() + limit;
    bool inTime = true;
    while (inTime && (outPipe >= 0 || errPipe >= 0)) {
        inTime = readSome(deadline);
    }
    int state = 0;
    // A program may close its streams long before it ends.
    while (inTime && waitpid(pid, &state, WNOHANG) == 0) {
        inTime = Clock::now() < deadline;
        std::this_thread::sleep_for(std::chrono::milliseconds(1));
    }
    if (!inTime) {
        kill(pid, SIGKILL);
        waitpid(pid, &state, 0);
    }
    ended = Clock::now();
    pid = -1;
    status = WIFEXITED(state) ? WEXITSTATUS(state) : 256 + WTERMSIG(state);
    return inTime;
}
