// SPDX-License-Identifier: MIT
// movra-sim: a simulated application service for demonstrations, scripts and writers of services.
#include "sim/host.h"
#include "sim/options.h"

#include <QCoreApplication>

#include <cstdio>

namespace
{

constexpr struct {
    const char *refusal;
    int status;
} statuses[] = { { "Usage", 1 }, { "Catalog", 2 }, { "Bus", 3 },
                 { "Name", 4 },  { "Path", 5 },    { "State", 6 } };

void print(std::FILE *stream, const QString &text)
{
    std::fputs(text.toLocal8Bit().constData(), stream);
    std::fflush(stream);
}

void run(const Options &options)
{
    switch (options.task) {
    case Options::Task::Help:
        return print(stdout, helpText());
    case Options::Task::Version:
        return print(stdout, versionText());
    case Options::Task::Serve:
        return Host().serve(options, [] { print(stdout, QStringLiteral("ready\n")); });
    }
}

} // namespace

int main(int argc, char **argv)
{
    const QCoreApplication application(argc, argv);
    try {
        run(parseOptions(QCoreApplication::arguments()));
        return 0;
    } catch (const Refusal &refusal) {
        print(stderr, QStringLiteral("movra-sim: %1\n").arg(refusal.sentence));
        for (const auto &each : statuses) {
            if (refusal.name == QLatin1String(each.refusal)) {
                return each.status;
            }
        }
        return 1;
    }
}
