// SPDX-License-Identifier: MIT
// Runs programs with exactly the bytes a test gives: arguments, environment, both output streams.
#pragma once

#include "tests/support/patience.h"

#include <QByteArray>
#include <QByteArrayList>

#include <chrono>
#include <functional>

#include <sys/types.h>

/// A running program: standard input is empty, standard output and standard error are kept apart.
/// No signal is ignored or blocked when it starts, whatever the test inherited.
class Program
{
public:
    /// The kind of standard output: a pipe that the test reads; one without a reader; a
    /// non-blocking pipe or socket that the test reads; a full device; a closed descriptor.
    enum class Output { Read, LeftPipe, NonBlockingPipe, NonBlockingSocket, Full, Closed };

    /// Starts the program, found on the PATH unless it is named with a slash. `arguments` begins
    /// with argument 1; `environment` holds NAME=value entries and is the whole environment.
    Program(const QByteArray &file, const QByteArrayList &arguments,
            const QByteArrayList &environment, Output output = Output::Read);
    /// Kills the program if it still runs.
    ~Program();
    Program(const Program &) = delete;
    Program &operator=(const Program &) = delete;

    /// Reads until standard output holds this many lines; false if it ends or `patience` is over.
    bool waitForLines(int count);
    /// Reads until standard output ends with this line; false if it ends or `patience` is over.
    bool waitForLastLine(const QByteArray &line);
    /// Empties `out` and sets the count of its lines to zero.
    void forgetOutput();
    pid_t processId() const { return pid; }
    /// Sends the program a signal.
    void send(int signal);
    /// Waits until standard output holds bytes that the test has not read, and gets no more of them
    /// for 50 ms; false if `patience` is over.
    bool waitUntilStalled() const;
    /// Closes the reading end of standard output.
    void leaveOutput();
    /// Reads until the program has ended; false, and the program is killed, if it takes longer.
    bool waitForEnd(std::chrono::seconds limit = patience);
    /// Whether the program has not ended yet.
    bool runs() const;

    QByteArray out; ///< standard output so far
    QByteArray err; ///< standard error so far
    int status = -1; ///< exit status, or the number of the signal that ended it plus 256
    std::chrono::steady_clock::time_point started; ///< a moment before the program began
    std::chrono::steady_clock::time_point ended; ///< when the test noticed its end

private:
    /// Waits for output, or for the end of both streams; false at the deadline.
    bool readSome(std::chrono::steady_clock::time_point deadline);
    /// Reads until there is enough; false if standard output ends or `patience` is over.
    bool readUntil(const std::function<bool()> &enough);

    pid_t pid = -1;
    int lines = 0; ///< in `out`
    int outPipe = -1;
    int errPipe = -1;
};
