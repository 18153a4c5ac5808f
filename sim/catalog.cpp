// SPDX-License-Identifier: MIT
#include "sim/catalog.h"

#include <limits>
#include <nlohmann/json.hpp>
#include <sstream>
#include <string>
#include <vector>

namespace
{

/// Parses a text that must hold one object.
Json parseJson(const QByteArray &text, const Place &place)
{
    constexpr int deepest = 100;
    std::istringstream stream(text.toStdString());
    const auto position = [&stream]() -> qint64 {
        return stream.rdbuf()->pubseekoff(0, std::ios::cur, std::ios::in);
    };
    // `at` is how many bytes have been read when the fault is seen.
    const auto wrong = [&](qint64 at, const QString &reason) {
        const QByteArray before = text.left(static_cast<int>(at - 1));
        const int column = QString::fromUtf8(before.mid(before.lastIndexOf('\n') + 1)).size() + 1;
        return place.in("line %1, column %2"_q.arg(before.count('\n') + 1).arg(column))
            .refusal(shown(reason));
    };
    std::vector<std::set<std::string>> keys;
    const auto check = [&](int depth, Json::parse_event_t event, const Json &parsed) {
        if (event == Json::parse_event_t::object_start) {
            keys.emplace_back();
        } else if (event == Json::parse_event_t::object_end) {
            keys.pop_back();
        } else if (event == Json::parse_event_t::key
                   && !keys.back().insert(parsed.get_ref<const std::string &>()).second) {
            throw wrong(position(), "the key %1 is there already"_q.arg(quoted(textOf(parsed))));
        }
        if (depth > deepest) {
            throw wrong(position(), "nested too deeply"_q);
        }
        return true;
    };
    // The library's own message depends on its version.
    if (text.isEmpty()) {
        throw wrong(1, "is empty"_q);
    }
    // The parser takes U+0000 for the end.
    if (const int nul = text.indexOf('\0'); nul >= 0) {
        throw wrong(nul + 1, "U+0000 is no character of JSON"_q);
    }
    Json json;
    try {
        json = Json::parse(stream, check);
    } catch (const Json::exception &error) {
        const auto *syntax = dynamic_cast<const Json::parse_error *>(&error);
        const qint64 at = syntax == nullptr ? position() : static_cast<qint64>(syntax->byte);
        // The library's message begins with its own name and the position.
        static const QRegularExpression beginning(
            "\\A\\[[^]]*\\] (parse error at line \\d+, column \\d+: )?"_q);
        throw wrong(at, QString::fromUtf8(error.what()).remove(beginning));
    }
    needKind(json.is_object(), json, "an object", place.in("line 1, column 1"_q));
    return json;
}

/// Takes the fields of one object. The first argument of every function is the name of a field.
class Fields
{
public:
    Fields(const Json &value, Place whereItIs)
        : object(value)
        , place(std::move(whereItIs))
    {
        needKind(object.is_object(), object, "an object", place);
    }

    Place in(const char *key) const { return place.in(QString::fromLatin1(key)); }

    /// A field that may be missing: null then.
    const Json *find(const char *key)
    {
        if (!taken.contains(QLatin1String(key))) {
            taken.append(QString::fromLatin1(key));
        }
        const auto found = object.find(key);
        return found == object.end() ? nullptr : &*found;
    }
    const Json &need(const char *key)
    {
        const Json *found = find(key);
        if (found == nullptr) {
            throw in(key).refusal("is missing"_q);
        }
        return *found;
    }
    QVariant value(const char *key, const ValueType &type)
    {
        return type.fromJson(need(key), in(key));
    }
    QString text(const char *key) { return value(key, *typeNamed("string"_q)).toString(); }
    QString text(const char *key, const QString &otherwise)
    {
        return find(key) == nullptr ? otherwise : text(key);
    }
    QString name(const char *key)
    {
        QString found = text(key);
        if (found.isEmpty()) {
            throw in(key).refusal("is empty"_q);
        }
        return found;
    }
    int integer(const char *key, int otherwise, int least = std::numeric_limits<int>::min(),
                int greatest = std::numeric_limits<int>::max())
    {
        const Json *found = find(key);
        if (found == nullptr) {
            return otherwise;
        }
        needKind(found->is_number(), *found, "a number", in(key));
        const int number = value(key, *typeNamed("int32"_q)).toInt();
        if (number < least || number > greatest) {
            throw in(key).refusal("%1 is not in %2 to %3"_q.arg(number).arg(least).arg(greatest));
        }
        return number;
    }
    /// Reads each element of an array, with its place.
    template <typename Read> void elements(const char *key, Read read)
    {
        const Json &array = need(key);
        needKind(array.is_array(), array, "an array", in(key));
        int index = 0;
        for (const Json &each : array) {
            read(each, in(key).at(index++));
        }
    }
    /// Reads each element of an array of objects, which may have a description as well.
    template <typename Read> void objects(const char *key, Read read)
    {
        elements(key, [&read](const Json &each, const Place &at) {
            Fields fields(each, at);
            read(fields);
            fields.text("description", {});
            fields.refuseOthers();
        });
    }
    /// Refuses the first field that nobody has taken.
    void refuseOthers() const
    {
        for (const auto &field : object.items()) {
            const QString key = QString::fromStdString(field.key());
            if (!taken.contains(key)) {
                throw place.in(shown(key))
                    .refusal("is not known; fields are %1"_q.arg(taken.join(", "_q)));
            }
        }
    }

private:
    const Json &object;
    Place place;
    QStringList taken;
};

/// Reads the parts of a catalogue one after the other, up to the first thing that is wrong.
class CatalogReader
{
public:
    Catalog read(Fields top)
    {
        top.objects("configs", [this](Fields &fields) { readItem(fields, ItemKind::Config); });
        top.objects("results", [this](Fields &fields) { readItem(fields, ItemKind::Result); });
        top.objects("actions", [this](Fields &fields) { readAction(fields); });
        catalog.logs = readNames(top, "logs", logName, "a name without blanks and colons");
        catalog.debugLogs =
            readNames(top, "debugLogs", debugLogName, "LOG_ and a name in upper case");
        if (top.find("timeline") != nullptr) {
            top.objects("timeline", [this](Fields &fields) { readMoment(fields); });
        }
        top.text("$schema", {});
        top.refuseOthers();
        return catalog;
    }

private:
    QString readId(Fields &fields)
    {
        QString id = fields.name("id");
        if (indexes.contains(id)) {
            throw fields.in("id").refusal("%1 is there already"_q.arg(quoted(id)));
        }
        indexes.insert(id, -1);
        return id;
    }

    void readItem(Fields &fields, ItemKind kind)
    {
        Item item { readId(fields), kind };
        const QString typeName = fields.name("type");
        item.type = typeNamed(typeName);
        if (item.type == nullptr) {
            throw fields.in("type").refusal(
                "%1 is not a type; types are %2"_q.arg(quoted(typeName), typeNames()));
        }
        item.value = fields.value("value", *item.type);
        item.status = fields.integer("status", 0);
        indexes[item.id] = catalog.items.size();
        catalog.items.append(item);
    }

    void readAction(Fields &fields)
    {
        Action action;
        action.id = readId(fields);
        action.reply = fields.text("reply", "started"_q);
        action.duration = fields.integer("duration", 0, 0, longestTime);
        if (fields.find("drive") != nullptr) {
            const QString id = fields.name("drive");
            action.drivenItem = indexes.value(id, -1);
            // An unknown item is a config without a type.
            const Item driven = catalog.items.value(action.drivenItem);
            if (driven.kind != ItemKind::Result || !driven.type->isNumber) {
                throw fields.in("drive").refusal(
                    "%1 is not a result with a single number"_q.arg(quoted(id)));
            }
        }
        if (fields.find("ends") == nullptr) {
            action.ends.append({ "SigTestComplete"_q, { action.id } });
        } else {
            fields.objects("ends", [&](Fields &end) { action.ends.append(readSignal(end)); });
        }
        catalog.actions.append(action);
    }

    void readMoment(Fields &fields)
    {
        Moment moment;
        moment.every = fields.integer("every", 0, 1, longestTime);
        if (moment.every == 0) {
            fields.need("at");
        }
        moment.at = fields.integer("at", moment.every, 0, longestTime);
        if (fields.find("id") == nullptr) {
            moment.signal = readSignal(fields);
        } else {
            const QString id = fields.name("id");
            Assignment change { indexes.value(id, -1), {} };
            if (change.index < 0) {
                throw fields.in("id").refusal("%1 is not a config or a result"_q.arg(quoted(id)));
            }
            if (fields.find("status") != nullptr) {
                change.status = fields.integer("status", 0);
            }
            if (!change.status || fields.find("value") != nullptr) {
                change.value = fields.value("value", *catalog.items.at(change.index).type);
            }
            moment.change = change;
        }
        catalog.timeline.append(moment);
    }

    static Signal readSignal(Fields &fields)
    {
        static const QString withData = "SigTestCompleteWithData"_q;
        static const QStringList members {
            "SigAlarm"_q, "SigError"_q, "SigInfo"_q, "SigTestComplete"_q, withData, "SigUpdate"_q,
        };
        Signal signal { fields.name("signal"), {} };
        if (!members.contains(signal.member)) {
            throw fields.in("signal").refusal("%1 is not a signal to send; signals are %2"_q.arg(
                quoted(signal.member), members.join(", "_q)));
        }
        signal.arguments.append(fields.text("message"));
        if (signal.member == withData) {
            const QString typeName = fields.name("type");
            if (typeName != "double[]"_q && typeName != "uint32[]"_q) {
                throw fields.in("type").refusal(
                    "%1 is neither double[] nor uint32[]"_q.arg(quoted(typeName)));
            }
            signal.arguments.append(fields.value("data", *typeNamed(typeName)));
        }
        return signal;
    }

    static QStringList readNames(Fields &top, const char *key, const QRegularExpression &form,
                                 const char *formInWords)
    {
        QStringList names;
        QSet<QString> known;
        top.elements(key, [&](const Json &each, const Place &at) {
            const QString name = each.is_string() ? textOf(each) : QString();
            if (!form.match(name).hasMatch()) {
                throw at.refusal("is not %1"_q.arg(QLatin1String(formInWords)));
            }
            if (known.contains(name)) {
                throw at.refusal("%1 is there already"_q.arg(quoted(name)));
            }
            known.insert(name);
            names.append(name);
        });
        return names;
    }

    Catalog catalog;
    QHash<QString, int> indexes; ///< of every id: its item's place, or -1
};

} // namespace

const QRegularExpression logName("\\A[^\\s[:cntrl:]:]+\\z"_q);
const QRegularExpression debugLogName("\\ALOG_[^\\s[:cntrl:]:,a-z]+\\z"_q);

Catalog readCatalog(const QByteArray &text, const QString &intro)
{
    const Place place { "Catalog"_q, intro };
    const Json json = parseJson(text, place);
    return CatalogReader().read(Fields(json, place));
}

Catalog loadCatalog(const QString &fileName)
{
    if (fileName.isEmpty()) {
        return readCatalog(builtIn("catalog.json"_q));
    }
    const Place place { "Catalog"_q, {}, "the catalogue %1 is not valid"_q.arg(quoted(fileName)) };
    return readCatalog(readFile(fileName, "is larger than 16 MiB"_q, place), place.path + ": "_q);
}

QByteArray builtIn(const QString &name)
{
    QFile file(":/"_q + name);
    return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray();
}

QByteArray writeConfigs(const Items &items)
{
    constexpr int indentation = 4;
    Json configs = Json::object();
    const QVector<int> indexes = items.find(items.ids(ItemKind::Config));
    for (const int index : indexes) {
        const Item &item = items.at(index);
        configs[item.id.toStdString()] = item.type->toJson(item.value);
    }
    const Json saved { { "format", 1 }, { "configs", std::move(configs) } };
    return QByteArray::fromStdString(saved.dump(indentation)) + '\n';
}

QVector<Assignment> readConfigs(const QByteArray &text, const Items &items, const Place &place)
{
    const Json json = parseJson(text, place);
    Fields top(json, place);
    if (top.need("format") != Json(1)) {
        throw top.in("format").refusal("is not 1"_q);
    }
    const Json &configs = top.need("configs");
    needKind(configs.is_object(), configs, "an object", top.in("configs"));
    top.refuseOthers();

    QVector<Assignment> assignments;
    for (const auto &field : configs.items()) {
        const QString id = QString::fromStdString(field.key());
        const Place at = place.in("configs[%1]"_q.arg(quoted(id)));
        const int index = items.indexOf(id);
        if (index < 0 || items.at(index).kind != ItemKind::Config) {
            throw at.refusal("is not a config here"_q);
        }
        assignments.append({ index, items.at(index).type->fromJson(field.value(), at) });
    }
    return assignments;
}
