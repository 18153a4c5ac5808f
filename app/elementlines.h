// SPDX-License-Identifier: MIT
// Elements of an array as lines of text.
#pragma once

#include <array>
#include <charconv>
#include <ostream>
#include <type_traits>
#include <vector>

/// Writes each element on its own line and flushes after each. Writes nothing for an empty array.
/// Numbers look as the stream itself would write them: doubles have six significant digits.
template <typename T> void writeElementLines(std::ostream &out, const std::vector<T> &elements)
{
    std::array<char, 32> line {};
    char *const last = line.data() + line.size() - 1;
    for (const auto element : elements) {
        // The stream's own formatting would take more time than everything else here.
        char *end = nullptr;
        if constexpr (std::is_floating_point_v<T>) {
            end = std::to_chars(line.data(), last, element, std::chars_format::general, 6).ptr;
        } else {
            end = std::to_chars(line.data(), last, +element).ptr; // a boolean is 1 or 0
        }
        *end++ = '\n';
        out.write(line.data(), end - line.data()).flush();
    }
}
