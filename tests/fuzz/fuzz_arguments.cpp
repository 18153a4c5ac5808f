// SPDX-License-Identifier: MIT
// libFuzzer's side of it: makes up the words, and takes a problem for a crash.
#include "tests/fuzz/arguments.h"

#include <cstdint>
#include <cstdlib>
#include <iostream>

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t *data, std::size_t size)
{
    const std::string problem = problemWith(std::string(data, data + size));
    if (!problem.empty()) {
        std::cerr << problem;
        std::abort();
    }
    return 0;
}
