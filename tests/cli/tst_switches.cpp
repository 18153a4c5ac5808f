// SPDX-License-Identifier: MIT
// NOTIFY and DBG through the built program: screen, wire and status.
#include "tests/support/movrarun.h"

#include <QTest>

#include <vector>

namespace
{

void refuseAll(FakeService &service)
{
    for (const char *member :
         { "StartConfigNotify", "AddToNotifyList", "DbgLogCmd", "DbgLogGetIds" }) {
        service.refuse(member, "varn.pim.Error.Refused", "the reply's own text is never shown");
    }
}

/// A request that is accepted in silence.
MovraRow sends(const char *name, const QByteArrayList &typed, const QByteArray &call)
{
    return { name, QByteArrayList { "@", "/" } + typed, {}, "", { call }, 0 };
}

/// A request that the program itself refuses: nothing is sent.
MovraRow refused(const char *name, const QByteArrayList &typed, int status)
{
    return { name,  QByteArrayList { "@", "/" } + typed, {}, error(status == 2 ? "2" : "3"), {},
             status };
}

// clang-format off
std::vector<MovraRow> notifyRows()
{
    const QByteArray percent = ":result:data:ftp:percentTransfered:0:";
    return {
        sends("CONFIG START", { "NOTIFY", "CONFIG", "START" }, "StartConfigNotify"),
        sends("CONFIG STOP", { "NOTIFY", "CONFIG", "STOP" }, "StopConfigNotify"),
        sends("CONFIG CLEAR", { "NOTIFY", "CONFIG", "CLEAR" }, "ClearConfigNotifyList"),
        sends("CONFIG ADD", { "NOTIFY", "CONFIG", "ADD", "x" }, "AddToNotifyList as (['x'],)"),
        sends("CONFIG DEL", { "NOTIFY", "CONFIG", "DEL", "x" }, "DeleteFromNotifyList as (['x'],)"),
        sends("RESULT START", { "NOTIFY", "RESULT", "START" }, "StartResultNotify"),
        sends("RESULT STOP", { "NOTIFY", "RESULT", "STOP" }, "StopResultNotify"),
        sends("RESULT CLEAR", { "NOTIFY", "RESULT", "CLEAR" }, "ClearResultNotifyList"),
        sends("RESULT ADD sends the same as CONFIG ADD", { "NOTIFY", "RESULT", "ADD", "x" },
              "AddToNotifyList as (['x'],)"),
        sends("RESULT DEL sends the same as CONFIG DEL", { "NOTIFY", "RESULT", "DEL", "x" },
              "DeleteFromNotifyList as (['x'],)"),
        sends("the id travels as a list of one", { "NOTIFY", "RESULT", "ADD", percent },
              "AddToNotifyList as (['" + percent + "'],)"),
        sends("an empty id", { "NOTIFY", "CONFIG", "ADD", "" }, "AddToNotifyList as ([''],)"),
        sends("the id is Latin-1", { "NOTIFY", "CONFIG", "DEL", "\xe9\xc3\xa9" },
              "DeleteFromNotifyList as (['éÃ©'],)"),
        sends("the added id is Latin-1, of CONFIG", { "NOTIFY", "CONFIG", "ADD", "\xe9\xc3\xa9" },
              "AddToNotifyList as (['éÃ©'],)"),
        sends("the added id is Latin-1, of RESULT", { "NOTIFY", "RESULT", "ADD", "\xe9\xc3\xa9" },
              "AddToNotifyList as (['éÃ©'],)"),
        sends("an added id is not trimmed", { "NOTIFY", "CONFIG", "ADD", " x\t" },
              "AddToNotifyList as ([' x\\t'],)"),
        sends("a deleted id is not trimmed", { "NOTIFY", "RESULT", "DEL", " x\t" },
              "DeleteFromNotifyList as ([' x\\t'],)"),
        sends("words after the id are ignored", { "NOTIFY", "CONFIG", "ADD", "x", "y" },
              "AddToNotifyList as (['x'],)"),
        sends("words after START are ignored", { "NOTIFY", "CONFIG", "START", "x", "y" },
              "StartConfigNotify"),

        refused("no group word", { "NOTIFY" }, 3),
        refused("CONFIG without an action word", { "NOTIFY", "CONFIG" }, 2),
        refused("RESULT without an action word", { "NOTIFY", "RESULT" }, 2),
        refused("LOG without an action word", { "NOTIFY", "LOG" }, 2),
        refused("LOG is in the usage text, but refused: START", { "NOTIFY", "LOG", "START", "5" }, 2),
        refused("LOG is in the usage text, but refused: STOP", { "NOTIFY", "LOG", "STOP", "5" }, 2),
        refused("LOG is in the usage text, but refused: CLEAR", { "NOTIFY", "LOG", "CLEAR", "5" }, 2),
        refused("a group in lower case", { "NOTIFY", "config", "START" }, 2),
        refused("a longer group word", { "NOTIFY", "CONFIGS", "START" }, 2),
        refused("the beginning of a group word", { "NOTIFY", "CONF", "START" }, 2),
        refused("an empty group word", { "NOTIFY", "", "START" }, 2),
        refused("an action in lower case", { "NOTIFY", "CONFIG", "start" }, 3),
        refused("a longer action word", { "NOTIFY", "CONFIG", "STARTED" }, 3),
        refused("an unknown action word of RESULT", { "NOTIFY", "RESULT", "NOPE", "x" }, 3),
        refused("an empty action word", { "NOTIFY", "RESULT", "" }, 3),
        refused("CONFIG ADD without an id", { "NOTIFY", "CONFIG", "ADD" }, 3),
        refused("CONFIG DEL without an id", { "NOTIFY", "CONFIG", "DEL" }, 3),
        refused("RESULT ADD without an id", { "NOTIFY", "RESULT", "ADD" }, 3),
        refused("RESULT DEL without an id", { "NOTIFY", "RESULT", "DEL" }, 3),

        { "a refusal of START is not learned", { "@", "/", "NOTIFY", "CONFIG", "START" },
          refuseAll, "", { "StartConfigNotify" }, 0 },
        { "a refusal of ADD is not learned", { "@", "/", "NOTIFY", "RESULT", "ADD", "x" },
          refuseAll, "", { "AddToNotifyList as (['x'],)" }, 0 },
    };
}

std::vector<MovraRow> dbgRows()
{
    const QByteArray setFailed = "DBG SET   ERROR     err=\n"; // three blanks, five blanks
    const QByteArray idsFailed = "DBG GET_IDS  ERROR  err=\n"; // two blanks, two blanks
    return {
        sends("SET passes its value as it is", { "DBG", "SET", "LOG_XDSL, 0, ENABLED" },
              "DbgLogCmd ss ('SET', 'LOG_XDSL, 0, ENABLED')"),
        sends("SET_ALL", { "DBG", "SET_ALL", "LOG_XDSL, ENABLED" },
              "DbgLogCmd ss ('SET_ALL', 'LOG_XDSL, ENABLED')"),
        sends("SET_REPORTING_LEVEL ERROR", { "DBG", "SET_REPORTING_LEVEL", "ERROR" },
              "DbgLogCmd ss ('SET_REPORTING_LEVEL', 'ERROR')"),
        sends("SET_REPORTING_LEVEL INFO", { "DBG", "SET_REPORTING_LEVEL", "INFO" },
              "DbgLogCmd ss ('SET_REPORTING_LEVEL', 'INFO')"),
        sends("SET_REPORTING_LEVEL DEBUG", { "DBG", "SET_REPORTING_LEVEL", "DEBUG" },
              "DbgLogCmd ss ('SET_REPORTING_LEVEL', 'DEBUG')"),
        sends("SET_REPORTING_LEVEL DEBUG1", { "DBG", "SET_REPORTING_LEVEL", "DEBUG1" },
              "DbgLogCmd ss ('SET_REPORTING_LEVEL', 'DEBUG1')"),
        sends("SET_REPORTING_LEVEL DEBUG2", { "DBG", "SET_REPORTING_LEVEL", "DEBUG2" },
              "DbgLogCmd ss ('SET_REPORTING_LEVEL', 'DEBUG2')"),
        sends("SET_REPORTING_LEVEL DEBUG4", { "DBG", "SET_REPORTING_LEVEL", "DEBUG4" },
              "DbgLogCmd ss ('SET_REPORTING_LEVEL', 'DEBUG4')"),
        sends("word and value are not trimmed", { "DBG", " SET ", " x\t" },
              "DbgLogCmd ss (' SET ', ' x\\t')"),
        { "what a reply holds is dropped", { "@", "/", "DBG", "SET", "x" },
          answers("DbgLogCmd", "('unasked', 1)"), "", { "DbgLogCmd ss ('SET', 'x')" }, 0 },
        sends("SET_REPORTING_LEVEL DEBUG3", { "DBG", "SET_REPORTING_LEVEL", "DEBUG3" },
              "DbgLogCmd ss ('SET_REPORTING_LEVEL', 'DEBUG3')"),
        sends("SAVE_TO", { "DBG", "SAVE_TO", "/tmp/capture1.txt" },
              "DbgLogCmd ss ('SAVE_TO', '/tmp/capture1.txt')"),
        sends("SAVE_STOP sends an empty value", { "DBG", "SAVE_STOP" },
              "DbgLogCmd ss ('SAVE_STOP', '')"),
        sends("SAVE_STOP drops a value that is typed", { "DBG", "SAVE_STOP", "now" },
              "DbgLogCmd ss ('SAVE_STOP', '')"),
        sends("an unknown word is the service's affair", { "DBG", "NOSUCH", "x" },
              "DbgLogCmd ss ('NOSUCH', 'x')"),
        sends("save_stop is not SAVE_STOP", { "DBG", "save_stop", "x" },
              "DbgLogCmd ss ('save_stop', 'x')"),
        sends("GET_IDSX is not GET_IDS", { "DBG", "GET_IDSX", "x" },
              "DbgLogCmd ss ('GET_IDSX', 'x')"),
        sends("an empty word and an empty value", { "DBG", "", "" }, "DbgLogCmd ss ('', '')"),
        sends("words after the value are ignored", { "DBG", "SET", "a", "b" },
              "DbgLogCmd ss ('SET', 'a')"),
        sends("word and value are Latin-1", { "DBG", "\xe9", "\xc3\xa9" },
              "DbgLogCmd ss ('é', 'Ã©')"),
        { "GET_IDS prints a line for each id", { "@", "/", "DBG", "GET_IDS" },
          answers("DbgLogGetIds", "(['LOG_XDSL', '', 'é€%s'],)"),
          "LOG_XDSL\n\n\xe9?%s\n", { "DbgLogGetIds" }, 0 },
        { "GET_IDS ignores further words", { "@", "/", "DBG", "GET_IDS", "x" },
          answers("DbgLogGetIds", "(['a'],)"), "a\n",
          { "DbgLogGetIds" }, 0 },
        { "GET_IDS without any id prints nothing", { "@", "/", "DBG", "GET_IDS" },
          answers("DbgLogGetIds", "(@as [],)"), "",
          { "DbgLogGetIds" }, 0 },

        refused("no sub-word", { "DBG" }, 3),
        refused("SET without a value", { "DBG", "SET" }, 2),
        refused("an unknown word without a value", { "DBG", "NOSUCH" }, 2),
        refused("save_stop without a value", { "DBG", "save_stop" }, 2),
        refused("get_ids without a value", { "DBG", "get_ids" }, 2),

        { "a refused command: three blanks before ERROR and five after",
          { "@", "/", "DBG", "SET", "x" }, refuseAll, setFailed, { "DbgLogCmd ss ('SET', 'x')" },
          0 },
        { "a refused unknown word", { "@", "/", "DBG", "NO%s\xe9", "x" }, refuseAll,
          "DBG NO%s\xe9   ERROR     err=\n", { "DbgLogCmd ss ('NO%sé', 'x')" }, 0 },
        { "a refused SAVE_STOP", { "@", "/", "DBG", "SAVE_STOP" }, refuseAll,
          "DBG SAVE_STOP   ERROR     err=\n", { "DbgLogCmd ss ('SAVE_STOP', '')" }, 0 },
        { "refused ids: two blanks before ERROR and two after", { "@", "/", "DBG", "GET_IDS" },
          refuseAll, idsFailed, { "DbgLogGetIds" }, 0 },
        { "one text instead of ids is a failed call", { "@", "/", "DBG", "GET_IDS" },
          answers("DbgLogGetIds", "('a',)"), idsFailed,
          { "DbgLogGetIds" }, 0 },
    };
}
// clang-format on

} // namespace

class tst_Switches : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void notify_data() { notifications.addTestData(); }
    void notify()
    {
        QFETCH(int, row);
        notifications.check(row);
    }
    void dbg_data() { debugging.addTestData(); }
    void dbg()
    {
        QFETCH(int, row);
        debugging.check(row);
    }

private:
    MovraRows notifications { notifyRows() };
    MovraRows debugging { dbgRows() };
};

QTEST_GUILESS_MAIN(tst_Switches)
#include "tst_switches.moc"
