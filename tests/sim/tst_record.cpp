// SPDX-License-Identifier: MIT
// The record of calls and signals: one JSON object on each line.
#include "tests/sim/simrun.h"

#include <QDBusConnection>
#include <QDBusObjectPath>
#include <QDBusVariant>
#include <QRegularExpression>
#include <QTest>

#include <csignal>
#include <functional>
#include <vector>

using Call = std::function<QDBusPendingCall(KorAppInterface &service)>;
Q_DECLARE_METATYPE(Call)

namespace
{

const QString port = text(":config:data:ftp:port:");

QDBusPendingCall callOf(const char *member, const QVariantList &arguments)
{
    QDBusMessage message = QDBusMessage::createMethodCall(text("com.varn.tul"), text("/"),
                                                          text("varn.pim"), text(member));
    message.setArguments(arguments);
    return QDBusConnection::sessionBus().asyncCall(message);
}

} // namespace

class tst_Record : public SimTest
{
    Q_OBJECT

private Q_SLOTS:
    void aCallIsOneLine_data();
    void aCallIsOneLine();
    void signalsAreLinesInTheirOrder();
    void everyRecordHasATimeAndEveryCallASender();
    void theRecordMayGoToStandardOutput();
    void aRecordThatCannotBeWrittenEndsTheProgram_data();
    void aRecordThatCannotBeWrittenEndsTheProgram();

private:
    bool startWithRecord(const QStringList &options = {})
    {
        return stop() && start(QStringList { text("--log"), pathOf(text("record")) } + options);
    }
    /// The lines without times and senders.
    QStringList lines() const
    {
        static const QRegularExpression changing(
            text("\"time\":\"[0-9T:.-]+Z\",|\"sender\":\":[0-9.]+\","));
        QStringList found =
            QString::fromUtf8(contentsOf(text("record"))).remove(changing).split(text("\n"));
        return found.takeLast().isEmpty() ? found : QStringList { text("no line end") };
    }
};

void tst_Record::aCallIsOneLine_data()
{
    QTest::addColumn<QString>("fault");
    QTest::addColumn<Call>("call");
    QTest::addColumn<QString>("line");
    using Service = KorAppInterface;
    const auto row = [](const char *name, const char *fault, const Call &call, const char *line) {
        QTest::newRow(name) << text(fault) << call << text(line);
    };
    row(
        "no argument and a list", "", [](Service &s) { return s.DbgLogGetIds(); },
        R"x({"call":"DbgLogGetIds","signature":"","arguments":[],"answer":[["LOG_DATA","LOG_VOIP","LOG_XDSL"]]})x");
    row(
        "an answer without values", "", [](Service &s) { return s.AddToNotifyList(port); },
        R"x({"call":"AddToNotifyList","signature":"s","arguments":[":config:data:ftp:port:"],"answer":[]})x");
    row(
        "a number of 64 bits is written as text", "",
        [](Service &s) { return s.GetValue(text(":config:data:ftp:budget:")); },
        R"x({"call":"GetValue","signature":"s","arguments":[":config:data:ftp:budget:"],"answer":["18446744073709551615"]})x");
    row(
        "records", "",
        [](Service &s) {
            return s.GetValueStatus(QStringList { port, text(":config:voip:jitter:") });
        },
        R"x({"call":"GetValueStatus","signature":"as","arguments":[[":config:data:ftp:port:",":config:voip:jitter:"]],"answer":[[[":config:data:ftp:port:",21,0],[":config:voip:jitter:",2.5,1]]]})x");
    row(
        "one record", "", [](Service &s) { return s.GetValueStatus(port); },
        R"x({"call":"GetValueStatus","signature":"s","arguments":[":config:data:ftp:port:"],"answer":[[":config:data:ftp:port:",21,0]]})x");
    row(
        "values without statuses", "", [](Service &s) { return s.GetValue(QStringList { port }); },
        R"x({"call":"GetValue","signature":"as","arguments":[[":config:data:ftp:port:"]],"answer":[[[":config:data:ftp:port:",21]]]})x");
    row(
        "statuses", "", [](Service &s) { return s.GetStatus(QStringList { port }); },
        R"x({"call":"GetStatus","signature":"as","arguments":[[":config:data:ftp:port:"]],"answer":[[0]]})x");
    row(
        "an array", "",
        [](Service &s) {
            return s.SetValue(
                text(":config:voip:delay:doubleARRAY:"),
                QDBusVariant(QVariant::fromValue(std::vector<double> { 0.5, qInf(), qQNaN() })));
        },
        R"x({"call":"SetValue","signature":"sv","arguments":[":config:voip:delay:doubleARRAY:",[0.5,"inf","nan"]],"answer":[]})x");
    row(
        "a refusal", "", [](Service &s) { return s.GetValue(text("\"\xc3\xa4\n")); },
        "{\"call\":\"GetValue\",\"signature\":\"s\",\"arguments\":[\"\\\"\xc3\xa4\\n\"],"
        "\"refusal\":{\"name\":\"varn.pim.Error.UnknownId\",\"sentence\":\"There is no "
        "\\\"\\\"\xc3\xa4 \\\" here.\"}}");
    row(
        "a method that is not there", "",
        [](Service &) {
            return callOf("Reboot",
                          { QVariant::fromValue(QDBusObjectPath(text("/a"))),
                            QByteArray("\x01\xff"), QVariantMap { { text("k"), 5 } } });
        },
        R"x({"call":"Reboot","signature":"oaya{sv}","arguments":["/a",[1,255],[["k",5]]],"refusal":{"name":"org.freedesktop.DBus.Error.UnknownMethod","sentence":"No such method 'Reboot' in interface 'varn.pim' at object path '/' (signature 'oaya{sv}')"}})x");
    row(
        "a fault that refuses", "GetValue=refuse:locked",
        [](Service &s) { return s.GetValue(port); },
        R"x({"call":"GetValue","signature":"s","arguments":[":config:data:ftp:port:"],"refusal":{"name":"varn.pim.Error.Refused","sentence":"locked"}})x");
    row(
        "a fault with another type", "GetStatus=wrong-type",
        [](Service &s) { return s.GetStatus(port); },
        R"x({"call":"GetStatus","signature":"s","arguments":[":config:data:ftp:port:"],"answer":[1.5]})x");
}

void tst_Record::aCallIsOneLine()
{
    QFETCH(QString, fault);
    QFETCH(Call, call);
    QFETCH(QString, line);
    QVERIFY(
        startWithRecord(fault.isEmpty() ? QStringList() : QStringList { text("--fault"), fault }));
    call(*service).waitForFinished();
    // A line is written before the answer is sent.
    QCOMPARE(lines(), QStringList { line });
}

void tst_Record::signalsAreLinesInTheirOrder()
{
    QVERIFY(startWithRecord({ text("--fault"), text("GetStatus=silence") }));
    service->GetStatus(port);
    service->SetValue(port, QDBusVariant(text("x")));
    service->DoAction(text(":action:data:threshold:scan:"));
    QVERIFY(hear(text("SigTestCompleteWithData scan done au 10 21 4294967295")));
    QCOMPARE(
        lines(),
        (QStringList {
            text(
                R"x({"call":"GetStatus","signature":"s","arguments":[":config:data:ftp:port:"]})x"),
            text(
                R"x({"signal":"SigError","signature":"s","arguments":["\":config:data:ftp:port:\" cannot be set: \"x\" is not a whole number."]})x"),
            text(
                R"x({"call":"SetValue","signature":"sv","arguments":[":config:data:ftp:port:","x"],"refusal":{"name":"varn.pim.Error.BadValue","sentence":"\":config:data:ftp:port:\" cannot be set: \"x\" is not a whole number."}})x"),
            text(
                R"x({"signal":"SigInfo","signature":"s","arguments":[":action:data:threshold:scan: started"]})x"),
            text(
                R"x({"call":"DoAction","signature":"s","arguments":[":action:data:threshold:scan:"],"answer":[]})x"),
            text(
                R"x({"signal":"SigTestCompleteWithData","signature":"sau","arguments":["scan done",[10,21,4294967295]]})x"),
        }));
}

void tst_Record::everyRecordHasATimeAndEveryCallASender()
{
    QVERIFY(startWithRecord());
    service->DBusServerStatus().waitForFinished();
    const QString line = QString::fromUtf8(contentsOf(text("record")));
    const QRegularExpression form(
        text("\\A\\{\"time\":\"\\d{4}-\\d\\d-\\d\\dT\\d\\d:\\d\\d:\\d\\d\\.\\d{3}Z\","
             "\"call\":\"DBusServerStatus\",\"sender\":\"%1\",\"signature\":\"\",")
            .arg(QDBusConnection::sessionBus().baseService()));
    QVERIFY2(form.match(line).hasMatch(), qPrintable(line));
}

void tst_Record::theRecordMayGoToStandardOutput()
{
    QVERIFY(stop());
    QVERIFY(start({ text("--log"), text("-") }));
    service->DBusServerStatus().waitForFinished();
    QVERIFY(simulator->canReadLine() || simulator->waitForReadyRead(patienceMs));
    const QByteArray line = simulator->readLine();
    QVERIFY2(line.endsWith("\"signature\":\"\",\"arguments\":[],\"answer\":[0]}\n"),
             line.constData());
}

void tst_Record::aRecordThatCannotBeWrittenEndsTheProgram_data()
{
    QTest::addColumn<QString>("file");
    QTest::addColumn<bool>("starts");
    QTest::addColumn<QByteArray>("complaint");
    QTest::newRow("a directory") << text("/") << false
                                 << QByteArray("movra-sim: the log \"/\" cannot be written: Is a "
                                               "directory\n");
    QTest::newRow("a device that is full")
        << text("/dev/full") << true
        << QByteArray("movra-sim: the log \"/dev/full\" cannot be written: No space left on "
                      "device\n");
}

void tst_Record::aRecordThatCannotBeWrittenEndsTheProgram()
{
    QFETCH(QString, file);
    QFETCH(bool, starts);
    QFETCH(QByteArray, complaint);
    QVERIFY(stop());
    QProcess process;
    QCOMPARE(startSimulator(process, { text("--log"), file }), starts);
    if (starts) {
        QCOMPARE(answerTo(service->DBusServerStatus()), text("i 0"));
    }
    QVERIFY(process.state() == QProcess::NotRunning || process.waitForFinished(patienceMs));
    QCOMPARE(process.exitCode(), 7);
    QCOMPARE(process.readAllStandardError(), complaint);
}

QTEST_GUILESS_MAIN(tst_Record)
#include "tst_record.moc"
