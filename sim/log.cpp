// SPDX-License-Identifier: MIT
#include "sim/log.h"

#include "bus/types.h"
#include "sim/value.h"

#include <QCoreApplication>
#include <QDateTime>
#include <QDBusArgument>
#include <QDBusConnection>
#include <QDBusObjectPath>
#include <QDBusSignature>
#include <QDBusVariant>
#include <QRegularExpression>

#include <algorithm>
#include <iterator>
#include <nlohmann/json.hpp>
#include <utility>

#include <unistd.h>

// What messages hold as JSON, as a catalogue would have it. The JSON library finds these functions
// only if their namespace is that of Qt's types.

static void to_json(Json &json, const QVariant &value);

static void to_json(Json &json, const IdValueStruct &record)
{
    json = { record.id.toStdString(), record.value };
}

static void to_json(Json &json, const IdValueStatusStruct &record)
{
    json = { record.id.toStdString(), record.value, record.status };
}

/// Arrays, records and dictionaries become arrays; an entry of a dictionary is one of two elements.
static void to_json(Json &json, const QDBusArgument &argument)
{
    const QDBusArgument::ElementType type = argument.currentType();
    if (type == QDBusArgument::BasicType || type == QDBusArgument::VariantType) {
        json = argument.asVariant();
        return;
    }
    json = Json::array();
    // Qt D-Bus enters every kind of container in the same way.
    argument.beginStructure();
    while (!argument.atEnd()) {
        json.push_back(argument);
    }
    argument.endStructure();
}

/// Converts the variant if it holds a value of one of the types.
template <typename... Types> static bool convertAs(Json &json, const QVariant &value)
{
    return ((value.userType() == qMetaTypeId<Types>() && (json = value.value<Types>(), true))
            || ...);
}

static void to_json(Json &json, const QVariant &value)
{
    if (convertAs<QDBusArgument, IdValueStatusStruct, QList<IdValueStruct>,
                  QList<IdValueStatusStruct>, QList<int>>(json, value)) {
        return;
    }
    const int type = value.userType();
    if (type == qMetaTypeId<QDBusVariant>()) {
        json = value.value<QDBusVariant>().variant();
    } else if (const ValueType *known = typeWithSignature(signatureOf(value))) {
        json = known->toJson(value);
    } else if (type == QMetaType::QByteArray) {
        const QByteArray bytes = value.toByteArray();
        json = std::vector<unsigned char>(bytes.begin(), bytes.end());
    } else if (type == qMetaTypeId<QDBusObjectPath>()) {
        json = value.value<QDBusObjectPath>().path().toStdString();
    } else if (type == qMetaTypeId<QDBusSignature>()) {
        json = value.value<QDBusSignature>().signature().toStdString();
    } else {
        json = value.toString().toStdString();
    }
}

namespace
{

constexpr const char *levelWords[] = { "ERROR",  "INFO",   "DEBUG", "DEBUG1",
                                       "DEBUG2", "DEBUG3", "DEBUG4" };

Refusal malformed(const QString &value, const QString &wanted)
{
    return badValue("%1 is not of the form %2."_q.arg(quoted(value), quoted(wanted)));
}

/// No log has this name, which is no identifier that a log could note.
Refusal unknownLog(const QString &name)
{
    return { "UnknownId"_q, unknownId(name).sentence };
}

/// The fields of an identifier, which colons surround and separate.
QStringList fieldsOf(const QString &id)
{
    // A client may send an id of many millions of fields.
    constexpr int longestId = 1000;
    return id.left(longestId).split(QLatin1Char(':'), Qt::SkipEmptyParts);
}

} // namespace

Announcer::Announcer(QString objectPath, const QString &recordFile)
    : path(std::move(objectPath))
    , file(recordFile)
{
    const QIODevice::OpenMode mode = QIODevice::WriteOnly | QIODevice::Unbuffered;
    if (!recordFile.isEmpty()
        && !(recordFile == "-"_q ? file.open(STDOUT_FILENO, mode) : file.open(mode))) {
        problem = file.errorString();
        checkRecord();
    }
}

void Announcer::send(const Signal &signal)
{
    QDBusMessage message = QDBusMessage::createSignal(path, "varn.pim"_q, signal.member);
    message.setArguments(signal.arguments);
    record(message);
    QDBusConnection::sessionBus().send(message);
}

void Announcer::reply(const QDBusMessage &call, const QDBusMessage &answer)
{
    record(call, &answer);
    if (call.isReplyRequired()) {
        QDBusConnection::sessionBus().send(answer);
    }
}

void Announcer::record(const QDBusMessage &message, const QDBusMessage *answer)
{
    if (!file.isOpen()) {
        return;
    }
    const QVariantList arguments = message.arguments();
    QString signature;
    for (const QVariant &each : arguments) {
        signature += signatureOf(each);
    }
    nlohmann::ordered_json line;
    line["time"] = QDateTime::currentDateTimeUtc().toString(Qt::ISODateWithMs).toStdString();
    line[message.type() == QDBusMessage::SignalMessage ? "signal" : "call"] =
        message.member().toStdString();
    if (!message.service().isEmpty()) {
        line["sender"] = message.service().toStdString();
    }
    line["signature"] = signature.toStdString();
    line["arguments"] = Json(arguments);
    if (answer != nullptr && answer->type() == QDBusMessage::ErrorMessage) {
        line["refusal"] = { { "name", answer->errorName().toStdString() },
                            { "sentence", answer->errorMessage().toStdString() } };
    } else if (answer != nullptr) {
        line["answer"] = Json(answer->arguments());
    }
    const QByteArray bytes = QByteArray::fromStdString(line.dump()) + '\n';
    if (file.write(bytes) != bytes.size()) {
        problem = file.errorString();
        file.close();
        QCoreApplication::quit();
    }
}

void Announcer::checkRecord() const
{
    if (!problem.isEmpty()) {
        throw Refusal {
            "Record"_q, "the log %1 cannot be written: %2"_q.arg(quoted(file.fileName()), problem)
        };
    }
}

Log::Log(const QStringList &logNames, const QStringList &debugLogNames, StateFiles &stateFiles,
         Announcer &logAnnouncer)
    : files(stateFiles)
    , announcer(logAnnouncer)
{
    for (const QString &name : logNames) {
        logs.insert(name, false);
    }
    for (const QString &name : debugLogNames) {
        debugLogs.insert(name, {});
    }
}

void Log::record(LogLevel level, const QString &id, const QString &text)
{
    const QString entry = shown(id) + QLatin1Char(' ') + text;
    const QStringList fields = fieldsOf(id);
    if (file && level <= reportingLevel) {
        const QString name = "LOG_"_q + fields.value(1).toUpper();
        const uint number = fields.isEmpty() ? 0 : fields.last().toUInt();
        const auto found = debugLogs.constFind(name);
        if (found != debugLogs.constEnd() && !found->test(number < found->size() ? number : 0)) {
            const QLatin1String word(levelWords[static_cast<std::size_t>(level)]);
            write("%1 %2 %3\n"_q.arg(word, name, entry));
        }
    }
    const QString log = fields.value(0);
    if (logs.value(log)) {
        announcer.info("log %1: %2"_q.arg(log, entry));
    }
}

void Log::write(const QString &line)
{
    const QByteArray bytes = line.toUtf8();
    QString problem;
    if (file->size() + bytes.size() > mostBytesOfFile) {
        problem = "it would be larger than 16 MiB"_q;
    } else if (file->write(bytes) != bytes.size()) {
        problem = file->errorString();
    }
    if (!problem.isEmpty()) {
        announcer.error("the debug log cannot be written and is closed: %1"_q.arg(problem));
        file.reset();
    }
}

void Log::check(const QString &name) const
{
    if (!logs.contains(name)) {
        throw unknownLog(name);
    }
}

void Log::announce(const QString &name, bool isOn)
{
    check(name);
    logs[name] = isOn;
}

void Log::command(const QString &word, const QString &value)
{
    if (word == "SET"_q || word == "SET_ALL"_q) {
        setInstances(value, word == "SET"_q);
    } else if (word == "SET_REPORTING_LEVEL"_q) {
        setReportingLevel(value);
    } else if (word == "SAVE_TO"_q) {
        saveTo(value);
    } else if (word == "SAVE_STOP"_q) {
        if (!value.isEmpty()) {
            throw badValue("SAVE_STOP takes no value, but %1 came with it."_q.arg(quoted(value)));
        }
        file.reset();
    } else {
        throw Refusal { "UnknownCommand"_q, "There is no command %1."_q.arg(quoted(word)) };
    }
}

void Log::setInstances(const QString &value, bool isOne)
{
    // A client may send many millions of commas.
    constexpr int longestValue = 2000;
    static const QRegularExpression comma("\\s*,\\s*"_q);
    const QStringList parts = value.left(longestValue).trimmed().split(comma);
    bool isNumber = !isOne;
    const uint instance = isOne ? parts.value(1).toUInt(&isNumber) : 0;
    const bool isOff = parts.last() == "DISABLED"_q;
    if (value.size() > longestValue || parts.size() != (isOne ? 3 : 2) || !isNumber
        || instance >= Instances().size() || (!isOff && parts.last() != "ENABLED"_q)) {
        throw malformed(value,
                        isOne ? "<log>, <instance 0 to 255>, ENABLED|DISABLED"_q
                              : "<log>, ENABLED|DISABLED"_q);
    }
    const auto found = debugLogs.find(parts.first());
    if (found == debugLogs.end()) {
        throw unknownLog(parts.first());
    }
    if (isOne) {
        found->set(instance, isOff);
    } else {
        *found = isOff ? Instances().set() : Instances();
    }
}

void Log::setReportingLevel(const QString &value)
{
    const auto *word = std::find_if(std::begin(levelWords), std::end(levelWords),
                                    [&](const char *each) { return value == QLatin1String(each); });
    if (word == std::end(levelWords)) {
        throw malformed(value, "ERROR|INFO|DEBUG|DEBUG1|DEBUG2|DEBUG3|DEBUG4"_q);
    }
    reportingLevel = static_cast<LogLevel>(word - std::begin(levelWords));
}

void Log::saveTo(const QString &value)
{
    // A client may name a path, but the file is always in the state directory.
    fileName = value.mid(value.lastIndexOf(QLatin1Char('/')) + 1);
    file = files.create(fileName);
    announcer.info("debug log goes to %1"_q.arg(files.pathOf(fileName)));
}
