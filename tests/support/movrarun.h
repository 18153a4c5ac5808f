// SPDX-License-Identifier: MIT
// Rows for the built program: what is typed, what the service answers, what must be printed. Rows
// run side by side, each with a fake service of its own name, because each takes half a second.
#pragma once

#include "tests/support/fakeservice.h"
#include "tests/support/program.h"

#include <QByteArray>
#include <QByteArrayList>
#include <QObject>

#include <functional>
#include <memory>
#include <vector>

/// The variables that a program under test inherits: the locale and the options of the sanitizers.
QByteArrayList baseEnvironment();

/// The same with the address of a bus, by default that of the test.
QByteArrayList busEnvironment(const QByteArray &bus = qgetenv("DBUS_SESSION_BUS_ADDRESS"));

/// Prepares the service of a row before the program starts.
using Prepare = std::function<void(FakeService &)>;

/// The service answers a member with a body in GVariant text.
Prepare answers(const char *member, const QByteArray &body);
/// The service answers a member with an error, whose text must never be printed.
Prepare refuses(const char *member);

/// The program's own error line with a status.
QByteArray error(int status);

/// One run of the program.
struct MovraRow {
    QByteArray name; ///< a sentence
    QByteArrayList arguments; ///< what is typed; "@" is replaced by the name of the row's service
    Prepare prepare; ///< what the service answers; may be empty
    QByteArray out; ///< the whole of standard output
    QByteArrayList calls; ///< what reaches the service, in order
    int status;
    QByteArray err = {}; ///< the whole of standard error
};

/// A request to the row's own service at "/", which prints `out` and makes one call.
MovraRow asks(const QByteArray &name, const QByteArrayList &typed, const Prepare &prepare,
              const QByteArray &out, const QByteArray &call);
/// The same with a service that accepts the call; nothing is printed.
MovraRow sends(const QByteArray &name, const QByteArrayList &typed, const QByteArray &call);

/// Starts the next rows together with the selected one, so that their half seconds overlap.
class MovraRows
{
public:
    explicit MovraRows(std::vector<MovraRow> table);
    /// Adds one data row per table row: the column "row" of type int.
    void addTestData() const;
    /// Waits for a row's run and compares streams, calls and status, inside a test function.
    void check(int index);

private:
    struct Run {
        FakeService service;
        std::unique_ptr<Program> program;
        Run(const MovraRow &row, const QByteArray &serviceName);
    };

    std::vector<MovraRow> rows;
    std::vector<std::unique_ptr<Run>> runs; ///< one place per row; null before and after its run
    std::size_t started = 0; ///< the first row that has not been started
};

/// A test with rows, to derive from.
class MovraRowsTest : public QObject
{
    Q_OBJECT

public:
    explicit MovraRowsTest(std::vector<MovraRow> rows);

private Q_SLOTS:
    void run_data();
    void run();

private:
    MovraRows table;
};
