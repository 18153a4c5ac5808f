// SPDX-License-Identifier: MIT
// A command on a private bus. The bus and the service end with this process.
#include "sim/catalog.h"
#include "sim/host.h"

#include <QDir>
#include <QTemporaryDir>

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
        // A process that ignores it cannot wait for another one. Commands expect the default, too.
        std::signal(SIGCHLD, SIG_DFL);
        sigemptyset(&awaited);
        for (const int number : { SIGINT, SIGQUIT, SIGTERM, SIGHUP, SIGCHLD }) {
            sigaddset(&awaited, number);
        }
        sigprocmask(SIG_BLOCK, &awaited, &before);
    }
    /// For a new process: its signals are those of the program's start.
    void release() const { sigprocmask(SIG_SETMASK, &before, nullptr); }
    /// The next signal; -1: the time is over. Without a limit (0) there is always one.
    int next(int seconds) const
    {
        const timespec limit { seconds, 0 };
        int number = -1;
        do {
            number = sigtimedwait(&awaited, nullptr, seconds == 0 ? nullptr : &limit);
        } while (number < 0 && errno == EINTR);
        return number;
    }

private:
    sigset_t awaited {};
    sigset_t before {};
};

/// Another process, which is told to end, and waited for, with this object.
class Process
{
public:
    enum class Session { Same, Own };

    /// Forks; the new process ends with the status that the task returns. The task may write a line
    /// for its parent.
    Process(const Signals &signals, Session session, const std::function<int(QFile &)> &task)
    {
        std::array<int, 2> ends {};
        const pid_t parent = getpid();
        pid = pipe2(ends.data(), O_CLOEXEC) == 0 ? fork() : -1;
        if (pid < 0) {
            failWith(qt_error_string(errno));
        }
        QFile writer;
        output.open(ends[0], QIODevice::ReadOnly | QIODevice::Unbuffered, QFile::AutoCloseHandle);
        writer.open(ends[1], QIODevice::WriteOnly | QIODevice::Unbuffered, QFile::AutoCloseHandle);
        if (pid == 0) {
            signals.release();
            if (session == Session::Own) {
                // Ctrl-C must not end it before the command.
                setsid();
                prctl(PR_SET_PDEATHSIG, SIGTERM);
                if (getppid() != parent) {
                    _exit(0);
                }
            }
            // This process has copies of objects that belong to its parent.
            _exit(task(writer));
        }
    }
    ~Process()
    {
        if (pid > 0) {
            kill(pid, SIGTERM);
            wait(0);
        }
    }
    Q_DISABLE_COPY(Process)

    /// Waits for the line from the process; empty: there is none.
    QByteArray line() { return output.readLine().trimmed(); }
    void send(int signalNumber) const { kill(pid, signalNumber); }
    /// True once it has ended; its exit status is then that of a shell.
    bool wait(int options)
    {
        int state = 0;
        if (pid > 0 && waitpid(pid, &state, options) == pid) {
            constexpr int bySignal = 128;
            status = WIFSIGNALED(state) ? bySignal + WTERMSIG(state) : WEXITSTATUS(state);
            pid = -1;
        }
        return pid < 0;
    }
    int status = 0;

private:
    pid_t pid = -1;
    QFile output;
};

/// Starts a session bus in the directory and makes it that of this process.
std::unique_ptr<Process> startBus(const Signals &signals, const QTemporaryDir &directory)
{
    const QString file = directory.filePath("bus.conf"_q);
    QFile configuration(":/bus.conf"_q);
    QFile log(directory.filePath("bus.log"_q));
    if (!configuration.copy(file) || !log.open(QIODevice::ReadWrite | QIODevice::Unbuffered)) {
        failWith((log.error() ? log : configuration).errorString());
    }
    const QByteArray option = "--config-file=" + QFile::encodeName(file);
    const QByteArray path = QFile::encodeName(directory.filePath("bus"_q));
    const QByteArray socket = "--address=unix:path=" + path.toPercentEncoding("/", "~");
    auto daemon = std::make_unique<Process>(signals, Process::Session::Own, [&](QFile &output) {
        dup2(output.handle(), STDOUT_FILENO);
        dup2(log.handle(), STDERR_FILENO);
        execlp("dbus-daemon", "dbus-daemon", "--nofork", "--nopidfile", "--print-address",
               option.constData(), socket.constData(), static_cast<char *>(nullptr));
        log.write("dbus-daemon cannot be run: " + qt_error_string(errno).toLocal8Bit());
        return 1;
    });
    const QByteArray address = daemon->line();
    if (address.isEmpty()) {
        log.seek(0);
        failWith(shown(QString::fromLocal8Bit(log.readAll().trimmed())));
    }
    qputenv("DBUS_SESSION_BUS_ADDRESS", address);
    return daemon;
}

} // namespace

int runCommand(Options options, int (*carryOut)(const std::function<int()> &task))
{
    constexpr int patience = 5;
    // QDir::tempPath() is empty if the directory of TMPDIR does not exist.
    const QString folder =
        QFile::decodeName(qEnvironmentVariableIsEmpty("TMPDIR") ? "/tmp" : qgetenv("TMPDIR"));
    const QTemporaryDir directory(folder + "/movra-sim-XXXXXX"_q);
    if (!directory.isValid()) {
        failWith("%1: %2"_q.arg(quoted(folder), directory.errorString()));
    }
    const Signals signals;
    const std::unique_ptr<Process> daemon = startBus(signals, directory);
    if (!options.stateDirectory) {
        options.stateDirectory = QDir::current().absoluteFilePath(directory.filePath("state"_q));
    }
    qputenv("MOVRA_SIM_STATE", QFile::encodeName(*options.stateDirectory));

    Process service(signals, Process::Session::Own, [&](QFile &output) {
        const pid_t parent = getppid();
        const int status = carryOut([&] {
            serve(options, [&output] { output.write("ready\n"); });
            return 0;
        });
        if (getppid() != parent) {
            // The parent was killed. The bus removes its socket, which can make one attempt fail.
            for (int attempt = 0; attempt < 2; ++attempt) {
                QDir(directory.path()).removeRecursively();
            }
        }
        return status;
    });
    if (service.line().isEmpty()) {
        service.wait(0);
        return service.status;
    }

    // It keeps the standard streams and the terminal.
    Process command(signals, Process::Session::Same, [&](QFile & /*output*/) {
        return carryOut([&]() -> int {
            execvp(options.command[0], options.command);
            const int error = errno;
            const QString name = quoted(QFile::decodeName(options.command[0]));
            throw Refusal { error == ENOENT ? "NotFound"_q : "NotRunnable"_q,
                            "%1 cannot be run: %2"_q.arg(name, qt_error_string(error)) };
        });
    });
    bool isLeaving = false;
    while (!command.wait(WNOHANG)) {
        const int number = signals.next(isLeaving ? patience : 0);
        if (number < 0) {
            command.send(SIGKILL);
        } else if ((number == SIGTERM || number == SIGHUP) && endsProgram(number)) {
            command.send(number);
            isLeaving = true;
        }
        // The terminal sends SIGINT and SIGQUIT to the command as well, which may go on.
    }
    service.send(SIGTERM);
    service.wait(0);
    return command.status != 0 ? command.status : service.status;
}
