// SPDX-License-Identifier: MIT
// A bare loop that formats doubles and writes each immediately as a line: the cost of printing an
// array without a bus.
//   bench_lines COUNT
#include <array>
#include <cstdio>
#include <cstdlib>

#include <unistd.h>

int main(int argc, char **argv)
{
    const int count = argc > 1 ? std::atoi(argv[1]) : 0;
    std::array<char, 32> line {};
    for (int i = 0; i < count; ++i) {
        const int length = std::snprintf(line.data(), line.size(), "%g\n", i + 0.5);
        if (write(STDOUT_FILENO, line.data(), static_cast<std::size_t>(length)) != length) {
            return 1;
        }
    }
    return 0;
}
