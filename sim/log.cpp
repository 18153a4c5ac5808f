// SPDX-License-Identifier: MIT
#include "sim/log.h"

#include "bus/types.h"
#include "sim/value.h"

#include <QCoreApplication>
#include <QDateTime>
#include <QDBusArgument>
#include <QDBusObjectPath>
#include <QDBusSignature>
#include <QDBusVariant>

#include <algorithm>
#include <iterator>
#include <nlohmann/json.hpp>
#include <utility>

#include <unistd.h>

namespace
{

constexpr uint mostInstances = 256;

constexpr const char *levelWords[] = { "ERROR",  "INFO",   "DEBUG", "DEBUG1",
                                       "DEBUG2", "DEBUG3", "DEBUG4" };

Refusal badValue(const QString &sentence)
{
    return { "BadValue"_q, sentence };
}

Refusal malformed(const QString &value, const char *wanted)
{
    return badValue(
        "%1 is not of the form %2."_q.arg(quoted(value), quoted(QString::fromLatin1(wanted))));
}

Json jsonOf(const QVariant &value);

Json jsonOf(const QDBusArgument &argument)
{
    Json list = Json::array();
    switch (argument.currentType()) {
    case QDBusArgument::ArrayType:
        for (argument.beginArray(); !argument.atEnd();) {
            list.push_back(jsonOf(argument));
        }
        argument.endArray();
        return list;
    case QDBusArgument::StructureType:
        for (argument.beginStructure(); !argument.atEnd();) {
            list.push_back(jsonOf(argument));
        }
        argument.endStructure();
        return list;
    case QDBusArgument::MapType:
        for (argument.beginMap(); !argument.atEnd(); argument.endMapEntry()) {
            argument.beginMapEntry();
            const Json key = jsonOf(argument);
            list.push_back({ key, jsonOf(argument) });
        }
        argument.endMap();
        return list;
    default:
        return jsonOf(argument.asVariant());
    }
}

template <typename Record> Json jsonOfAll(const QVariant &records)
{
    Json list = Json::array();
    for (const Record &each : records.value<QList<Record>>()) {
        list.push_back(jsonOf(QVariant::fromValue(each)));
    }
    return list;
}

/// A value of a message, as a catalogue would have it; records become arrays.
Json jsonOf(const QVariant &value)
{
    const int type = value.userType();
    if (type == qMetaTypeId<QDBusVariant>()) {
        return jsonOf(value.value<QDBusVariant>().variant());
    }
    if (type == qMetaTypeId<QDBusArgument>()) {
        return jsonOf(value.value<QDBusArgument>());
    }
    if (type == qMetaTypeId<IdValueStruct>()) {
        const auto record = value.value<IdValueStruct>();
        return { record.id.toStdString(), jsonOf(record.value) };
    }
    if (type == qMetaTypeId<IdValueStatusStruct>()) {
        const auto record = value.value<IdValueStatusStruct>();
        return { record.id.toStdString(), jsonOf(record.value), record.status };
    }
    if (type == qMetaTypeId<QList<IdValueStruct>>()) {
        return jsonOfAll<IdValueStruct>(value);
    }
    if (type == qMetaTypeId<QList<IdValueStatusStruct>>()) {
        return jsonOfAll<IdValueStatusStruct>(value);
    }
    if (type == qMetaTypeId<QList<int>>()) {
        return jsonOfAll<int>(value);
    }
    if (const auto known = typeWithSignature(signatureOf(value))) {
        return valueToJson(*known, value);
    }
    if (type == QMetaType::QByteArray) {
        const QByteArray bytes = value.toByteArray();
        return std::vector<unsigned char>(bytes.begin(), bytes.end());
    }
    return type == qMetaTypeId<QDBusObjectPath>()
        ? value.value<QDBusObjectPath>().path().toStdString()
        : type == qMetaTypeId<QDBusSignature>()
        ? value.value<QDBusSignature>().signature().toStdString()
        : value.toString().toStdString();
}

Json jsonOfArguments(const QDBusMessage &message)
{
    Json list = Json::array();
    const QVariantList arguments = message.arguments();
    for (const QVariant &each : arguments) {
        list.push_back(jsonOf(each));
    }
    return list;
}

/// The fields of an identifier, which colons surround and separate.
QStringList fieldsOf(const QString &id)
{
    // A client may send an identifier of many millions of fields.
    constexpr int longestId = 1000;
    return id.left(longestId).split(QLatin1Char(':'), Qt::SkipEmptyParts);
}

} // namespace

Record::Record(const QString &fileName)
{
    const QIODevice::OpenMode mode = QIODevice::WriteOnly | QIODevice::Unbuffered;
    file.setFileName(fileName);
    if (!fileName.isEmpty()
        && !(fileName == "-"_q ? file.open(STDOUT_FILENO, mode) : file.open(mode))) {
        problem = file.errorString();
        check();
    }
}

void Record::noteCall(const QDBusMessage &call, const QDBusMessage *answer)
{
    write("call", call, answer);
}

void Record::noteSignal(const QDBusMessage &signal)
{
    write("signal", signal, nullptr);
}

void Record::write(const char *kind, const QDBusMessage &message, const QDBusMessage *answer)
{
    if (!file.isOpen()) {
        return;
    }
    nlohmann::ordered_json line;
    line["time"] = QDateTime::currentDateTimeUtc().toString(Qt::ISODateWithMs).toStdString();
    line[kind] = message.member().toStdString();
    if (!message.service().isEmpty()) {
        line["sender"] = message.service().toStdString();
    }
    QString signature;
    const QVariantList arguments = message.arguments();
    for (const QVariant &each : arguments) {
        signature += signatureOf(each);
    }
    line["signature"] = signature.toStdString();
    line["arguments"] = jsonOfArguments(message);
    if (answer != nullptr && answer->type() == QDBusMessage::ErrorMessage) {
        line["refusal"] = { { "name", answer->errorName().toStdString() },
                            { "sentence", answer->errorMessage().toStdString() } };
    } else if (answer != nullptr) {
        line["answer"] = jsonOfArguments(*answer);
    }
    const QByteArray bytes = QByteArray::fromStdString(line.dump()) + '\n';
    if (file.write(bytes) != bytes.size()) {
        problem = file.errorString();
        file.close();
        QCoreApplication::quit();
    }
}

void Record::check() const
{
    if (!problem.isEmpty()) {
        throw Refusal {
            "Record"_q, "the log %1 cannot be written: %2"_q.arg(quoted(file.fileName()), problem)
        };
    }
}

Announcer::Announcer(const QDBusConnection &bus, QString objectPath, Record &recordOfSignals)
    : connection(bus)
    , path(std::move(objectPath))
    , record(recordOfSignals)
{
}

void Announcer::send(const Signal &signal)
{
    QDBusMessage message = QDBusMessage::createSignal(path, "varn.pim"_q, signal.member);
    message.setArguments(signal.arguments);
    record.noteSignal(message);
    connection.send(message);
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
        const uint instance = number < mostInstances ? number : 0;
        const auto found = debugLogs.constFind(name);
        if (found != debugLogs.constEnd() && !found->contains(instance)) {
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
    if (file->size() + bytes.size() > StateFiles::mostBytes) {
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
        throw Refusal { "UnknownId"_q, unknownId(name).sentence };
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
    constexpr int longestValue = 100000;
    QStringList parts = value.left(longestValue).split(QLatin1Char(','));
    for (QString &part : parts) {
        part = part.trimmed();
    }
    const bool isOff = parts.last() == "DISABLED"_q;
    bool isNumber = !isOne;
    const uint instance = isOne ? parts.value(1).toUInt(&isNumber) : 0;
    if (value.size() > longestValue || parts.size() != (isOne ? 3 : 2) || !isNumber
        || instance >= mostInstances || (!isOff && parts.last() != "ENABLED"_q)) {
        throw malformed(value,
                        isOne ? "<log>, <instance 0 to 255>, ENABLED|DISABLED"
                              : "<log>, ENABLED|DISABLED");
    }
    const auto found = debugLogs.find(parts.first());
    if (found == debugLogs.end()) {
        throw Refusal { "UnknownId"_q, unknownId(parts.first()).sentence };
    }
    for (uint each = isOne ? instance : 0; each <= (isOne ? instance : mostInstances - 1); ++each) {
        if (isOff) {
            found->insert(each);
        } else {
            found->remove(each);
        }
    }
}

void Log::setReportingLevel(const QString &value)
{
    const auto *word =
        std::find_if(std::begin(levelWords), std::end(levelWords),
                     [&value](const char *each) { return value == QLatin1String(each); });
    if (word == std::end(levelWords)) {
        throw malformed(value, "ERROR|INFO|DEBUG|DEBUG1|DEBUG2|DEBUG3|DEBUG4");
    }
    reportingLevel = static_cast<LogLevel>(word - std::begin(levelWords));
}

void Log::saveTo(const QString &value)
{
    // A client names a path of its own world; the file lies in the state directory all the same.
    fileName = value.mid(value.lastIndexOf(QLatin1Char('/')) + 1);
    file = files.create(fileName);
    announcer.info("debug log goes to %1"_q.arg(files.pathOf(fileName)));
}
