// SPDX-License-Identifier: MIT
// Elements of an array as lines of text.
#pragma once

#include <ostream>
#include <vector>

/// Writes each element on a line of its own and flushes behind it; no elements write nothing.
/// Doubles have six significant digits, the stream's own format.
template <typename T> void writeElementLines(std::ostream &out, const std::vector<T> &elements)
{
    for (const auto &element : elements) {
        out << element << std::endl;
    }
}
