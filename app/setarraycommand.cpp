// SPDX-License-Identifier: MIT
// SETARRAY: writes a whole array to one item. The kind word in the id decides the element type.
#include "app/arraykind.h"
#include "app/commandline.h"
#include "app/movra.h"

#include <iostream>

#include <unistd.h>

namespace
{

constexpr uint maxLength = 512; // elements

/// The texts at `length` positions from `entry` on; null entries are skipped.
///
/// The length is trusted: with fewer values, reading continues after the vector's end in the
/// environment, which follows it in memory. It stops at the end of the environment, because no text
/// follows. QCoreApplication may have removed words, which leaves one more null entry directly
/// before the environment.
QStringList textsAt(char **entry, uint length)
{
    QStringList texts;
    bool vectorEnded = false;
    for (uint i = 0; i < length; ++i) {
        if (entry[i] != nullptr) {
            texts.append(QString::fromLatin1(entry[i]));
        } else if (vectorEnded && &entry[i + 1] != environ) {
            break;
        } else {
            vectorEnded = true;
        }
    }
    return texts;
}

} // namespace

int Movra::setArrayCommand(char **argv)
{
    if (argv[FirstArgument] == nullptr || argv[SecondArgument] == nullptr
        || argv[ThirdArgument] == nullptr) {
        return ArgumentMissing;
    }
    // Text that is no number gives 0. The length is checked before the kind.
    const uint length = QString::fromLatin1(argv[SecondArgument]).toUInt();
    if (length == 0 || length > maxLength) {
        std::cout << "Unsupported  array size " << length << std::endl;
        return NotSupported;
    }
    // An id without a kind word is an error, not an array of strings.
    const ArrayKind *const kind = findArrayKind(QString::fromLatin1(argv[FirstArgument]));
    if (kind == nullptr) {
        return NotSupported;
    }
    sendValue(argv[FirstArgument], kind->fromTexts(textsAt(&argv[ThirdArgument], length)));
    return Success;
}
