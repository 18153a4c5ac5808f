// SPDX-License-Identifier: MIT
#include "sim/catalog.h"

#include "sim/jsonreader.h"
#include "sim/text.h"
#include "sim/value.h"

#include <QJsonArray>
#include <QJsonValue>
#include <QLatin1String>
#include <QRegularExpression>
#include <QSet>

#include <limits>

namespace
{

constexpr int longestDuration = 3600000;

QString indexed(const QString &path, int index)
{
    return QStringLiteral("%1[%2]").arg(path, QString::number(index));
}

/// Reads the parts of a catalogue one after the other, up to the first thing that is wrong.
class CatalogReader
{
public:
    CatalogText read(const QByteArray &text);

private:
    using EntryReader = void (CatalogReader::*)(FieldReader &fields);

    void readEntries(FieldReader &top, const QString &key, EntryReader readEntry);
    void readConfig(FieldReader &fields) { readItem(fields, ItemKind::Config); }
    void readResult(FieldReader &fields) { readItem(fields, ItemKind::Result); }
    void readItem(FieldReader &fields, ItemKind kind);
    void readAction(FieldReader &fields);
    int readDriven(FieldReader &fields) const;
    static QVector<ActionEnd> readEnds(FieldReader &fields, const QString &id);
    static ActionEnd readEnd(FieldReader &fields);
    static QVariant readData(FieldReader &fields);
    static QStringList readNames(FieldReader &top, const QString &key,
                                 const QRegularExpression &form, const QString &formInWords);
    QString readId(FieldReader &fields);

    Catalog catalog;
    QSet<QString> ids;
};

CatalogText CatalogReader::read(const QByteArray &text)
{
    const JsonText json = parseJson(text);
    if (!json.problem.isEmpty()) {
        return { {}, json.problem };
    }
    FieldReader top(json.object, {});
    readEntries(top, QStringLiteral("configs"), &CatalogReader::readConfig);
    readEntries(top, QStringLiteral("results"), &CatalogReader::readResult);
    readEntries(top, QStringLiteral("actions"), &CatalogReader::readAction);
    // LogGetIds joins the names by blanks, and the debug log's commands separate them by commas.
    catalog.logs = readNames(top, QStringLiteral("logs"),
                             QRegularExpression(QStringLiteral("\\A[^\\s[:cntrl:]:]+\\z")),
                             QStringLiteral("a name without blanks and colons"));
    catalog.debugLogs =
        readNames(top, QStringLiteral("debugLogs"),
                  QRegularExpression(QStringLiteral("\\ALOG_[^\\s[:cntrl:]:,a-z]+\\z")),
                  QStringLiteral("LOG_ and a name in upper case"));
    top.refuseOthers();
    return { catalog, top.problem() };
}

void CatalogReader::readEntries(FieldReader &top, const QString &key, EntryReader readEntry)
{
    const QJsonArray entries = top.array(key);
    for (int index = 0; index < entries.size() && top.problem().isEmpty(); ++index) {
        FieldReader fields(entries.at(index), indexed(key, index));
        (this->*readEntry)(fields);
        fields.refuseOthers();
        top.refuseAt(fields.problem());
    }
}

QString CatalogReader::readId(FieldReader &fields)
{
    const QString key = QStringLiteral("id");
    QString id = fields.name(key);
    if (ids.contains(id)) {
        fields.refuse(key, QStringLiteral("%1 is there already").arg(quoted(id)));
    }
    ids.insert(id);
    return id;
}

void CatalogReader::readItem(FieldReader &fields, ItemKind kind)
{
    const QString id = readId(fields);
    const QString typeText = fields.name(QStringLiteral("type"));
    const auto type = typeNamed(typeText);
    if (!type) {
        fields.refuse(QStringLiteral("type"),
                      QStringLiteral("%1 is not a type").arg(quoted(typeText)));
        return;
    }
    const QString key = QStringLiteral("value");
    const Conversion conversion = valueFromJson(*type, fields.any(key));
    if (!conversion.problem.isEmpty()) {
        fields.refuse(conversion.element < 0 ? key : indexed(key, conversion.element),
                      conversion.problem);
    }
    const int status = fields.integer(QStringLiteral("status"), std::numeric_limits<int>::min(),
                                      std::numeric_limits<int>::max(), 0);
    catalog.items.append({ id, kind, *type, conversion.value, status });
}

void CatalogReader::readAction(FieldReader &fields)
{
    Action action;
    action.id = readId(fields);
    const QString replyKey = QStringLiteral("reply");
    action.reply = fields.has(replyKey) ? fields.string(replyKey) : QStringLiteral("started");
    action.duration = fields.integer(QStringLiteral("duration"), 0, longestDuration, 0);
    action.drivenItem = readDriven(fields);
    action.ends = readEnds(fields, action.id);
    catalog.actions.append(action);
}

int CatalogReader::readDriven(FieldReader &fields) const
{
    const QString key = QStringLiteral("drive");
    if (!fields.has(key)) {
        return -1;
    }
    const QString id = fields.name(key);
    for (int index = 0; index < catalog.items.size(); ++index) {
        const Item &item = catalog.items.at(index);
        if (item.id == id && item.kind == ItemKind::Result && isNumber(item.type)) {
            return index;
        }
    }
    fields.refuse(key, QStringLiteral("%1 is not a result with a single number").arg(quoted(id)));
    return -1;
}

QVector<ActionEnd> CatalogReader::readEnds(FieldReader &fields, const QString &id)
{
    const QString key = QStringLiteral("ends");
    if (!fields.has(key)) {
        return { { QStringLiteral("SigTestComplete"), id, {} } };
    }
    QVector<ActionEnd> ends;
    const QJsonArray entries = fields.array(key);
    for (int index = 0; index < entries.size() && fields.problem().isEmpty(); ++index) {
        FieldReader end(entries.at(index), indexed(fields.pathOf(key), index));
        ends.append(readEnd(end));
        end.refuseOthers();
        fields.refuseAt(end.problem());
    }
    return ends;
}

ActionEnd CatalogReader::readEnd(FieldReader &fields)
{
    static const QString withData = QStringLiteral("SigTestCompleteWithData");
    static const QStringList members {
        QStringLiteral("SigAlarm"),        QStringLiteral("SigError"),  QStringLiteral("SigInfo"),
        QStringLiteral("SigTestComplete"), QStringLiteral("SigUpdate"), withData,
    };
    const QString key = QStringLiteral("signal");
    ActionEnd end;
    end.member = fields.name(key);
    if (!members.contains(end.member)) {
        fields.refuse(
            key, QStringLiteral("%1 is not a signal that ends an action").arg(quoted(end.member)));
    }
    end.message = fields.string(QStringLiteral("message"));
    if (end.member == withData) {
        end.data = readData(fields);
    }
    return end;
}

QVariant CatalogReader::readData(FieldReader &fields)
{
    const QString typeText = fields.name(QStringLiteral("type"));
    const auto type = typeNamed(typeText);
    if (type != ValueType::DoubleArray && type != ValueType::Uint32Array) {
        fields.refuse(QStringLiteral("type"),
                      QStringLiteral("%1 is neither double[] nor uint32[]").arg(quoted(typeText)));
        return {};
    }
    const QString key = QStringLiteral("data");
    const Conversion conversion = valueFromJson(*type, fields.any(key));
    if (!conversion.problem.isEmpty()) {
        fields.refuse(conversion.element < 0 ? key : indexed(key, conversion.element),
                      conversion.problem);
    }
    return conversion.value;
}

QStringList CatalogReader::readNames(FieldReader &top, const QString &key,
                                     const QRegularExpression &form, const QString &formInWords)
{
    QStringList names;
    const QJsonArray entries = top.array(key);
    for (int index = 0; index < entries.size(); ++index) {
        const QString name = entries.at(index).toString();
        if (!form.match(name).hasMatch()) {
            top.refuse(indexed(key, index), QStringLiteral("is not %1").arg(formInWords));
        } else if (names.contains(name)) {
            top.refuse(indexed(key, index),
                       QStringLiteral("%1 is there already").arg(quoted(name)));
        }
        names.append(name);
    }
    return names;
}

} // namespace

CatalogText readCatalog(const QByteArray &text)
{
    return CatalogReader().read(text);
}
