// SPDX-License-Identifier: MIT
// Strict reading of JSON texts that people write: what is wrong is told with its place.
#pragma once

#include <QByteArray>
#include <QJsonArray>
#include <QJsonObject>
#include <QJsonValue>
#include <QString>
#include <QStringList>

/// An object at the top of a JSON text, or what is wrong with the text.
struct JsonText {
    QJsonObject object;
    QString problem; ///< empty when the text is good; a syntax error comes with line and column
};

/// Parses a text that must hold one object.
JsonText parseJson(const QByteArray &text);

/// Takes the fields of one object, each at most once, and keeps the first thing that is wrong.
class FieldReader
{
public:
    /// `path` says where the object stands, such as `configs[3]`; it is empty at the top.
    /// A value that is no object is wrong already.
    FieldReader(const QJsonValue &value, QString path);

    /// What is wrong, such as `configs[3].type: is missing`; empty while all is well.
    const QString &problem() const { return firstProblem; }
    /// Notes that a field is wrong, unless something was wrong before.
    void refuse(const QString &key, const QString &reason);
    /// Notes a problem that carries its own path, unless something was wrong before.
    void refuseAt(const QString &problemWithPath);
    /// The field's place in the text.
    QString pathOf(const QString &key) const;

    /// Whether the field is there; it is still to be taken.
    bool has(const QString &key) const { return object.contains(key); }
    /// The value of a field that must be there, whatever its type.
    QJsonValue any(const QString &key);
    /// The text of a field that must be there.
    QString string(const QString &key);
    /// The text of a field that must be there and not be empty.
    QString name(const QString &key);
    /// The elements of a field that must be there.
    QJsonArray array(const QString &key);
    /// The whole number of a field that need not be there.
    int integer(const QString &key, int least, int greatest, int otherwise);

    /// Refuses the first field that nobody has taken.
    void refuseOthers();

private:
    QJsonObject object;
    QString place;
    QString firstProblem;
    QStringList taken;
};
