// SPDX-License-Identifier: MIT
#include "sim/log.h"

#include "bus/types.h"
#include "sim/value.h"

#include <QCoreApplication>
#include <QDateTime>
#include <QDBusConnection>
#include <QDBusObjectPath>
#include <QDBusSignature>
#include <QDBusVariant>
#include <QRegularExpression>

#include <nlohmann/json.hpp>

#include <unistd.h>

namespace
{

const QStringList levelWords { "ERROR"_q,  "INFO"_q,   "DEBUG"_q, "DEBUG1"_q,
                               "DEBUG2"_q, "DEBUG3"_q, "DEBUG4"_q };

Json jsonOf(const QVariant &value);

/// Arrays, records and dictionaries become arrays; an entry of a dictionary is one of two elements.
Json jsonOf(const QDBusArgument &argument)
{
    const QDBusArgument::ElementType type = argument.currentType();
    if (type == QDBusArgument::BasicType || type == QDBusArgument::VariantType) {
        return jsonOf(argument.asVariant());
    }
    Json list = Json::array();
    // Qt D-Bus enters every kind of container in the same way.
    argument.beginStructure();
    while (!argument.atEnd()) {
        list.push_back(jsonOf(argument));
    }
    argument.endStructure();
    return list;
}

/// What a message holds as JSON, as a catalogue would have it.
Json jsonOf(const QVariant &value)
{
    const int type = value.userType();
    if (type == qMetaTypeId<QDBusArgument>()) {
        return jsonOf(value.value<QDBusArgument>());
    }
    if (type == qMetaTypeId<QDBusVariant>()) {
        return jsonOf(value.value<QDBusVariant>().variant());
    }
    if (type == qMetaTypeId<IdValueStruct>()) {
        const auto record = value.value<IdValueStruct>();
        return { record.id.toStdString(), jsonOf(record.value) };
    }
    if (type == qMetaTypeId<IdValueStatusStruct>()) {
        const auto record = value.value<IdValueStatusStruct>();
        return { record.id.toStdString(), jsonOf(record.value), record.status };
    }
    if (value.canConvert<QVariantList>()) {
        Json list = Json::array();
        const auto elements = value.value<QVariantList>();
        for (const QVariant &each : elements) {
            list.push_back(jsonOf(each));
        }
        return list;
    }
    if (const ValueType *known = typeWithSignature(signatureOf(value))) {
        return known->toJson(value);
    }
    if (type == QMetaType::QByteArray) {
        const QByteArray bytes = value.toByteArray();
        return std::vector<unsigned char>(bytes.begin(), bytes.end());
    }
    if (type == qMetaTypeId<QDBusObjectPath>()) {
        return value.value<QDBusObjectPath>().path().toStdString();
    }
    if (type == qMetaTypeId<QDBusSignature>()) {
        return value.value<QDBusSignature>().signature().toStdString();
    }
    return value.toString().toStdString();
}

Refusal malformed(const QString &value, const QString &wanted)
{
    return badValue("%1 is not of the form %2."_q.arg(quoted(value), quoted(wanted)));
}

/// No log has this name, which is no id that a log could note.
Refusal unknownLog(const QString &name)
{
    return { "UnknownId"_q, unknownId(name).sentence };
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
    line["arguments"] = jsonOf(arguments);
    if (answer != nullptr && answer->type() == QDBusMessage::ErrorMessage) {
        line["refusal"] = { { "name", answer->errorName().toStdString() },
                            { "sentence", answer->errorMessage().toStdString() } };
    } else if (answer != nullptr) {
        line["answer"] = jsonOf(answer->arguments());
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
        const QString name = quoted(file.fileName());
        throw Refusal { "Record"_q, "the log %1 cannot be written: %2"_q.arg(name, problem) };
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
    // Fields are surrounded and separated by colons. A client may send many millions of them.
    constexpr int longestId = 1000;
    const QStringList fields = id.left(longestId).split(QLatin1Char(':'), Qt::SkipEmptyParts);
    if (file && level <= reportingLevel) {
        const QString name = "LOG_"_q + fields.value(1).toUpper();
        const uint number = fields.isEmpty() ? 0 : fields.last().toUInt();
        const auto found = debugLogs.constFind(name);
        if (found != debugLogs.constEnd() && !found->test(number < found->size() ? number : 0)) {
            write("%1 %2 %3\n"_q.arg(levelWords.at(static_cast<int>(level)), name, entry));
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
    const bool fits = file->size() + bytes.size() <= mostBytesOfFile;
    if (fits && file->write(bytes) == bytes.size()) {
        return;
    }
    const QString problem = fits ? file->errorString() : "it would be larger than 16 MiB"_q;
    announcer.error("the debug log cannot be written and is closed: %1"_q.arg(problem));
    file.reset();
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
        const int level = levelWords.indexOf(value);
        if (level < 0) {
            throw malformed(value, levelWords.join(QLatin1Char('|')));
        }
        reportingLevel = static_cast<LogLevel>(level);
    } else if (word == "SAVE_TO"_q) {
        // A client may name a path, but the file is always in the state directory.
        fileName = value.mid(value.lastIndexOf(QLatin1Char('/')) + 1);
        file = files.create(fileName);
        announcer.info("debug log goes to %1"_q.arg(files.pathOf(fileName)));
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
