// SPDX-License-Identifier: MIT
// A copy of a running service as a catalogue.
#include "bus/connection.h"
#include "bus/types.h"
#include "sim/catalog.h"
#include "sim/host.h"

#include <QDBusConnectionInterface>
#include <QDBusError>
#include <QScopeGuard>

#include <cstdio>
#include <nlohmann/json.hpp>

#include <unistd.h>

namespace
{

using Line = nlohmann::ordered_json;

Refusal failure(const QString &sentence)
{
    return { "Capture"_q, "the service cannot be captured: "_q + sentence };
}

/// Asks one service, and keeps what it answers as entries of a catalogue.
class Capture
{
public:
    Capture(const QString &service, QString objectPath)
        : bus(openBus())
        , path(std::move(objectPath))
    {
        registerBusTypes();
        // Calls go to the owner of the name, so that another one cannot continue its answers.
        const auto reply = bus.interface()->serviceOwner(service);
        if (!reply.isValid()) {
            throw failure("nobody owns the bus name %1"_q.arg(quoted(service)));
        }
        owner = reply.value();
    }

    QByteArray text()
    {
        const QStringList configs = list("ListConfigIds");
        const QStringList results = list("ListResultIds");
        total = configs.size() + results.size();
        const auto readItem = [this](const QString &id) { return item(id); };
        // Line by line: the order of the calls is that of the lists.
        QByteArray text = "{\n" + listText("configs", configs, readItem);
        text += listText("results", results, readItem);
        text += listText("actions", list("ListActionIds"), [this](const QString &id) {
            return take(id) ? Line::object({ { "id", id.toStdString() } }) : Line();
        });
        const QString logs = ask("LogGetIds", "s").value(0).toString();
        text += namesText("logs", logs.split(QLatin1Char(' '), Qt::SkipEmptyParts), logName);
        text += namesText("debugLogs", list("DbgLogGetIds"), debugLogName);
        text.chop(2);
        text += "\n}\n";
        showProgress(true);
        if (text.size() > mostBytesOfFile) {
            throw failure("the catalogue is larger than 16 MiB"_q);
        }
        return text;
    }

private:
    /// The values of the answer; none: the call was refused, which is noted.
    QVariantList ask(const char *member, const char *signature, const QVariantList &arguments = {})
    {
        QDBusMessage call =
            QDBusMessage::createMethodCall(owner, path, "varn.pim"_q, QString::fromLatin1(member));
        call.setArguments(arguments);
        const QDBusMessage reply = bus.call(call);
        const QString what = arguments.isEmpty() ? call.member() : arguments.first().toString();
        if (reply.type() == QDBusMessage::ErrorMessage) {
            endIfBusEnded();
            // The service is gone, or is none of this kind.
            static const QSet<QDBusError::ErrorType> fatal {
                QDBusError::NoReply,          QDBusError::Timeout,
                QDBusError::TimedOut,         QDBusError::Disconnected,
                QDBusError::ServiceUnknown,   QDBusError::UnknownObject,
                QDBusError::UnknownInterface, QDBusError::InvalidSignature,
            };
            if (fatal.contains(QDBusError(reply).type())) {
                throw failure("%1: %2"_q.arg(quoted(what), shown(reply.errorMessage())));
            }
            skip(what, reply.errorMessage());
            return {};
        }
        if (reply.signature() != QLatin1String(signature)) {
            throw failure("%1: the answer has D-Bus type %2 instead of \"%3\""_q.arg(
                quoted(what), quoted(reply.signature()), QLatin1String(signature)));
        }
        return reply.arguments();
    }

    QStringList list(const char *member) { return ask(member, "as").value(0).toStringList(); }

    /// Tells why there is no entry for something.
    Line skip(const QString &what, const QString &reason)
    {
        showProgress(true);
        std::fprintf(stderr, "movra-sim: skipped %s: %s\n", qUtf8Printable(quoted(what)),
                     qUtf8Printable(shown(reason)));
        return {};
    }

    /// Whether the id can be in the catalogue.
    bool take(const QString &id)
    {
        if (id.isEmpty() || known.contains(id)) {
            skip(id, id.isEmpty() ? "an id is empty"_q : "it is there already"_q);
            return false;
        }
        known.insert(id);
        return true;
    }

    /// The entry of an item; null: it is skipped.
    Line item(const QString &id)
    {
        showProgress(false);
        const QVariantList answer =
            take(id) ? ask("GetValueStatus", "(svi)", { id }) : QVariantList();
        if (answer.isEmpty()) {
            return {};
        }
        const auto found = qdbus_cast<IdValueStatusStruct>(answer.at(0));
        if (found.id != id) {
            throw failure("%1: the answer is about %2"_q.arg(quoted(id), quoted(found.id)));
        }
        const QString signature = signatureOf(found.value);
        const ValueType *type = typeWithSignature(signature);
        if (type == nullptr) {
            return skip(id,
                        "a catalogue has no type for a value of D-Bus type "_q + quoted(signature));
        }
        Line entry { { "id", id.toStdString() }, { "type", type->name } };
        try {
            entry["value"] = type->toJson(type->fromBus(found.value, { {}, {}, "its value"_q }));
        } catch (const Refusal &refusal) {
            return skip(id, refusal.sentence);
        }
        if (found.status != 0) {
            entry["status"] = found.status;
        }
        return entry;
    }

    /// A list of the catalogue; `read` makes an entry of an id, or null.
    template <typename Read>
    static QByteArray listText(const char *key, const QStringList &found, Read read)
    {
        QByteArrayList lines;
        for (const QString &each : found) {
            if (const Line entry = read(each); !entry.is_null()) {
                lines.append("\n    " + QByteArray::fromStdString(entry.dump()));
            }
        }
        const QByteArray end = lines.isEmpty() ? "]" : "\n  ]";
        return QByteArray("  \"") + key + "\": [" + lines.join(',') + end + ",\n";
    }

    QByteArray namesText(const char *key, const QStringList &found, const QRegularExpression &form)
    {
        QSet<QString> taken;
        return listText(key, found, [&](const QString &name) {
            if (!form.match(name).hasMatch() || taken.contains(name)) {
                return skip(name, "no catalogue can have this log"_q);
            }
            taken.insert(name);
            return Line(name.toStdString());
        });
    }

    /// On a terminal, shows how many ids have been asked for, or clears that.
    void showProgress(bool isOver)
    {
        constexpr int pace = 100;
        static const bool isTerminal = isatty(STDERR_FILENO) != 0;
        if (isTerminal && isOver) {
            std::fputs("\r\033[K", stderr);
        } else if (isTerminal && done % pace == 0) {
            std::fprintf(stderr, "\r%d of %d", done, total);
        }
        done += isOver ? 0 : 1;
    }

    QDBusConnection bus;
    QString owner;
    QString path;
    QSet<QString> known;
    int done = 0;
    int total = 0;
};

} // namespace

QByteArray captureCatalog(const QString &service, const QString &path)
{
    const Application application;
    const auto outlive = qScopeGuard(&outliveBus);
    return Capture(service, path).text();
}
