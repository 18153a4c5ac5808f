// SPDX-License-Identifier: MIT
#include "app/messagefilter.h"

#include <QString>
#include <QtGlobal>

namespace
{

/// How the texts begin that a service can bring about.
constexpr const char *droppedTexts[] = {
    "QDBusSignature: invalid signature",
    "QDBusConnection: name '", // "... had owner '...' but we thought it was '...'"
};

QtMessageHandler qtHandler = nullptr;

// Runs on Qt D-Bus's thread as well: the handler behind it is set once, before there is any.
void filter(QtMsgType type, const QMessageLogContext &context, const QString &message)
{
    for (const char *text : droppedTexts) {
        if (message.startsWith(QLatin1String(text))) {
            return;
        }
    }
    qtHandler(type, context, message);
}

} // namespace

void installMessageFilter()
{
    qtHandler = qInstallMessageHandler(filter);
}
