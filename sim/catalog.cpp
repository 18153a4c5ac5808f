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
    return place.in(QStringLiteral("line %1, column %2").arg(before.count('\n') + 1).arg(column))
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
            throw syntaxFault(text, position(),
                              QStringLiteral("the key %1 is there already").arg(quoted(key)),
                              place);
        }
        if (depth > deepest) {
            throw syntaxFault(text, position(), QStringLiteral("nested too deeply"), place);
        }
        return true;
    };
    // The parser takes U+0000 for the end.
    if (const int nul = text.indexOf('\0'); nul >= 0) {
        throw syntaxFault(text, nul + 1, QStringLiteral("U+0000 is no character of JSON"), place);
    }
    try {
        Json json = Json::parse(stream, check);
        if (!json.is_object()) {
            throw syntaxFault(text, 1, QStringLiteral("is %1, not an object").arg(jsonKind(json)),
                              place);
        }
        return json;
    } catch (const Json::exception &error) {
        const auto *syntax = dynamic_cast<const Json::parse_error *>(&error);
        const auto at =
            syntax == nullptr ? static_cast<qint64>(position()) : static_cast<qint64>(syntax->byte);
        // What the library says begins with its own name and the place.
        static const QRegularExpression beginning(
            QStringLiteral("\\A\\[[^]]*\\] (parse error at line \\d+, column \\d+: )?"));
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
            throw place.refusal(QStringLiteral("is %1, not an object").arg(jsonKind(object)));
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
        taken.append(QString::fromLatin1(key));
        const auto found = object.find(key);
        return found == object.end() ? nullptr : &*found;
    }
    /// A field that must be there.
    const Json &need(const char *key)
    {
        const Json *found = find(key);
        if (found == nullptr) {
            throw refusal(key, QStringLiteral("is missing"));
        }
        return *found;
    }
    QString text(const char *key)
    {
        return valueFromJson(ValueType::String, need(key), in(key)).toString();
    }
    QString name(const char *key)
    {
        const QString found = text(key);
        if (found.isEmpty()) {
            throw refusal(key, QStringLiteral("is empty"));
        }
        return found;
    }
    const Json &array(const char *key)
    {
        const Json &found = need(key);
        if (!found.is_array()) {
            throw refusal(key, QStringLiteral("is %1, not an array").arg(jsonKind(found)));
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
            throw refusal(key, QStringLiteral("is %1, not a number").arg(jsonKind(*found)));
        }
        const int number = valueFromJson(ValueType::Int32, *found, in(key)).toInt();
        if (number < least || number > greatest) {
            throw refusal(
                key, QStringLiteral("%1 is not in %2 to %3").arg(number).arg(least).arg(greatest));
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
                    .refusal(QStringLiteral("is not known; fields are %1")
                                 .arg(taken.join(QLatin1String(", "))));
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
        // LogGetIds joins the names by blanks, and the debug log's commands separate them by
        // commas.
        catalog.logs =
            readNames(top, "logs", QRegularExpression(QStringLiteral("\\A[^\\s[:cntrl:]:]+\\z")),
                      "a name without blanks and colons");
        catalog.debugLogs = readNames(
            top, "debugLogs", QRegularExpression(QStringLiteral("\\ALOG_[^\\s[:cntrl:]:,a-z]+\\z")),
            "LOG_ and a name in upper case");
        top.refuseOthers();
    }

private:
    template <typename Read> static void readEntries(Fields &top, const char *key, Read read)
    {
        int index = 0;
        for (const Json &entry : top.array(key)) {
            Fields fields(entry, top.in(key).at(index++));
            read(fields);
            fields.refuseOthers();
        }
    }

    QString readId(Fields &fields)
    {
        const QString id = fields.name("id");
        if (indexes.contains(id)) {
            throw fields.refusal("id", QStringLiteral("%1 is there already").arg(quoted(id)));
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
            throw fields.refusal("type",
                                 QStringLiteral("%1 is not a type; types are %2")
                                     .arg(quoted(typeText), typeNames()));
        }
        item.type = *type;
        item.value = fields.value(item.type, "value");
        item.status = fields.integer("status", std::numeric_limits<int>::min(),
                                     std::numeric_limits<int>::max(), 0);
        indexes[item.id] = catalog.items.size();
        catalog.items.append(item);
    }

    void readAction(Fields &fields)
    {
        Action action;
        action.id = readId(fields);
        action.reply =
            fields.find("reply") == nullptr ? QStringLiteral("started") : fields.text("reply");
        action.duration = fields.integer("duration", 0, longestDuration, 0);
        if (fields.find("drive") != nullptr) {
            const QString id = fields.name("drive");
            action.drivenItem = indexes.value(id, -1);
            if (action.drivenItem < 0 || !isDriven(catalog.items.at(action.drivenItem))) {
                throw fields.refusal(
                    "drive",
                    QStringLiteral("%1 is not a result with a single number").arg(quoted(id)));
            }
        }
        if (fields.find("ends") == nullptr) {
            action.ends.append({ QStringLiteral("SigTestComplete"), { action.id } });
        } else {
            readEntries(fields, "ends",
                        [&action](Fields &end) { action.ends.append(readSignal(end)); });
        }
        catalog.actions.append(action);
    }

    static bool isDriven(const Item &item)
    {
        return item.kind == ItemKind::Result && isNumber(item.type);
    }

    static Signal readSignal(Fields &fields)
    {
        static const QString withData = QStringLiteral("SigTestCompleteWithData");
        static const QStringList members {
            QStringLiteral("SigAlarm"),
            QStringLiteral("SigError"),
            QStringLiteral("SigInfo"),
            QStringLiteral("SigTestComplete"),
            withData,
            QStringLiteral("SigUpdate"),
        };
        Signal signal { fields.name("signal"), {} };
        if (!members.contains(signal.member)) {
            throw fields.refusal(
                "signal",
                QStringLiteral("%1 is not a signal to send; signals are %2")
                    .arg(quoted(signal.member), members.join(QLatin1String(", "))));
        }
        signal.arguments.append(fields.text("message"));
        if (signal.member == withData) {
            const QString typeText = fields.name("type");
            const auto type = typeNamed(typeText);
            if (type != ValueType::DoubleArray && type != ValueType::Uint32Array) {
                throw fields.refusal(
                    "type",
                    QStringLiteral("%1 is neither double[] nor uint32[]").arg(quoted(typeText)));
            }
            signal.arguments.append(fields.value(*type, "data"));
        }
        return signal;
    }

    static QStringList readNames(Fields &top, const char *key, const QRegularExpression &form,
                                 const char *formInWords)
    {
        QStringList names;
        QSet<QString> known;
        for (const Json &entry : top.array(key)) {
            const Place place = top.in(key).at(names.size());
            const QString name =
                entry.is_string() ? QString::fromStdString(entry.get<std::string>()) : QString();
            if (!form.match(name).hasMatch()) {
                throw place.refusal(QStringLiteral("is not %1").arg(QLatin1String(formInWords)));
            }
            if (known.contains(name)) {
                throw place.refusal(QStringLiteral("%1 is there already").arg(quoted(name)));
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

Catalog readCatalog(const QByteArray &text, const QString &intro)
{
    const Place place { QStringLiteral("Catalog"), intro, {}, {}, {} };
    const Json json = parseJson(text, place);
    Fields top(json, place);
    Catalog catalog;
    CatalogReader(catalog).read(top);
    return catalog;
}

Catalog loadCatalog(const QString &fileName)
{
    if (fileName.isEmpty()) {
        return readCatalog(builtIn(QStringLiteral("catalog.json")));
    }
    const QString intro = QStringLiteral("the catalogue %1 is no good: ").arg(quoted(fileName));
    QFile file(fileName);
    const QByteArray bytes =
        file.open(QIODevice::ReadOnly) ? file.read(StateFiles::mostBytes + 1) : QByteArray();
    if (file.error() != QFileDevice::NoError) {
        throw Refusal { QStringLiteral("Catalog"), intro + file.errorString(), {} };
    }
    if (bytes.size() > StateFiles::mostBytes) {
        throw Refusal { QStringLiteral("Catalog"),
                        intro + QLatin1String("is larger than 16 MiB"),
                        {} };
    }
    return readCatalog(bytes, intro);
}

QByteArray builtIn(const QString &name)
{
    nameResources();
    QFile file(QLatin1String(":/movra-sim/") + name);
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
    const Place place { QStringLiteral("File"), intro, {}, after, {} };
    const Json json = parseJson(text, place);
    Fields top(json, place);
    if (top.need("format") != Json(1)) {
        throw top.refusal("format", QStringLiteral("is not 1"));
    }
    const Json &configs = top.need("configs");
    if (!configs.is_object()) {
        throw top.refusal("configs", QStringLiteral("is %1, not an object").arg(jsonKind(configs)));
    }
    top.refuseOthers();

    QVector<Assignment> assignments;
    for (auto field = configs.begin(); field != configs.end(); ++field) {
        const QString id = QString::fromStdString(field.key());
        const Place at = place.in(QStringLiteral("configs[%1]").arg(quoted(id)));
        const int index = items.indexOf(id);
        if (index < 0 || items.at(index).kind != ItemKind::Config) {
            throw at.refusal(QStringLiteral("is not a config here"));
        }
        assignments.append({ index, valueFromJson(items.at(index).type, *field, at) });
    }
    return assignments;
}
