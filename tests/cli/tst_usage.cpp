// SPDX-License-Identifier: MIT
// The exact usage text, and the words that ask for it. There is no bus.
#include "tests/support/program.h"

#include <QTest>

namespace
{

const char *const usage = R"(Command should look similar to following:

   movra com.varn.tul / DBG SET "LOG_XDSL, 0, ENABLED"
   movra com.varn.tul / DBG SET_ALL "LOG_XDSL, ENABLED"
   movra com.varn.tul / DBG SET_ALL "LOG_XDSL, ENABLED"
   movra com.varn.tul / DBG SET_REPORTING_LEVEL ERROR
   movra com.varn.tul / DBG SET_REPORTING_LEVEL INFO
   movra com.varn.tul / DBG SET_REPORTING_LEVEL DEBUG
   movra com.varn.tul / DBG SET_REPORTING_LEVEL DEBUG1
   movra com.varn.tul / DBG SET_REPORTING_LEVEL DEBUG2
   movra com.varn.tul / DBG SET_REPORTING_LEVEL DEBUG3
   movra com.varn.tul / DBG SET_REPORTING_LEVEL DEBUG4
   movra com.varn.tul / DBG SAVE_TO /tmp/capture1.txt
   movra com.varn.tul / DBG SAVE_STOP
   movra com.varn.tul / DBG GET_IDS

   movra com.varn.tul / SIG

   movra com.varn.tul / NOTIFY CONFIG [ START | STOP | CLEAR | ADD <id> | DEL <id> ]
   movra com.varn.tul / NOTIFY RESULT [ START | STOP | CLEAR | ADD <id> | DEL <id> ]
   movra com.varn.tul / NOTIFY LOG [ START <id> | STOP <id> | CLEAR <id> ]
      Example:
       movra com.varn.tul / NOTIFY CONFIG START
       movra com.varn.tul / NOTIFY RESULT START
       movra com.varn.tul / NOTIFY RESULT ADD :result:data:ftp:percentTransfered:0:
       movra com.varn.tul / SIG

   movra com.varn.tul / SET <id> <value>
   movra com.varn.tul / SETARRAY <id> <length> <values>
      Example:
       movra com.varn.tul / SETARRAY :config:voip:delay: 5 1.1 2.2 3.3 4.4 5.5
       movra com.varn.tul / SETARRAY :config:data:ifnames: 2 wifi bluetooth
       movra com.varn.tul / SETARRAY :config:data:threshold: 3 10 21 40

   movra com.varn.tul / GET <id>
   movra com.varn.tul / GET [ ALL | STATUS | VALUE | VAL_STAT | VAL_STAT_SEVER ] <id>
      Example:
       movra com.varn.tul / SET :config:data:ftp:userName: pordo_user
       movra com.varn.tul / GET ALL :config:data:ftp:userName:
       movra com.varn.tul / GET STATUS :config:data:ftp:userName:
       movra com.varn.tul / GET VALUE :config:data:ftp:userName:
       movra com.varn.tul / GET :config:data:ftp:userName:

   movra com.varn.tul / LIST [ RESULTS | CONFIGS | ACTIONS | LOGS ]
   movra com.varn.tul / FILE [ LOAD <filename> | SAVE <filename> ]
   movra com.varn.tul / ACTION [ <string> ]
   movra com.varn.tul / SERVERSTAT)" // this line and the next end in a blank
                          " \n"
                          R"(   movra com.varn.tul / SERVERCMD [ SET_RES_NOTIFY_TIMER | )"
                          R"(SET_CFG_NOTIFY_TIMER <timeout in ms> )"
                          R"(

    Note: First two args are service name and path for dest dbus server
)";

} // namespace

class tst_Usage : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void usageText_data();
    void usageText();
};

void tst_Usage::usageText_data()
{
    QTest::addColumn<QByteArrayList>("arguments");
    QTest::addColumn<QByteArrayList>("environment");

    const QByteArrayList none;
    const QByteArrayList request { "com.varn.tul", "/", "GET" };
    QTest::newRow("no arguments") << none << none;
    QTest::newRow("one argument") << request.mid(0, 1) << none;
    QTest::newRow("two arguments") << request.mid(0, 2) << none;
    for (const char *help : { "-h", "-help", "-hx", "--h", "--help" }) {
        QTest::addRow("%s", help) << QByteArrayList { help } << none;
        QTest::addRow("%s with a whole request after it", help)
            << QByteArrayList { help, "/", "GET", "x" } << none;
    }
    QTest::newRow("a bus that is not there changes nothing")
        << none << QByteArrayList { "DBUS_SESSION_BUS_ADDRESS=unix:path=/nonexistent" };
    QTest::newRow("an unknown locale changes nothing")
        << none << QByteArrayList { "LC_ALL=xx_XX.UTF-8", "HOME=/nonexistent" };
}

void tst_Usage::usageText()
{
    QFETCH(QByteArrayList, arguments);
    QFETCH(QByteArrayList, environment);

    Program program(MOVRA_PROGRAM, arguments, environment);
    QVERIFY(program.waitForEnd());
    QCOMPARE(program.out, QByteArray(usage));
    QCOMPARE(program.err, QByteArray());
    QCOMPARE(program.status, 1);
}

QTEST_APPLESS_MAIN(tst_Usage)
#include "tst_usage.moc"
