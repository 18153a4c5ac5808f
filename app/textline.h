// SPDX-License-Identifier: MIT
// A text of the service as a line.
#pragma once

#include <QString>

#include <iostream>

/// Prints the text in Latin-1 on its own line and flushes. A byte of value 0 does not end the
/// text.
inline void printLine(const QString &text)
{
    const QByteArray bytes = text.toLatin1();
    std::cout.write(bytes.constData(), bytes.size()) << std::endl;
}
