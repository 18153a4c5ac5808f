// SPDX-License-Identifier: MIT
// The interface file that people and tools read says exactly what the proxy can do, and no more.
#include "bus/proxies.h"

#include <QDBusMetaType>
#include <QFile>
#include <QMetaMethod>
#include <QTest>
#include <QXmlStreamReader>

namespace
{

struct Interface {
    QString name;
    QStringList
        members; ///< "signal Name(type name, ...)" and "method Name(type name, ...) -> type"
};

Interface fromFile()
{
    QFile file(QStringLiteral(MOVRA_INTERFACE_FILE));
    if (!file.open(QIODevice::ReadOnly)) {
        return {};
    }
    QXmlStreamReader xml(&file);
    Interface interface;
    QString head;
    QStringList arguments;
    QString result;
    while (!xml.atEnd()) {
        xml.readNext();
        const auto attribute = [&xml](const char *name) {
            return xml.attributes().value(QLatin1String(name)).toString();
        };
        const bool isMember =
            xml.name() == QLatin1String("method") || xml.name() == QLatin1String("signal");
        if (xml.isStartElement() && xml.name() == QLatin1String("interface")) {
            interface.name = attribute("name");
        } else if (xml.isStartElement() && isMember) {
            head = xml.name().toString() + QLatin1Char(' ') + attribute("name");
            arguments.clear();
            result.clear();
        } else if (xml.isStartElement() && xml.name() == QLatin1String("arg")) {
            if (attribute("direction") == QLatin1String("out")) {
                result = QStringLiteral(" -> ") + attribute("type");
            } else {
                arguments.append(attribute("type") + QLatin1Char(' ') + attribute("name"));
            }
        } else if (xml.isEndElement() && isMember) {
            interface.members.append(head + QLatin1Char('(') + arguments.join(QStringLiteral(", "))
                                     + QLatin1Char(')') + result);
        }
    }
    if (xml.hasError()) {
        interface.members.append(xml.errorString());
    }
    return interface;
}

QString signatureOf(const QByteArray &typeName)
{
    return QString::fromLatin1(
        QDBusMetaType::typeToSignature(QMetaType::type(typeName.constData())));
}

QStringList fromProxy()
{
    QStringList members;
    const QMetaObject &meta = KorAppInterface::staticMetaObject;
    for (int i = meta.methodOffset(); i < meta.methodCount(); ++i) {
        const QMetaMethod method = meta.method(i);
        QStringList arguments;
        for (int a = 0; a < method.parameterCount(); ++a) {
            arguments.append(signatureOf(method.parameterTypes().at(a)) + QLatin1Char(' ')
                             + QString::fromLatin1(method.parameterNames().at(a)));
        }
        QString result;
        QByteArray reply = method.typeName(); // QDBusPendingReply<...>
        reply = reply.mid(reply.indexOf('<') + 1);
        reply.chop(1);
        if (method.methodType() != QMetaMethod::Signal && !reply.trimmed().isEmpty()) {
            result = QStringLiteral(" -> ") + signatureOf(reply.trimmed());
        }
        members.append(
            QString::fromLatin1(method.methodType() == QMetaMethod::Signal ? "signal " : "method ")
            + QString::fromLatin1(method.name()) + QLatin1Char('(')
            + arguments.join(QStringLiteral(", ")) + QLatin1Char(')') + result);
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
    QCOMPARE(fromFile().name, QStringLiteral("varn.pim"));
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
