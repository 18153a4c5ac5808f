// SPDX-License-Identifier: MIT
#include "app/commandline.h"

std::string wordAt(char **argv, Position position)
{
    for (int i = 0; i <= position; ++i) {
        if (argv[i] == nullptr) {
            return {};
        }
    }
    return argv[position];
}
