// SPDX-License-Identifier: MIT
// movra-sim: a simulated application service for demonstrations, scripts and writers of services.
#include "sim/host.h"
#include "sim/options.h"

#include <QCoreApplication>

#include <cstdio>

namespace
{

void print(std::FILE *stream, const QString &text)
{
    std::fputs(text.toLocal8Bit().constData(), stream);
    std::fflush(stream);
}

int fail(ExitStatus status, const QString &sentence)
{
    print(stderr, QStringLiteral("movra-sim: %1\n").arg(sentence));
    return static_cast<int>(status);
}

} // namespace

int main(int argc, char **argv)
{
    const QCoreApplication application(argc, argv);
    const Options options = parseOptions(QCoreApplication::arguments());
    if (!options.problem.isEmpty()) {
        return fail(ExitStatus::WrongUsage,
                    options.problem + QStringLiteral(" See movra-sim --help."));
    }
    if (options.task != Options::Task::Serve) {
        print(stdout, options.task == Options::Task::Help ? helpText() : versionText());
        return static_cast<int>(ExitStatus::Closed);
    }
    const Ending ending = Host(options).serve([] { print(stdout, QStringLiteral("ready\n")); });
    return ending.sentence.isEmpty() ? static_cast<int>(ending.status)
                                     : fail(ending.status, ending.sentence);
}
