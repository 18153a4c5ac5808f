// SPDX-License-Identifier: MIT
// Array kinds: a kind word in an item's id selects the element type of its array.
#pragma once

#include <QStringList>
#include <QVariant>

#include <array>

/// One kind. SETARRAY builds an array of this kind. The printer reads integers of the kind's width
/// with the kind's signedness.
struct ArrayKind {
    const char *word; ///< searched anywhere in the id, case-sensitively
    char element; ///< D-Bus type code of the elements
    /// Makes the kind's array: a std::vector of the element type, or a QStringList. Text that does
    /// not convert becomes 0, and a double that is too great infinity.
    QVariant (*fromTexts)(const QStringList &texts);
};

/// In the order of the search: each unsigned word comes before the signed word that it contains.
extern const std::array<ArrayKind, 7> arrayKinds;

/// The first kind whose word the id contains, or null.
const ArrayKind *findArrayKind(const QString &id);
