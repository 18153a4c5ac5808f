// SPDX-License-Identifier: MIT
// Prints an array that arrived packed, one element on each line.
#include "app/arraykind.h"
#include "app/elementlines.h"
#include "app/movra.h"
#include "bus/types.h"

#include <QDBusArgument>

#include <cstdio>
#include <iostream>

namespace
{

template <typename T> void printElements(const QDBusArgument &value)
{
    std::vector<T> elements;
    value >> elements;
    writeElementLines(std::cout, elements);
}

/// The type to read elements as: the type on the wire. Integers of the width of the id's kind have
/// the kind's signedness.
char elementToRead(const QString &id, char onWire)
{
    const ArrayKind *const kind = findArrayKind(id);
    const auto bothIn = [=](const QByteArray &codes) {
        return codes.contains(onWire) && codes.contains(kind->element);
    };
    return kind != nullptr && (bothIn("iu") || bothIn("xt")) ? kind->element : onWire;
}

void printArray(const QString &id, const QDBusArgument &value)
{
    // A service may send anything. Reading an element as another type prints memory or ends the
    // process, so only arrays of numbers and booleans are read.
    const char elementOnWire = value.currentSignature().at(1).toLatin1();
    switch (elementToRead(id, elementOnWire)) {
    case 'b':
        return printElements<bool>(value);
    case 'n':
        return printElements<short>(value);
    case 'q':
        return printElements<ushort>(value);
    case 'i':
        return printElements<int32_t>(value);
    case 'u':
        return printElements<uint32_t>(value);
    case 'x':
        return printElements<qint64>(value);
    case 't':
        return printElements<quint64>(value);
    case 'd':
        return printElements<double>(value);
    default:
        return;
    }
}

} // namespace

void Movra::printArgumentValue(const QString &id, const QDBusArgument &value)
{
    // The blanks differ from line to line. Scripts rely on them.
    switch (value.currentType()) {
    case QDBusArgument::ArrayType:
        printArray(id, value);
        break;
    case QDBusArgument::BasicType:
        std::puts("Error: value QDBusArgument BasicType");
        break;
    case QDBusArgument::VariantType:
        std::puts("Error:  value QDBusArgument  VariantType");
        break;
    case QDBusArgument::StructureType:
        std::puts("Error:  value QDBusArgument StructureType");
        break;
    case QDBusArgument::MapType:
        std::puts("Error:  value QDBusArgument MapType");
        break;
    case QDBusArgument::MapEntryType:
        std::puts("Error:  value QDBusArgument MapEntryType");
        break;
    default:
        std::puts("Error:  value QDBusArgument UnknownType");
        break;
    }
}
