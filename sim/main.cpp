// SPDX-License-Identifier: MIT
// movra-sim: a simulated application service for demonstrations, scripts and writers of services.
#include "sim/catalog.h"
#include "sim/host.h"

#include <cerrno>
#include <clocale>
#include <cstdio>
#include <cstring>
#include <iostream>

#include <fcntl.h>
#include <unistd.h>

namespace
{

void print(const QByteArray &text)
{
    if (std::fputs(text.constData(), stdout) < 0 || std::fflush(stdout) != 0) {
        throw Refusal { "Output"_q, "the output cannot be written: "_q + qt_error_string(errno) };
    }
}

/// Carries out a task; a refusal becomes the last line, and its status that of the program.
int carryOut(const std::function<int()> &task)
{
    static const QHash<QString, int> statuses {
        { "Usage"_q, 1 },         { "Catalog"_q, 2 },    { "Bus"_q, 3 },    { "Name"_q, 4 },
        { "Path"_q, 5 },          { "State"_q, 6 },      { "Record"_q, 7 }, { "Capture"_q, 8 },
        { "NotRunnable"_q, 126 }, { "NotFound"_q, 127 },
    };
    try {
        return task();
    } catch (const Refusal &refusal) {
        std::fprintf(stderr, "movra-sim: %s\n", refusal.sentence.toLocal8Bit().constData());
        return statuses.value(refusal.name, 1);
    }
}

int run(int count, char **words)
{
    char **const end = words + count;
    char **const separator =
        std::find_if(words, end, [](const char *word) { return std::strcmp(word, "--") == 0; });
    QStringList arguments;
    for (char **word = words; word != separator; ++word) {
        arguments.append(QString::fromLocal8Bit(*word));
    }
    Options options = parseOptions(arguments);
    options.command = separator == end ? nullptr : separator + 1;
    switch (options.task) {
    case Options::Task::Print:
        print(options.text.toLocal8Bit());
        return 0;
    case Options::Task::Check:
        loadCatalog(options.catalogFile);
        return 0;
    case Options::Task::Capture:
        print(captureCatalog(options.service, options.path));
        return 0;
    case Options::Task::Serve:
        break;
    }
    if (options.command == nullptr) {
        serve(options, [] { std::cout << "ready" << std::endl; });
        return 0;
    }
    if (*options.command == nullptr) {
        throw Refusal { "Usage"_q, "There is no command. See movra-sim --help."_q };
    }
    return runCommand(options, &carryOut);
}

} // namespace

int main(int argc, char **argv)
{
    // The next opened file or socket would become a closed standard stream.
    int descriptor = -1;
    do {
        descriptor = open("/dev/null", O_RDWR);
    } while (descriptor >= 0 && descriptor <= STDERR_FILENO);
    close(descriptor);
    // Before there is an application object: a command is started from a process without threads.
    std::setlocale(LC_ALL, "");
    return carryOut([&] { return run(argc, argv); });
}
