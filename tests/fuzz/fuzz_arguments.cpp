// SPDX-License-Identifier: MIT
// The target for libFuzzer, which makes the words. A difference ends the process like a crash.
#include "tests/fuzz/arguments.h"

#include <cstdint>
#include <cstdlib>
#include <iostream>

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t *data, std::size_t size)
{
    const QByteArray problem =
        problemWith({ reinterpret_cast<const char *>(data), static_cast<int>(size) });
    if (!problem.isEmpty()) {
        std::cerr << problem.constData();
        std::abort();
    }
    return 0;
}
