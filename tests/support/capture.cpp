// SPDX-License-Identifier: MIT
#include "tests/support/capture.h"

#include <QTemporaryFile>

#include <cstdio>
#include <stdexcept>

#include <unistd.h>

QByteArray captureOutput(const std::function<void()> &action)
{
    QTemporaryFile file;
    std::fflush(stdout);
    const int before = dup(STDOUT_FILENO);
    if (!file.open() || before < 0 || dup2(file.handle(), STDOUT_FILENO) < 0) {
        throw std::runtime_error("standard output cannot be captured");
    }
    action();
    std::fflush(stdout);
    dup2(before, STDOUT_FILENO);
    close(before);
    file.seek(0);
    return file.readAll();
}
