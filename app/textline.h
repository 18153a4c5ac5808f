// SPDX-License-Identifier: MIT
// A text of the service as a line.
#pragma once

#include <QString>

#include <iostream>

/// Prints the text in Latin-1 on a line of its own and flushes. The length counts: a byte of
/// value 0 is a text of one character.
inline void printLine(const QString &text)
{
    const QByteArray bytes = text.toLatin1();
    std::cout.write(bytes.constData(), bytes.size()) << std::endl;
}
