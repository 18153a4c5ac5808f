// SPDX-License-Identifier: MIT
// The interface file describes exactly the members of the proxy.
#include "bus/proxies.h"

#include <QDBusMetaType>
#include <QFile>
#include <QMetaMethod>
#include <QTest>
#include <QXmlStreamReader>

namespace
{

struct Interface {
    QStringList names;
    /// "signal Name(type name, ...)" and "method Name(type name, ...) -> type", where a type is its
    /// signature, followed by its name in C++ if Qt's tools need it.
    QStringList members;
};

/// Types that Qt's tools know by their signature.
bool isKnownToTools(const QString &signature)
{
    return signature.size() == 1 || signature == QLatin1String("as");
}

Interface fromFile()
{
    QFile file(QStringLiteral(MOVRA_INTERFACE_FILE));
    if (!file.open(QIODevice::ReadOnly)) {
        return {};
    }
    QXmlStreamReader xml(&file);
    Interface interface;
    QString head;
    QStringList in;
    QStringList out;
    QStringList *last = nullptr; ///< the list with the argument that was read last
    while (!xml.atEnd()) {
        xml.readNext();
        const auto attribute = [&xml](const char *name) {
            return xml.attributes().value(QLatin1String(name)).toString();
        };
        const bool isMember =
            xml.name() == QLatin1String("method") || xml.name() == QLatin1String("signal");
        if (xml.isStartElement() && xml.name() == QLatin1String("interface")) {
            interface.names.append(attribute("name"));
        } else if (xml.isStartElement() && isMember) {
            head = xml.name().toString() + QLatin1Char(' ') + attribute("name");
            in.clear();
            out.clear();
        } else if (xml.isStartElement() && xml.name() == QLatin1String("arg")) {
            last = attribute("direction") == QLatin1String("out") ? &out : &in;
            last->append((attribute("type") + QLatin1Char(' ') + attribute("name")).trimmed());
        } else if (xml.isStartElement() && xml.name() == QLatin1String("annotation")
                   && last != nullptr) {
            // The arguments of a signal have the direction "out".
            const bool goesOut = last == &out || head.startsWith(QLatin1String("signal"));
            const QString name = QStringLiteral("org.qtproject.QtDBus.QtTypeName.%1%2")
                                     .arg(goesOut ? QStringLiteral("Out") : QStringLiteral("In"))
                                     .arg(last->size() - 1);
            last->last() += QLatin1Char(' ')
                + (attribute("name") == name ? attribute("value") : attribute("name"));
        } else if (xml.isEndElement() && isMember) {
            interface.members.append(
                head + QLatin1Char('(') + in.join(QStringLiteral(", ")) + QLatin1Char(')')
                + (out.isEmpty() ? QString()
                                 : QStringLiteral(" -> ") + out.join(QStringLiteral(", "))));
        }
    }
    if (xml.hasError()) {
        interface.members.append(xml.errorString());
    }
    return interface;
}

/// An argument or a result of the proxy, as the file writes it.
QString describe(const QByteArray &typeName, const QByteArray &name = {})
{
    const QString signature =
        QString::fromLatin1(QDBusMetaType::typeToSignature(QMetaType::type(typeName.constData())));
    QString text = signature;
    if (!name.isEmpty()) {
        text += QLatin1Char(' ') + QString::fromLatin1(name);
    }
    if (!isKnownToTools(signature)) {
        text += QLatin1Char(' ') + QString::fromLatin1(typeName);
    }
    return text;
}

QStringList fromProxy()
{
    QStringList members;
    const QMetaObject &meta = KorAppInterface::staticMetaObject;
    for (int i = meta.methodOffset(); i < meta.methodCount(); ++i) {
        const QMetaMethod method = meta.method(i);
        QStringList arguments;
        for (int a = 0; a < method.parameterCount(); ++a) {
            arguments.append(
                describe(method.parameterTypes().at(a), method.parameterNames().at(a)));
        }
        const bool isSignal = method.methodType() == QMetaMethod::Signal;
        QByteArray reply = method.typeName(); // QDBusPendingReply<...>
        reply = reply.mid(reply.indexOf('<') + 1);
        reply.chop(1);
        reply = reply.trimmed();
        members.append(
            (isSignal ? QStringLiteral("signal ") : QStringLiteral("method "))
            + QString::fromLatin1(method.name()) + QLatin1Char('(')
            + arguments.join(QStringLiteral(", ")) + QLatin1Char(')')
            + (isSignal || reply.isEmpty() ? QString() : QStringLiteral(" -> ") + describe(reply)));
    }
    return members;
}

QStringList sorted(QStringList list)
{
    list.sort();
    return list;
}

} // namespace

class tst_Contract : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void initTestCase() { registerBusTypes(); }
    void theInterfaceHasItsName();
    void fileAndProxyHaveTheSameMembers();
};

void tst_Contract::theInterfaceHasItsName()
{
    QCOMPARE(fromFile().names, QStringList { QStringLiteral("varn.pim") });
    QCOMPARE(QLatin1String(KorAppInterface::staticInterfaceName()), QLatin1String("varn.pim"));
}

void tst_Contract::fileAndProxyHaveTheSameMembers()
{
    const QStringList members = fromFile().members;
    QCOMPARE(members.size(), 41);
    QCOMPARE(sorted(members), sorted(fromProxy()));
}

QTEST_GUILESS_MAIN(tst_Contract)
#include "tst_contract.moc"
