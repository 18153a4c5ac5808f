// SPDX-License-Identifier: MIT
#include "tests/support/movrarun.h"

#include <QTest>

#include <algorithm>
#include <utility>

namespace
{

constexpr std::size_t sideBySide = 32;

QByteArray nameOfRow(std::size_t index)
{
    return "com.varn.row" + QByteArray::number(static_cast<qulonglong>(index));
}

} // namespace

QByteArrayList baseEnvironment()
{
    QByteArrayList variables;
    for (const char *name :
         { "LC_ALL", "LOCPATH", "ASAN_OPTIONS", "LSAN_OPTIONS", "UBSAN_OPTIONS" }) {
        if (qEnvironmentVariableIsSet(name)) {
            variables.append(QByteArray(name) + '=' + qgetenv(name));
        }
    }
    return variables;
}

QByteArrayList busEnvironment(const QByteArray &bus)
{
    return baseEnvironment() + QByteArrayList { "DBUS_SESSION_BUS_ADDRESS=" + bus };
}

Prepare answers(const char *member, const QByteArray &body)
{
    return [=](FakeService &service) { service.answer(member, body); };
}

Prepare refuses(const char *member)
{
    return [=](FakeService &service) {
        service.refuse(member, "varn.pim.Error.Refused", "the reply's own text is never shown");
    };
}

QByteArray error(int status)
{
    return "Error While Parsing Command -- use -h for help   err:" + QByteArray::number(status)
        + '\n';
}

MovraRow asks(const QByteArray &name, const QByteArrayList &typed, const Prepare &prepare,
              const QByteArray &out, const QByteArray &call)
{
    return { name, QByteArrayList { "@", "/" } + typed, prepare, out, { call }, 0 };
}

MovraRow sends(const QByteArray &name, const QByteArrayList &typed, const QByteArray &call)
{
    return asks(name, typed, {}, "", call);
}

MovraRows::Run::Run(const MovraRow &row, const QByteArray &serviceName)
    : service(serviceName)
{
    if (row.prepare) {
        row.prepare(service);
    }
    QByteArrayList arguments = row.arguments;
    std::replace(arguments.begin(), arguments.end(), QByteArray("@"), serviceName);
    program = std::make_unique<Program>(MOVRA_PROGRAM, arguments, busEnvironment());
}

MovraRows::MovraRows(std::vector<MovraRow> table)
    : rows(std::move(table))
    , runs(rows.size())
{
}

void MovraRows::addTestData() const
{
    QTest::addColumn<int>("row");
    for (std::size_t i = 0; i < rows.size(); ++i) {
        QTest::newRow(rows[i].name.constData()) << static_cast<int>(i);
    }
}

void MovraRows::check(int index)
{
    // Earlier rows that were not started are not selected, for example when one row runs alone.
    const auto first = static_cast<std::size_t>(index);
    const std::size_t last = std::min(first + sideBySide, rows.size());
    for (started = std::max(started, first); started < last; ++started) {
        runs[started] = std::make_unique<Run>(rows[started], nameOfRow(started));
    }

    const MovraRow &row = rows[first];
    const std::unique_ptr<Run> taken = std::move(runs[first]);
    Run &run = *taken;
    QVERIFY2(run.program->waitForEnd(), "the program did not end");
    QCOMPARE(run.program->out, row.out);
    QCOMPARE(run.program->err, row.err);
    QCOMPARE(run.service.waitForCalls(row.calls.size()), row.calls);
    QCOMPARE(run.program->status, row.status);
}

MovraRowsTest::MovraRowsTest(std::vector<MovraRow> rows)
    : table(std::move(rows))
{
}

void MovraRowsTest::run_data()
{
    table.addTestData();
}

void MovraRowsTest::run()
{
    QFETCH(int, row);
    table.check(row);
}
