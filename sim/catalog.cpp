// SPDX-License-Identifier: MIT
#include "sim/catalog.h"

#include "sim/statefiles.h"

#include <QFile>
#include <QRegularExpression>
#include <QSet>

#include <limits>
#include <nlohmann/json.hpp>
#include <set>
#include <sstream>
#include <string>
#include <utility>
#include <vector>

// The linker leaves a static library's resources out unless somebody names them, and the macro that
// does so must not stand in a namespace.
static void nameResources()
{
    Q_INIT_RESOURCE(sim);
}

namespace
{

constexpr int longestDuration = 3600000;

/// `at` is how many bytes have been read when the fault is seen.
Refusal syntaxFault(const QByteArray &text, qint64 at, const QString &reason, const Place &place)
{
    const QByteArray before = text.left(static_cast<int>(at - 1));
    const int column = QString::fromUtf8(before.mid(before.lastIndexOf('\n') + 1)).size() + 1;
    return place.in("line %1, column %2"_q.arg(before.count('\n') + 1).arg(column))
        .refusal(shown(reason));
}

/// Parses a text that must hold one object.
Json parseJson(const QByteArray &text, const Place &place)
{
    constexpr int deepest = 100;
    std::istringstream stream(text.toStdString());
    const auto position = [&stream] {
        return stream.rdbuf()->pubseekoff(0, std::ios::cur, std::ios::in);
    };
    std::vector<std::set<std::string>> keys;
    const auto check = [&](int depth, Json::parse_event_t event, const Json &parsed) {
        if (event == Json::parse_event_t::object_start) {
            keys.emplace_back();
        } else if (event == Json::parse_event_t::object_end) {
            keys.pop_back();
        } else if (event == Json::parse_event_t::key
                   && !keys.back().insert(parsed.get<std::string>()).second) {
            const QString key = QString::fromStdString(parsed.get<std::string>());
            throw syntaxFault(text, position(), "the key %1 is there already"_q.arg(quoted(key)),
                              place);
        }
        if (depth > deepest) {
            throw syntaxFault(text, position(), "nested too deeply"_q, place);
        }
        return true;
    };
    // What the library says of this depends on its version.
    if (text.isEmpty()) {
        throw syntaxFault(text, 1, "is empty"_q, place);
    }
    // The parser takes U+0000 for the end.
    if (const int nul = text.indexOf('\0'); nul >= 0) {
        throw syntaxFault(text, nul + 1, "U+0000 is no character of JSON"_q, place);
    }
    try {
        Json json = Json::parse(stream, check);
        if (!json.is_object()) {
            throw syntaxFault(text, 1, "is %1, not an object"_q.arg(jsonKind(json)), place);
        }
        return json;
    } catch (const Json::exception &error) {
        const auto *syntax = dynamic_cast<const Json::parse_error *>(&error);
        const auto at =
            syntax == nullptr ? static_cast<qint64>(position()) : static_cast<qint64>(syntax->byte);
        // What the library says begins with its own name and the place.
        static const QRegularExpression beginning(
            "\\A\\[[^]]*\\] (parse error at line \\d+, column \\d+: )?"_q);
        throw syntaxFault(text, at, QString::fromUtf8(error.what()).remove(beginning), place);
    }
}

/// Takes the fields of one object, each at most once.
class Fields
{
public:
    Fields(const Json &value, Place whereItIs)
        : object(value)
        , place(std::move(whereItIs))
    {
        if (!object.is_object()) {
            throw place.refusal("is %1, not an object"_q.arg(jsonKind(object)));
        }
    }

    Place in(const char *key) const { return place.in(QString::fromLatin1(key)); }
    Refusal refusal(const char *key, const QString &reason) const
    {
        return in(key).refusal(reason);
    }

    /// A field that need not be there; null: it is not.
    const Json *find(const char *key)
    {
        if (!taken.contains(QLatin1String(key))) {
            taken.append(QString::fromLatin1(key));
        }
        const auto found = object.find(key);
        return found == object.end() ? nullptr : &*found;
    }
    /// A field that must be there.
    const Json &need(const char *key)
    {
        const Json *found = find(key);
        if (found == nullptr) {
            throw refusal(key, "is missing"_q);
        }
        return *found;
    }
    QString text(const char *key)
    {
        return valueFromJson(ValueType::String, need(key), in(key)).toString();
    }
    QString name(const char *key)
    {
        QString found = text(key);
        if (found.isEmpty()) {
            throw refusal(key, "is empty"_q);
        }
        return found;
    }
    const Json &array(const char *key)
    {
        const Json &found = need(key);
        if (!found.is_array()) {
            throw refusal(key, "is %1, not an array"_q.arg(jsonKind(found)));
        }
        return found;
    }
    /// The whole number of a field that need not be there.
    int integer(const char *key, int least, int greatest, int otherwise)
    {
        const Json *found = find(key);
        if (found == nullptr) {
            return otherwise;
        }
        if (!found->is_number()) {
            throw refusal(key, "is %1, not a number"_q.arg(jsonKind(*found)));
        }
        const int number = valueFromJson(ValueType::Int32, *found, in(key)).toInt();
        if (number < least || number > greatest) {
            throw refusal(key, "%1 is not in %2 to %3"_q.arg(number).arg(least).arg(greatest));
        }
        return number;
    }
    /// The value of a field whose type another field names.
    QVariant value(ValueType type, const char *key)
    {
        return valueFromJson(type, need(key), in(key));
    }
    /// Refuses the first field that nobody has taken.
    void refuseOthers() const
    {
        for (auto field = object.begin(); field != object.end(); ++field) {
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
    explicit CatalogReader(Catalog &target)
        : catalog(target)
    {
    }

    void read(Fields &top)
    {
        readEntries(top, "configs", [this](Fields &fields) { readItem(fields, ItemKind::Config); });
        readEntries(top, "results", [this](Fields &fields) { readItem(fields, ItemKind::Result); });
        readEntries(top, "actions", [this](Fields &fields) { readAction(fields); });
        catalog.logs = readNames(top, "logs", isLogName, "a name without blanks and colons");
        catalog.debugLogs =
            readNames(top, "debugLogs", isDebugLogName, "LOG_ and a name in upper case");
        if (top.find("timeline") != nullptr) {
            readEntries(top, "timeline", [this](Fields &fields) { readMoment(fields); });
        }
        if (top.find("$schema") != nullptr) {
            top.text("$schema");
        }
        top.refuseOthers();
    }

private:
    template <typename Read> static void readEntries(Fields &top, const char *key, Read read)
    {
        int index = 0;
        for (const Json &entry : top.array(key)) {
            Fields fields(entry, top.in(key).at(index++));
            read(fields);
            if (fields.find("description") != nullptr) {
                fields.text("description");
            }
            fields.refuseOthers();
        }
    }

    QString readId(Fields &fields)
    {
        QString id = fields.name("id");
        if (indexes.contains(id)) {
            throw fields.refusal("id", "%1 is there already"_q.arg(quoted(id)));
        }
        indexes.insert(id, -1);
        return id;
    }

    void readItem(Fields &fields, ItemKind kind)
    {
        Item item;
        item.id = readId(fields);
        item.kind = kind;
        const QString typeText = fields.name("type");
        const auto type = typeNamed(typeText);
        if (!type) {
            throw fields.refusal(
                "type", "%1 is not a type; types are %2"_q.arg(quoted(typeText), typeNames()));
        }
        item.type = *type;
        item.value = fields.value(item.type, "value");
        item.status = readStatus(fields);
        indexes[item.id] = catalog.items.size();
        catalog.items.append(item);
    }

    void readAction(Fields &fields)
    {
        Action action;
        action.id = readId(fields);
        action.reply = fields.find("reply") == nullptr ? "started"_q : fields.text("reply");
        action.duration = fields.integer("duration", 0, longestDuration, 0);
        if (fields.find("drive") != nullptr) {
            const QString id = fields.name("drive");
            action.drivenItem = indexes.value(id, -1);
            if (action.drivenItem < 0 || !isDriven(catalog.items.at(action.drivenItem))) {
                throw fields.refusal("drive",
                                     "%1 is not a result with a single number"_q.arg(quoted(id)));
            }
        }
        if (fields.find("ends") == nullptr) {
            action.ends.append({ "SigTestComplete"_q, { action.id } });
        } else {
            readEntries(fields, "ends",
                        [&action](Fields &end) { action.ends.append(readSignal(end)); });
        }
        catalog.actions.append(action);
    }

    void readMoment(Fields &fields)
    {
        Moment moment;
        moment.every = fields.integer("every", 1, longestDuration, 0);
        if (moment.every == 0) {
            fields.need("at");
        }
        moment.at = fields.integer("at", 0, longestDuration, moment.every);
        if (fields.find("id") == nullptr) {
            moment.signal = readSignal(fields);
        } else {
            const QString id = fields.name("id");
            moment.item = indexes.value(id, -1);
            if (moment.item < 0) {
                throw fields.refusal("id", "%1 is not a config or a result"_q.arg(quoted(id)));
            }
            if (fields.find("status") != nullptr) {
                moment.status = readStatus(fields);
            }
            if (!moment.status || fields.find("value") != nullptr) {
                moment.value = fields.value(catalog.items.at(moment.item).type, "value");
            }
        }
        catalog.timeline.append(moment);
    }

    static int readStatus(Fields &fields)
    {
        return fields.integer("status", std::numeric_limits<int>::min(),
                              std::numeric_limits<int>::max(), 0);
    }

    static bool isDriven(const Item &item)
    {
        return item.kind == ItemKind::Result && isNumber(item.type);
    }

    static Signal readSignal(Fields &fields)
    {
        static const QString withData = "SigTestCompleteWithData"_q;
        static const QStringList members {
            "SigAlarm"_q, "SigError"_q, "SigInfo"_q, "SigTestComplete"_q, withData, "SigUpdate"_q,
        };
        Signal signal { fields.name("signal"), {} };
        if (!members.contains(signal.member)) {
            throw fields.refusal("signal",
                                 "%1 is not a signal to send; signals are %2"_q.arg(
                                     quoted(signal.member), members.join(", "_q)));
        }
        signal.arguments.append(fields.text("message"));
        if (signal.member == withData) {
            const QString typeText = fields.name("type");
            const auto type = typeNamed(typeText);
            if (type != ValueType::DoubleArray && type != ValueType::Uint32Array) {
                throw fields.refusal("type",
                                     "%1 is neither double[] nor uint32[]"_q.arg(quoted(typeText)));
            }
            signal.arguments.append(fields.value(*type, "data"));
        }
        return signal;
    }

    static QStringList readNames(Fields &top, const char *key, bool (*isName)(const QString &),
                                 const char *formInWords)
    {
        QStringList names;
        QSet<QString> known;
        for (const Json &entry : top.array(key)) {
            const Place place = top.in(key).at(names.size());
            const QString name =
                entry.is_string() ? QString::fromStdString(entry.get<std::string>()) : QString();
            if (!isName(name)) {
                throw place.refusal("is not %1"_q.arg(QLatin1String(formInWords)));
            }
            if (known.contains(name)) {
                throw place.refusal("%1 is there already"_q.arg(quoted(name)));
            }
            known.insert(name);
            names.append(name);
        }
        return names;
    }

    Catalog &catalog;
    QHash<QString, int> indexes; ///< of every identifier: its item's place, or -1
};

} // namespace

bool isLogName(const QString &name)
{
    static const QRegularExpression form("\\A[^\\s[:cntrl:]:]+\\z"_q);
    return form.match(name).hasMatch();
}

bool isDebugLogName(const QString &name)
{
    static const QRegularExpression form("\\ALOG_[^\\s[:cntrl:]:,a-z]+\\z"_q);
    return form.match(name).hasMatch();
}

Catalog readCatalog(const QByteArray &text, const QString &intro)
{
    const Place place { "Catalog"_q, intro };
    const Json json = parseJson(text, place);
    Fields top(json, place);
    Catalog catalog;
    CatalogReader(catalog).read(top);
    return catalog;
}

Catalog loadCatalog(const QString &fileName)
{
    if (fileName.isEmpty()) {
        return readCatalog(builtIn("catalog.json"_q));
    }
    const QString intro = "the catalogue %1 is not valid: "_q.arg(quoted(fileName));
    QFile file(fileName);
    const QByteArray bytes =
        file.open(QIODevice::ReadOnly) ? file.read(StateFiles::mostBytes + 1) : QByteArray();
    if (file.error() != QFileDevice::NoError) {
        throw Refusal { "Catalog"_q, intro + file.errorString() };
    }
    if (bytes.size() > StateFiles::mostBytes) {
        throw Refusal { "Catalog"_q, intro + "is larger than 16 MiB"_q };
    }
    return readCatalog(bytes, intro);
}

QByteArray builtIn(const QString &name)
{
    nameResources();
    QFile file(":/movra-sim/"_q + name);
    return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray();
}

QByteArray writeConfigs(const Items &items)
{
    constexpr int indentation = 4;
    Json configs = Json::object();
    for (int index = 0; index < items.count(); ++index) {
        const Item &item = items.at(index);
        if (item.kind == ItemKind::Config) {
            configs[item.id.toStdString()] = valueToJson(item.type, item.value);
        }
    }
    const Json saved { { "format", 1 }, { "configs", std::move(configs) } };
    return QByteArray::fromStdString(saved.dump(indentation)) + '\n';
}

QVector<Assignment> readConfigs(const QByteArray &text, const Items &items, const QString &intro,
                                const QString &after)
{
    const Place place { "File"_q, intro, {}, after };
    const Json json = parseJson(text, place);
    Fields top(json, place);
    if (top.need("format") != Json(1)) {
        throw top.refusal("format", "is not 1"_q);
    }
    const Json &configs = top.need("configs");
    if (!configs.is_object()) {
        throw top.refusal("configs", "is %1, not an object"_q.arg(jsonKind(configs)));
    }
    top.refuseOthers();

    QVector<Assignment> assignments;
    for (auto field = configs.begin(); field != configs.end(); ++field) {
        const QString id = QString::fromStdString(field.key());
        const Place at = place.in("configs[%1]"_q.arg(quoted(id)));
        const int index = items.indexOf(id);
        if (index < 0 || items.at(index).kind != ItemKind::Config) {
            throw at.refusal("is not a config here"_q);
        }
        assignments.append({ index, valueFromJson(items.at(index).type, *field, at) });
    }
    return assignments;
}
