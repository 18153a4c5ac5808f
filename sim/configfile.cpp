// SPDX-License-Identifier: MIT
#include "sim/configfile.h"

#include "sim/element.h"
#include "sim/jsonreader.h"
#include "sim/text.h"

#include <QJsonDocument>
#include <QJsonObject>

#include <limits>

namespace
{

constexpr int currentFormat = 1;

const QString formatKey = QStringLiteral("format");
const QString configsKey = QStringLiteral("configs");

} // namespace

QByteArray writeConfigs(const Items &items)
{
    QJsonObject configs;
    for (int index = 0; index < items.count(); ++index) {
        const Item &item = items.at(index);
        if (item.kind == ItemKind::Config) {
            configs.insert(item.id, valueToJson(item.type, item.value));
        }
    }
    return QJsonDocument(QJsonObject { { formatKey, currentFormat }, { configsKey, configs } })
        .toJson();
}

SavedConfigs readConfigs(const QByteArray &text, const Items &items)
{
    const JsonText json = parseJson(text);
    if (!json.problem.isEmpty()) {
        return { {}, json.problem };
    }
    FieldReader top(json.object, {});
    const QJsonValue format = top.any(formatKey);
    if (format != QJsonValue(currentFormat)) {
        top.refuse(formatKey, QStringLiteral("is not 1"));
    }
    const QJsonValue configs = top.any(configsKey);
    if (!configs.isObject()) {
        top.refuse(configsKey,
                   QStringLiteral("is %1, not an object").arg(element::jsonKind(configs.type())));
    }
    top.refuseOthers();

    SavedConfigs saved;
    const QJsonObject values = configs.toObject();
    for (auto field = values.begin(); field != values.end() && top.problem().isEmpty(); ++field) {
        const QString path = QStringLiteral("%1[%2]").arg(configsKey, quoted(field.key()));
        const int index = items.indexOf(field.key());
        if (index < 0 || items.at(index).kind != ItemKind::Config) {
            top.refuseAt(path + QLatin1String(": is not a config here"));
            continue;
        }
        const Conversion conversion = valueFromJson(items.at(index).type, field.value());
        if (!conversion.problem.isEmpty()) {
            const QString at = conversion.element < 0
                ? path
                : QStringLiteral("%1[%2]").arg(path, QString::number(conversion.element));
            top.refuseAt(at + QLatin1String(": ") + conversion.problem);
        }
        saved.assignments.append({ index, conversion.value });
    }
    saved.problem = top.problem();
    return saved;
}
