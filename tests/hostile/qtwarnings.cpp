// SPDX-License-Identifier: MIT
#include "tests/hostile/qtwarnings.h"

#include <QList>
#include <QtGlobal>

void showQtWarnings()
{
    qInstallMessageHandler(nullptr);
}

QByteArray withoutAllowedWarnings(const QByteArray &errors)
{
    QByteArray others;
    for (const QByteArray &line : errors.split('\n')) {
        const bool ofSignature = line.startsWith("QDBusSignature: invalid signature");
        const bool ofOwner = line.startsWith("QDBusConnection: name '")
            && line.contains("' had owner '") && line.contains("' but we thought it was '");
        if (!line.isEmpty() && !ofSignature && !ofOwner) {
            others += line + '\n';
        }
    }
    return others;
}
