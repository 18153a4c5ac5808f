// SPDX-License-Identifier: MIT
// Setting configs: by text, by typed value, in lists, and what is refused.
#include "tests/sim/simrun.h"

#include <QDBusVariant>
#include <QTest>

#include <vector>

class tst_Setting : public SimTest
{
    Q_OBJECT

private Q_SLOTS:
    void textBecomesTheTypeOfTheItem_data();
    void textBecomesTheTypeOfTheItem();
    void typedValuesAreSetUnchanged_data();
    void typedValuesAreSetUnchanged();
    void valuesThatDoNotFitAreRefused_data();
    void valuesThatDoNotFitAreRefused();
    void aListIsSetInOrder();
    void aListIsSetAsAWholeOrNotAtAll();

private:
    QString set(const QString &id, const QVariant &value)
    {
        return answerTo(service->SetValue(id, QDBusVariant(value)));
    }
};

void tst_Setting::textBecomesTheTypeOfTheItem_data()
{
    QTest::addColumn<QString>("id");
    QTest::addColumn<QString>("value");
    QTest::addColumn<QString>("answer");
    const auto row = [](const char *name, const char *id, const char *value, const char *answer) {
        QTest::newRow(name) << text(id) << text(value) << text(answer);
    };
    row("a string", ":config:data:ftp:userName:", "anna", "v <'anna'>");
    row("an empty string", ":config:data:ftp:userName:", "", "v <''>");
    row("a string beyond ASCII", ":config:data:ftp:userName:", "\xc3\xa4", "v <'\xc3\xa4'>");
    row("an int32", ":config:data:ftp:port:", "2121", "v <2121>");
    row("a bool by a word", ":config:data:ftp:passive:", "false", "v <false>");
    row("a bool by a digit", ":config:data:ftp:passive:", "0", "v <false>");
    row("an uint32", ":config:data:ftp:retries:", "4294967295", "v <4294967295>");
    row("an int64", ":config:data:ftp:limit:", "-9223372036854775808", "v <-9223372036854775808>");
    row("an uint64", ":config:data:ftp:budget:", "18446744073709551614",
        "v <18446744073709551614>");
    row("a double", ":config:voip:jitter:", "1e-3", "v <0.001>");
}

void tst_Setting::textBecomesTheTypeOfTheItem()
{
    QFETCH(QString, id);
    QFETCH(QString, value);
    QFETCH(QString, answer);
    QCOMPARE(set(id, value), QString());
    QCOMPARE(answerTo(service->GetValue(id)), answer);
    QCOMPARE(takeHeard(), QStringList());
}

void tst_Setting::typedValuesAreSetUnchanged_data()
{
    QTest::addColumn<QString>("id");
    QTest::addColumn<QVariant>("value");
    QTest::addColumn<QString>("answer");
    const auto row = [](const char *name, const char *id, const QVariant &value,
                        const char *answer) {
        QTest::newRow(name) << text(id) << value << text(answer);
    };
    row("i", ":config:data:ftp:port:", -1, "v <-1>");
    row("b", ":config:data:ftp:passive:", false, "v <false>");
    row("u", ":config:data:ftp:retries:", 7U, "v <7>");
    row("x", ":config:data:ftp:limit:", QVariant::fromValue(qint64 { -7 }), "v <-7>");
    row("t", ":config:data:ftp:budget:", QVariant::fromValue(quint64 { 7 }), "v <7>");
    row("d", ":config:voip:jitter:", 0.25, "v <0.25>");
    row("as", ":config:data:ifnames:", QStringList { text("eth"), text("") }, "v <['eth', '']>");
    row("an empty as", ":config:data:ifnames:", QStringList {}, "v <[]>");
    row("ad",
        ":config:voip:delay:doubleARRAY:", QVariant::fromValue(std::vector<double> { 0.1, -2 }),
        "v <[0.1, -2]>");
    row("an empty ad",
        ":config:voip:delay:doubleARRAY:", QVariant::fromValue(std::vector<double> {}), "v <[]>");
    row("au", ":config:data:threshold:uint32ARRAY:",
        QVariant::fromValue(std::vector<uint32_t> { 0, 4294967295U }), "v <[0, 4294967295]>");
    row("ai", ":config:data:offset:int32ARRAY:",
        QVariant::fromValue(std::vector<int32_t> { -2147483647, 2147483647 }),
        "v <[-2147483647, 2147483647]>");
    row("at", ":config:data:quota:uint64ARRAY:",
        QVariant::fromValue(std::vector<quint64> { 18446744073709551615ULL }),
        "v <[18446744073709551615]>");
    row("ax", ":config:data:balance:int64ARRAY:",
        QVariant::fromValue(std::vector<qint64> { -9223372036854775807LL }),
        "v <[-9223372036854775807]>");
}

void tst_Setting::typedValuesAreSetUnchanged()
{
    QFETCH(QString, id);
    QFETCH(QVariant, value);
    QFETCH(QString, answer);
    QCOMPARE(set(id, value), QString());
    QCOMPARE(answerTo(service->GetValue(id)), answer);
}

void tst_Setting::valuesThatDoNotFitAreRefused_data()
{
    QTest::addColumn<QString>("id");
    QTest::addColumn<QVariant>("value");
    QTest::addColumn<QString>("name");
    QTest::addColumn<QString>("sentence");
    const auto row = [](const char *rowName, const char *id, const QVariant &value,
                        const char *name, const char *sentence) {
        QTest::newRow(rowName) << text(id) << value << text("varn.pim.Error.") + text(name)
                               << text(sentence);
    };
    row("an unknown id", ":config:nothing:", text("1"), "UnknownId",
        "There is no \":config:nothing:\" here.");
    row("a result", ":result:data:ftp:percentTransfered:0:", text("1"), "ReadOnly",
        "\":result:data:ftp:percentTransfered:0:\" is a result, which cannot be set.");
    row("an action", ":action:data:ftp:ping:", text("1"), "UnknownId",
        "There is no \":action:data:ftp:ping:\" here.");
    row("text out of range", ":config:data:ftp:port:", text("2147483648"), "BadValue",
        "\":config:data:ftp:port:\" cannot be set: \"2147483648\" does not fit int32.");
    row("text that is no number", ":config:data:ftp:port:", text("ftp"), "BadValue",
        "\":config:data:ftp:port:\" cannot be set: \"ftp\" is not a whole number.");
    row("text with a line end", ":config:data:ftp:passive:", text("true\n"), "BadValue",
        "\":config:data:ftp:passive:\" cannot be set: \"true \" is not true, false, 1 or 0.");
    row("text for an array", ":config:data:threshold:uint32ARRAY:", text("1 2"), "BadValue",
        "\":config:data:threshold:uint32ARRAY:\" is an array of type uint32[]; SETARRAY sets it.");
    row("text for an array of strings", ":config:data:ifnames:", text("wifi"), "BadValue",
        "\":config:data:ifnames:\" is an array of type string[]; SETARRAY sets it.");
    row("a number for a string", ":config:data:ftp:userName:", 5, "BadValue",
        "\":config:data:ftp:userName:\" cannot be set: a value of D-Bus type \"i\" is not of type "
        "\"s\".");
    row("a number of another width", ":config:data:ftp:limit:", 5, "BadValue",
        "\":config:data:ftp:limit:\" cannot be set: a value of D-Bus type \"i\" is not of type "
        "\"x\".");
    row("an array for a single value",
        ":config:voip:jitter:", QVariant::fromValue(std::vector<double> { 1 }), "BadValue",
        "\":config:voip:jitter:\" cannot be set: a value of D-Bus type \"ad\" is not of type "
        "\"d\".");
    row("an array of another kind",
        ":config:data:offset:int32ARRAY:", QVariant::fromValue(std::vector<uint32_t> { 1 }),
        "BadValue",
        "\":config:data:offset:int32ARRAY:\" cannot be set: a value of D-Bus type \"au\" is not of "
        "type \"ai\".");
    row("a table", ":config:data:ftp:userName:", QVariantMap { { text("a"), 1 } }, "BadValue",
        "\":config:data:ftp:userName:\" cannot be set: a value of D-Bus type \"a{sv}\" is not of "
        "type \"s\".");
    row("bytes for an array", ":config:data:offset:int32ARRAY:", QByteArray("ab"), "BadValue",
        "\":config:data:offset:int32ARRAY:\" cannot be set: a value of D-Bus type \"ay\" is not of "
        "type \"ai\".");
}

void tst_Setting::valuesThatDoNotFitAreRefused()
{
    QFETCH(QString, id);
    QFETCH(QVariant, value);
    QFETCH(QString, name);
    QFETCH(QString, sentence);
    const QString before = answerTo(service->GetValue(id));
    QCOMPARE(set(id, value), name + text(": ") + sentence);
    QCOMPARE(answerTo(service->GetValue(id)), before);
    QCOMPARE(takeHeard(), QStringList { text("SigError ") + sentence });
}

void tst_Setting::aListIsSetInOrder()
{
    const QString port = text(":config:data:ftp:port:");
    const QString names = text(":config:data:ifnames:");
    QCOMPARE(answerTo(service->SetValue(QList<IdValueStruct> {
                 { port, text("22") }, { names, QStringList { text("a") } }, { port, 23 } })),
             QString());
    QCOMPARE(answerTo(service->GetValue(QStringList { port, names })),
             text("a(sv) [(':config:data:ftp:port:', <23>), (':config:data:ifnames:', <['a']>)]"));
    QCOMPARE(answerTo(service->SetValue(QList<IdValueStruct> {})), QString());
}

void tst_Setting::aListIsSetAsAWholeOrNotAtAll()
{
    const QString port = text(":config:data:ftp:port:");
    QCOMPARE(
        answerTo(service->SetValue(QList<IdValueStruct> {
            { port, text("22") }, { text(":result:voip:call:active:"), text("1") } })),
        text("varn.pim.Error.ReadOnly: \":result:voip:call:active:\" is a result, which cannot be "
             "set."));
    QCOMPARE(answerTo(service->GetValue(port)), text("v <21>"));
    QCOMPARE(takeHeard(),
             QStringList { text(
                 "SigError \":result:voip:call:active:\" is a result, which cannot be set.") });
}

QTEST_GUILESS_MAIN(tst_Setting)
#include "tst_setting.moc"
