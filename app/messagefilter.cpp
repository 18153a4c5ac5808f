// SPDX-License-Identifier: MIT
#include "app/messagefilter.h"

#include <QString>
#include <QtGlobal>

namespace
{

QtMessageHandler qtHandler = nullptr;

// Runs on Qt D-Bus's thread as well: the handler behind it is set once, before there is any.
void filter(QtMsgType type, const QMessageLogContext &context, const QString &message)
{
    if (!message.startsWith(QLatin1String("QDBusSignature: invalid signature"))) {
        qtHandler(type, context, message);
    }
}

} // namespace

void installMessageFilter()
{
    qtHandler = qInstallMessageHandler(filter);
}
