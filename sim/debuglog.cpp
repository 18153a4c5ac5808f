// SPDX-License-Identifier: MIT
#include "sim/debuglog.h"

#include "sim/idfields.h"
#include "sim/text.h"

#include <QLatin1String>

#include <algorithm>
#include <iterator>
#include <utility>

struct DebugLog::CommandRow {
    const char *word;
    Handler handler;
};

const DebugLog::CommandRow DebugLog::commands[] = {
    { "SET", &DebugLog::set },
    { "SET_ALL", &DebugLog::setAll },
    { "SET_REPORTING_LEVEL", &DebugLog::setReportingLevel },
    { "SAVE_TO", &DebugLog::saveTo },
    { "SAVE_STOP", &DebugLog::saveStop },
};

namespace
{

constexpr uint mostInstances = 256;

constexpr const char *levelWords[] = { "ERROR",  "INFO",   "DEBUG", "DEBUG1",
                                       "DEBUG2", "DEBUG3", "DEBUG4" };

QLatin1String levelWord(LogLevel level)
{
    return QLatin1String(levelWords[static_cast<std::size_t>(level)]);
}

/// Whether the word is ENABLED; nothing when it is not DISABLED either.
std::optional<bool> enabledWord(const QString &word)
{
    if (word == QLatin1String("ENABLED")) {
        return true;
    }
    if (word == QLatin1String("DISABLED")) {
        return false;
    }
    return {};
}

QStringList trimmedParts(const QString &value)
{
    QStringList parts = value.split(QLatin1Char(','));
    for (QString &part : parts) {
        part = part.trimmed();
    }
    return parts;
}

QString switchOf(const QString &log, uint instance)
{
    return QStringLiteral("%1,%2").arg(log, QString::number(instance));
}

Refusal malformed(const QString &value, const char *wanted)
{
    return badValue(QStringLiteral("%1 is not of the form %2.")
                        .arg(quoted(value), quoted(QString::fromLatin1(wanted))));
}

} // namespace

DebugLog::DebugLog(QStringList logNames, StateFiles stateFiles, Announcer announcerOfFiles)
    : logs(std::move(logNames))
    , files(std::move(stateFiles))
    , announcer(std::move(announcerOfFiles))
{
}

std::optional<Refusal> DebugLog::command(const QString &word, const QString &value)
{
    const auto *row =
        std::find_if(std::begin(commands), std::end(commands),
                     [&word](const CommandRow &each) { return word == QLatin1String(each.word); });
    return row == std::end(commands) ? unknownCommand(word) : (this->*row->handler)(value);
}

std::optional<Refusal> DebugLog::set(const QString &value)
{
    const QStringList parts = trimmedParts(value);
    const auto enabled = enabledWord(parts.last());
    bool isNumber = false;
    const uint instance = parts.value(1).toUInt(&isNumber);
    if (parts.size() != 3 || !enabled || !isNumber || instance >= mostInstances) {
        return malformed(value, "<log>, <instance 0 to 255>, ENABLED|DISABLED");
    }
    if (!logs.contains(parts.first())) {
        return unknownId(parts.first());
    }
    if (*enabled) {
        disabled.remove(switchOf(parts.first(), instance));
    } else {
        disabled.insert(switchOf(parts.first(), instance));
    }
    return {};
}

std::optional<Refusal> DebugLog::setAll(const QString &value)
{
    const QStringList parts = trimmedParts(value);
    const auto enabled = enabledWord(parts.last());
    if (parts.size() != 2 || !enabled) {
        return malformed(value, "<log>, ENABLED|DISABLED");
    }
    if (!logs.contains(parts.first())) {
        return unknownId(parts.first());
    }
    for (uint instance = 0; instance < mostInstances; ++instance) {
        if (*enabled) {
            disabled.remove(switchOf(parts.first(), instance));
        } else {
            disabled.insert(switchOf(parts.first(), instance));
        }
    }
    return {};
}

std::optional<Refusal> DebugLog::setReportingLevel(const QString &value)
{
    const auto *word =
        std::find_if(std::begin(levelWords), std::end(levelWords),
                     [&value](const char *each) { return value == QLatin1String(each); });
    if (word == std::end(levelWords)) {
        return malformed(value, "ERROR|INFO|DEBUG|DEBUG1|DEBUG2|DEBUG3|DEBUG4");
    }
    reportingLevel = static_cast<LogLevel>(word - std::begin(levelWords));
    return {};
}

std::optional<Refusal> DebugLog::saveTo(const QString &value)
{
    // A client names a path of its own world; the file lies in the state directory all the same.
    const QString name = value.mid(value.lastIndexOf(QLatin1Char('/')) + 1);
    auto next = std::make_unique<QFile>();
    if (auto refusal = files.create(name, *next)) {
        return refusal;
    }
    file = std::move(next);
    announcer.info(QStringLiteral("debug log goes to %1").arg(files.pathOf(name)));
    return {};
}

std::optional<Refusal> DebugLog::saveStop(const QString &value)
{
    if (!value.isEmpty()) {
        return badValue(
            QStringLiteral("SAVE_STOP takes no value, but %1 came with it.").arg(quoted(value)));
    }
    file.reset();
    return {};
}

void DebugLog::record(LogLevel level, const QString &id, const QString &text)
{
    if (!file || level > reportingLevel) {
        return;
    }
    const QStringList fields = idFields(id);
    const QString log = QLatin1String("LOG_") + fields.value(1).toUpper();
    const uint number = fields.isEmpty() ? 0 : fields.last().toUInt();
    const uint instance = number < mostInstances ? number : 0;
    if (!logs.contains(log) || disabled.contains(switchOf(log, instance))) {
        return;
    }
    const QByteArray line = QStringLiteral("%1 %2 %3\n").arg(levelWord(level), log, text).toUtf8();
    if (file->write(line) != line.size()) {
        announcer.error(QStringLiteral("the debug log cannot be written and is closed: %1")
                            .arg(file->errorString()));
        file.reset();
    }
}
