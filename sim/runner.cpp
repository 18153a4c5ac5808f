// SPDX-License-Identifier: MIT
// A command on a private bus. Whatever ends this process ends the bus and the service as well.
#include "sim/catalog.h"
#include "sim/host.h"

#include <QDir>
#include <QFile>
#include <QTemporaryDir>

#include <algorithm>
#include <array>
#include <cerrno>
#include <csignal>
#include <ctime>

#include <fcntl.h>
#include <sys/prctl.h>
#include <sys/wait.h>
#include <unistd.h>

namespace
{

[[noreturn]] void failWith(const QString &reason)
{
    throw Refusal { "Bus"_q, "the private bus does not start: "_q + reason };
}

/// The signals that this process waits for, blocked from now on.
class Signals
{
public:
    Signals()
    {
        sigemptyset(&awaited);
        for (const int number : { SIGINT, SIGQUIT, SIGTERM, SIGHUP, SIGCHLD }) {
            sigaddset(&awaited, number);
        }
        ::sigprocmask(SIG_BLOCK, &awaited, &before);
    }
    /// For a new process: its signals are those of the program's start.
    void release() const { ::sigprocmask(SIG_SETMASK, &before, nullptr); }
    /// The next signal; -1: the time is over. Without a limit (0) there is always one.
    int next(int seconds) const
    {
        const timespec limit { seconds, 0 };
        int number = -1;
        do {
            number = seconds == 0 ? ::sigwaitinfo(&awaited, nullptr)
                                  : ::sigtimedwait(&awaited, nullptr, &limit);
        } while (number < 0 && errno == EINTR);
        return number;
    }

private:
    sigset_t awaited {};
    sigset_t before {};
};

/// Another process that is told to end, and waited for, with this object.
class Process
{
public:
    Process() = default;
    ~Process()
    {
        if (pid > 0) {
            ::kill(pid, SIGTERM);
            wait(0);
        }
    }
    Q_DISABLE_COPY(Process)

    /// Forks; true in the new process.
    bool fork(const Signals &signals, bool isApart)
    {
        const pid_t parent = ::getpid();
        pid = ::fork();
        if (pid < 0) {
            failWith(qt_error_string(errno));
        }
        if (pid == 0) {
            signals.release();
            if (isApart) {
                // Ctrl-C must not end it before the command.
                ::setsid();
                ::prctl(PR_SET_PDEATHSIG, SIGTERM);
                if (::getppid() != parent) {
                    ::_exit(0);
                }
            }
        }
        return pid == 0;
    }
    void send(int signalNumber) const { ::kill(pid, signalNumber); }
    /// True once it has ended; its exit status is then that of a shell.
    bool wait(int options)
    {
        int state = 0;
        if (pid > 0 && ::waitpid(pid, &state, options) == pid) {
            constexpr int bySignal = 128;
            status = WIFSIGNALED(state) ? bySignal + WTERMSIG(state) : WEXITSTATUS(state);
            pid = -1;
        }
        return pid < 0;
    }
    int status = 0;

private:
    pid_t pid = -1;
};

/// A pipe whose ends close themselves.
struct Pipe {
    QFile reader;
    QFile writer;

    Pipe()
    {
        std::array<int, 2> ends {};
        if (::pipe2(ends.data(), O_CLOEXEC) != 0) {
            failWith(qt_error_string(errno));
        }
        reader.open(ends[0], QIODevice::ReadOnly | QIODevice::Unbuffered, QFile::AutoCloseHandle);
        writer.open(ends[1], QIODevice::WriteOnly | QIODevice::Unbuffered, QFile::AutoCloseHandle);
    }
};

/// Starts a session bus in the directory and makes it that of this process.
void startBus(Process &daemon, const Signals &signals, const QTemporaryDir &directory)
{
    const auto path = [&](const char *name) {
        return directory.filePath(QString::fromLatin1(name));
    };
    QFile configuration(path("bus.conf"));
    QFile log(path("bus.log"));
    if (!directory.isValid() || !configuration.open(QIODevice::WriteOnly)
        || !log.open(QIODevice::ReadWrite | QIODevice::Unbuffered)) {
        failWith(directory.isValid() ? configuration.errorString() : directory.errorString());
    }
    configuration.write(builtIn("bus.conf"_q));
    configuration.close();
    std::array<QByteArray, 6> words {
        "dbus-daemon",
        "--nofork",
        "--nopidfile",
        "--print-address",
        "--config-file=" + QFile::encodeName(configuration.fileName()),
        "--address=unix:path=" + QFile::encodeName(path("bus")),
    };
    std::array<char *, words.size() + 1> pointers {};
    std::transform(words.begin(), words.end(), pointers.begin(),
                   [](QByteArray &word) { return word.data(); });
    Pipe output;
    if (daemon.fork(signals, true)) {
        ::dup2(output.writer.handle(), STDOUT_FILENO);
        ::dup2(log.handle(), STDERR_FILENO);
        ::execvp(pointers[0], pointers.data());
        log.write("dbus-daemon cannot be run: " + qt_error_string(errno).toLocal8Bit());
        ::_exit(1);
    }
    output.writer.close();
    const QByteArray address = output.reader.readLine().trimmed();
    if (address.isEmpty()) {
        log.seek(0);
        failWith(shown(QString::fromLocal8Bit(log.readAll().trimmed())));
    }
    qputenv("DBUS_SESSION_BUS_ADDRESS", address);
}

/// Starts the command, which keeps the standard streams and the terminal.
void startCommand(Process &command, const Signals &signals, char *const *words)
{
    Pipe report;
    if (command.fork(signals, false)) {
        ::execvp(words[0], words);
        report.writer.write(QByteArray::number(errno));
        ::_exit(1);
    }
    report.writer.close();
    // The pipe ends without a word once the command runs.
    if (const int failure = report.reader.readAll().toInt(); failure != 0) {
        command.wait(0);
        throw Refusal { failure == ENOENT ? "NotFound"_q : "NotRunnable"_q,
                        "%1 cannot be run: %2"_q.arg(quoted(QFile::decodeName(words[0])),
                                                     qt_error_string(failure)) };
    }
}

} // namespace

int runCommand(Options options,
               const std::function<int(const Options &, const std::function<void()> &)> &serve)
{
    constexpr int patience = 5;
    const QTemporaryDir directory(QDir::tempPath() + "/movra-sim-XXXXXX"_q);
    const Signals signals;
    Process daemon;
    startBus(daemon, signals, directory);
    if (!options.stateDirectory) {
        options.stateDirectory = directory.filePath("state"_q);
    }
    qputenv("MOVRA_SIM_STATE",
            QFile::encodeName(QDir::current().absoluteFilePath(*options.stateDirectory)));

    Process service;
    Pipe ready;
    if (service.fork(signals, true)) {
        const pid_t parent = ::getppid();
        ready.reader.close();
        const int status = serve(options, [&ready] {
            ready.writer.write("ready");
            ready.writer.close();
        });
        if (::getppid() != parent) {
            // The parent was killed. The bus removes its socket, which can make one attempt fail.
            const QString path = directory.path();
            if (!QDir(path).removeRecursively()) {
                QDir(path).removeRecursively();
            }
        }
        // What this process holds a copy of is not its own to end.
        ::_exit(status);
    }
    ready.writer.close();
    if (ready.reader.readAll().isEmpty()) {
        service.wait(0);
        return service.status;
    }

    Process command;
    startCommand(command, signals, options.command);
    bool isLeaving = false;
    while (!command.wait(WNOHANG)) {
        const int number = signals.next(isLeaving ? patience : 0);
        if (number < 0) {
            command.send(SIGKILL);
        } else if (number == SIGTERM || number == SIGHUP) {
            command.send(number);
            isLeaving = true;
        }
        // The terminal sends SIGINT and SIGQUIT to the command as well, which may go on.
    }
    service.send(SIGTERM);
    service.wait(0);
    return command.status != 0 ? command.status : service.status;
}
