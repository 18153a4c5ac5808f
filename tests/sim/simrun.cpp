// SPDX-License-Identifier: MIT
#include "tests/sim/simrun.h"

#include "tests/support/openbus.h"
#include "tests/support/patience.h"

#include <QDBusArgument>
#include <QDBusConnection>
#include <QDBusVariant>
#include <QFile>
#include <QMetaType>
#include <QTest>

#include <csignal>
#include <vector>

namespace
{

QString describe(const QVariant &value);

QString describeArgument(const QDBusArgument &argument)
{
    QStringList parts;
    switch (argument.currentType()) {
    case QDBusArgument::ArrayType:
        argument.beginArray();
        while (!argument.atEnd()) {
            parts.append(describeArgument(argument));
        }
        argument.endArray();
        return text("[%1]").arg(parts.join(QLatin1String(", ")));
    case QDBusArgument::StructureType:
        argument.beginStructure();
        while (!argument.atEnd()) {
            parts.append(describeArgument(argument));
        }
        argument.endStructure();
        return text("(%1)").arg(parts.join(QLatin1String(", ")));
    default:
        return describe(argument.asVariant());
    }
}

QString describe(const QVariant &value)
{
    if (value.userType() == qMetaTypeId<QDBusArgument>()) {
        return describeArgument(value.value<QDBusArgument>());
    }
    if (value.userType() == qMetaTypeId<QDBusVariant>()) {
        return text("<%1>").arg(describe(value.value<QDBusVariant>().variant()));
    }
    if (value.userType() == QMetaType::QStringList) {
        QStringList parts;
        for (const QString &element : value.toStringList()) {
            parts.append(describe(element));
        }
        return text("[%1]").arg(parts.join(QLatin1String(", ")));
    }
    return value.userType() == QMetaType::QString ? text("'%1'").arg(value.toString())
                                                  : value.toString();
}

template <typename T> QString joined(const std::vector<T> &data)
{
    QStringList parts;
    for (const T number : data) {
        parts.append(QString::number(number));
    }
    return parts.join(QLatin1Char(' '));
}

} // namespace

void resetSignals()
{
    for (const int number : { SIGINT, SIGTERM, SIGHUP }) {
        std::signal(number, SIG_DFL);
    }
}

bool startSimulator(QProcess &process, const QStringList &arguments)
{
    resetSignals();
    process.setProcessChannelMode(QProcess::SeparateChannels);
    process.start(text(MOVRA_SIM_PROGRAM), arguments);
    while (!process.canReadLine()) {
        if (!process.waitForReadyRead(patienceMs)) {
            return false;
        }
    }
    return process.readLine() == "ready\n";
}

bool endSimulator(QProcess &process, int signalNumber)
{
    kill(static_cast<pid_t>(process.processId()), signalNumber);
    return process.waitForFinished(patienceMs) && process.exitStatus() == QProcess::NormalExit
        && process.exitCode() == 0;
}

QString answerTo(const QDBusPendingCall &call)
{
    QDBusPendingCall finished = call;
    finished.waitForFinished();
    const QDBusMessage reply = finished.reply();
    if (reply.type() == QDBusMessage::ErrorMessage) {
        return reply.errorName() + QLatin1String(": ") + reply.errorMessage();
    }
    QStringList parts;
    const QVariantList arguments = reply.arguments();
    for (const QVariant &argument : arguments) {
        parts.append(describe(argument));
    }
    return parts.isEmpty() ? QString()
                           : reply.signature() + QLatin1Char(' ') + parts.join(QLatin1String(", "));
}

void SimTest::init()
{
    registerBusTypes();
    state = std::make_unique<QTemporaryDir>();
    QVERIFY(start());
    service =
        std::make_unique<KorAppInterface>(text("com.varn.tul"), text("/"), openBus(), nullptr);
    QVERIFY(service->isValid());
    service->setTimeout(patienceMs);
    heard.clear();
    const auto listen = [this](void (KorAppInterface::*signal)(const QString &),
                               const char *member) {
        connect(service.get(), signal, this, [this, member](const QString &message) {
            heard.append(text(member) + QLatin1Char(' ') + message);
        });
    };
    listen(&KorAppInterface::SigAlarm, "SigAlarm");
    listen(&KorAppInterface::SigDBusServerClosing, "SigDBusServerClosing");
    listen(&KorAppInterface::SigError, "SigError");
    listen(&KorAppInterface::SigInfo, "SigInfo");
    listen(&KorAppInterface::SigTestComplete, "SigTestComplete");
    listen(&KorAppInterface::SigUpdate, "SigUpdate");
    connect(
        service.get(),
        qOverload<const QString &, std::vector<double>>(&KorAppInterface::SigTestCompleteWithData),
        this, [this](const QString &message, const std::vector<double> &data) {
            heard.append(text("SigTestCompleteWithData %1 ad %2").arg(message, joined(data)));
        });
    connect(service.get(),
            qOverload<const QString &, std::vector<uint32_t>>(
                &KorAppInterface::SigTestCompleteWithData),
            this, [this](const QString &message, const std::vector<uint32_t> &data) {
                heard.append(text("SigTestCompleteWithData %1 au %2").arg(message, joined(data)));
            });
}

void SimTest::cleanup()
{
    service.reset();
    QVERIFY(stop());
    state.reset();
}

bool SimTest::start(const QStringList &options)
{
    simulator = std::make_unique<QProcess>();
    simulator->setProcessChannelMode(QProcess::SeparateChannels);
    return startSimulator(*simulator, QStringList { text("--state"), state->path() } + options);
}

bool SimTest::stop()
{
    // The messages of the simulator must be read before it is destroyed.
    const bool endedWell = !simulator || endSimulator(*simulator, SIGTERM);
    const QByteArray complaints = simulator ? simulator->readAllStandardError() : QByteArray();
    simulator.reset();
    if (!complaints.isEmpty()) {
        qWarning("%s", complaints.constData());
    }
    return endedWell && complaints.isEmpty();
}

bool SimTest::hear(const QString &line)
{
    return QTest::qWaitFor([this, &line] { return heard.contains(line); }, patienceMs);
}

QStringList SimTest::takeHeard()
{
    // Signals arrive in their order, so that this one is the last.
    service->SetValue(text("MARKER"), QDBusVariant(QString()));
    const QString last = QStringLiteral("SigError There is no \"MARKER\" here.");
    if (!hear(last)) {
        return { text("the marker did not arrive") };
    }
    QStringList lines = heard.mid(0, heard.indexOf(last));
    heard.clear();
    return lines;
}

QString SimTest::pathOf(const QString &name) const
{
    return state->filePath(name);
}

QByteArray SimTest::contentsOf(const QString &name) const
{
    QFile file(pathOf(name));
    return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray("(cannot be opened)");
}

bool SimTest::writeFile(const QString &name, const QByteArray &bytes) const
{
    QFile file(pathOf(name));
    return file.open(QIODevice::WriteOnly) && file.write(bytes) == bytes.size();
}
