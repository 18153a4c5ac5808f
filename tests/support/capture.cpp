// SPDX-License-Identifier: MIT
#include "tests/support/capture.h"

#include <QFile>

#include <cstdio>
#include <stdexcept>

#include <sys/mman.h>
#include <unistd.h>

namespace
{

/// The bytes that are written to a descriptor while the action runs.
QByteArray capture(int descriptor, std::FILE *stream, const std::function<void()> &action)
{
    QFile file;
    std::fflush(stream);
    const int before = dup(descriptor);
    const int memory = memfd_create("captured", MFD_CLOEXEC);
    if (before < 0 || dup2(memory, descriptor) < 0
        || !file.open(memory, QIODevice::ReadOnly, QFileDevice::AutoCloseHandle)) {
        throw std::runtime_error("the output cannot be captured");
    }
    action();
    std::fflush(stream);
    dup2(before, descriptor);
    close(before);
    file.seek(0);
    return file.readAll();
}

} // namespace

QByteArray captureOutput(const std::function<void()> &action)
{
    return capture(STDOUT_FILENO, stdout, action);
}

QByteArray captureErrors(const std::function<void()> &action)
{
    return capture(STDERR_FILENO, stderr, action);
}
