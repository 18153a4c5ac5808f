// SPDX-License-Identifier: MIT
// The smallest Qt program that reads a string: connect, one call, print.
#include <QCoreApplication>
#include <QDBusConnection>
#include <QDBusMessage>
#include <QDBusVariant>

#include <cstdio>

int main(int argc, char **argv)
{
    const QCoreApplication application(argc, argv);
    QDBusMessage call =
        QDBusMessage::createMethodCall(QStringLiteral("com.varn.bench"), QStringLiteral("/"),
                                       QStringLiteral("varn.pim"), QStringLiteral("GetValue"));
    call << QStringLiteral(":bench:string:");
    const QDBusMessage reply = QDBusConnection::sessionBus().call(call);
    const QString text = reply.arguments().value(0).value<QDBusVariant>().variant().toString();
    std::puts(text.toLatin1().constData());
    return text.isEmpty() ? 1 : 0;
}
