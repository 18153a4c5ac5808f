// SPDX-License-Identifier: MIT
#include "sim/jsonreader.h"

#include "sim/element.h"
#include "sim/jsonscan.h"
#include "sim/text.h"

#include <QJsonDocument>
#include <QJsonParseError>

#include <utility>

namespace
{

QString placeOf(const QByteArray &text, int offset)
{
    const QByteArray before = text.left(offset);
    const int line = before.count('\n') + 1;
    const int column = QString::fromUtf8(before.mid(before.lastIndexOf('\n') + 1)).size() + 1;
    return QStringLiteral("line %1, column %2").arg(line).arg(column);
}

} // namespace

JsonText parseJson(const QByteArray &text)
{
    if (const auto fault = findJsonFault(text)) {
        return { {}, placeOf(text, fault->offset) + QLatin1String(": ") + fault->reason };
    }
    QJsonParseError error;
    const QJsonDocument document = QJsonDocument::fromJson(text, &error);
    if (error.error != QJsonParseError::NoError) {
        return { {}, placeOf(text, error.offset) + QLatin1String(": ") + error.errorString() };
    }
    if (!document.isObject()) {
        return { {}, QStringLiteral("line 1, column 1: is an array, not an object") };
    }
    return { document.object(), {} };
}

FieldReader::FieldReader(const QJsonValue &value, QString path)
    : object(value.toObject())
    , place(std::move(path))
{
    if (!value.isObject()) {
        refuseAt(
            QStringLiteral("%1: is %2, not an object").arg(place, element::jsonKind(value.type())));
    }
}

void FieldReader::refuse(const QString &key, const QString &reason)
{
    refuseAt(pathOf(key) + QLatin1String(": ") + reason);
}

void FieldReader::refuseAt(const QString &problemWithPath)
{
    if (firstProblem.isEmpty()) {
        firstProblem = problemWithPath;
    }
}

QString FieldReader::pathOf(const QString &key) const
{
    return place.isEmpty() ? key : place + QLatin1Char('.') + key;
}

QJsonValue FieldReader::any(const QString &key)
{
    taken.append(key);
    if (!object.contains(key)) {
        refuse(key, QStringLiteral("is missing"));
    }
    return object.value(key);
}

QString FieldReader::string(const QString &key)
{
    QString text;
    const QJsonValue value = any(key);
    const QString problem = element::read(value, text);
    if (!problem.isEmpty()) {
        refuse(key, problem);
    }
    return text;
}

QString FieldReader::name(const QString &key)
{
    QString text = string(key);
    if (text.isEmpty()) {
        refuse(key, QStringLiteral("is empty"));
    }
    return text;
}

QJsonArray FieldReader::array(const QString &key)
{
    const QJsonValue value = any(key);
    if (!value.isArray()) {
        refuse(key, QStringLiteral("is %1, not an array").arg(element::jsonKind(value.type())));
    }
    return value.toArray();
}

int FieldReader::integer(const QString &key, int least, int greatest, int otherwise)
{
    if (!has(key)) {
        return otherwise;
    }
    const QJsonValue value = any(key);
    int number = otherwise;
    const QString problem = element::read(value, number);
    if (!value.isDouble()) {
        refuse(key, QStringLiteral("is %1, not a number").arg(element::jsonKind(value.type())));
    } else if (!problem.isEmpty()) {
        refuse(key, problem);
    } else if (number < least || number > greatest) {
        refuse(key, QStringLiteral("%1 is not in %2 to %3").arg(number).arg(least).arg(greatest));
    }
    return number;
}

void FieldReader::refuseOthers()
{
    for (const QString &key : object.keys()) {
        if (!taken.contains(key)) {
            refuse(shown(key), QStringLiteral("is not known"));
            return;
        }
    }
}
