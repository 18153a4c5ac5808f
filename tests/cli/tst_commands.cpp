// SPDX-License-Identifier: MIT
// All commands but GET, SET and SETARRAY through the built program: what is printed, what is sent,
// and the status. These rows do not repeat the table of command forms.
#include "tests/support/movrarun.h"

#include <QTest>

namespace
{

/// An interval as it is typed and as it is sent.
MovraRow timeoutRow(const char *name, const char *typed, const char *sent)
{
    return sends(name, { "SERVERCMD", "SET_CFG_NOTIFY_TIMER", typed },
                 QByteArray("DBusServerCmd sv ('SET_CFG_NOTIFY_TIMER', <") + sent + ">)");
}

std::vector<MovraRow> rows()
{
    const QByteArray percent = ":result:data:ftp:percentTransfered:0:";
    const Prepare three = answers("ListConfigIds", "([':a:', '', ':é€:'],)");
    return {
        sends("DBG: SET passes its value as it is", { "DBG", "SET", "LOG_XDSL, 0, ENABLED" },
              "DbgLogCmd ss ('SET', 'LOG_XDSL, 0, ENABLED')"),
        sends("DBG: word and value are not trimmed", { "DBG", " SET ", " x\t" },
              "DbgLogCmd ss (' SET ', ' x\\t')"),
        asks("DBG: the content of a reply is ignored", { "DBG", "SET", "x" },
             answers("DbgLogCmd", "('unasked', 1)"), "", "DbgLogCmd ss ('SET', 'x')"),
        sends("DBG: SET_REPORTING_LEVEL DEBUG3", { "DBG", "SET_REPORTING_LEVEL", "DEBUG3" },
              "DbgLogCmd ss ('SET_REPORTING_LEVEL', 'DEBUG3')"),
        sends("DBG: SAVE_STOP ignores a value that is typed", { "DBG", "SAVE_STOP", "now" },
              "DbgLogCmd ss ('SAVE_STOP', '')"),
        sends("DBG: the service decides about an unknown word", { "DBG", "NOSUCH", "x" },
              "DbgLogCmd ss ('NOSUCH', 'x')"),
        sends("DBG: save_stop is not SAVE_STOP", { "DBG", "save_stop", "x" },
              "DbgLogCmd ss ('save_stop', 'x')"),
        sends("DBG: GET_IDSX is not GET_IDS", { "DBG", "GET_IDSX", "x" },
              "DbgLogCmd ss ('GET_IDSX', 'x')"),
        sends("DBG: an empty word and an empty value", { "DBG", "", "" }, "DbgLogCmd ss ('', '')"),
        sends("DBG: words after the value are ignored", { "DBG", "SET", "a", "b" },
              "DbgLogCmd ss ('SET', 'a')"),
        sends("DBG: word and value are Latin-1", { "DBG", "\xe9", "\xc3\xa9" },
              "DbgLogCmd ss ('é', 'Ã©')"),
        asks("DBG: GET_IDS prints a line for each id", { "DBG", "GET_IDS" },
             answers("DbgLogGetIds", "(['LOG_XDSL', '', 'é€%s'],)"), "LOG_XDSL\n\n\xe9?%s\n",
             "DbgLogGetIds"),
        asks("DBG: GET_IDS ignores further words", { "DBG", "GET_IDS", "x" },
             answers("DbgLogGetIds", "(['a'],)"), "a\n", "DbgLogGetIds"),
        asks("DBG: GET_IDS without any id prints nothing", { "DBG", "GET_IDS" },
             answers("DbgLogGetIds", "(@as [],)"), "", "DbgLogGetIds"),
        asks("DBG: a refused unknown word", { "DBG", "NO%s\xe9", "x" }, refuses("DbgLogCmd"),
             "DBG NO%s\xe9   ERROR     err=\n", "DbgLogCmd ss ('NO%sé', 'x')"),

        sends("NOTIFY: the id is sent as a list with one element",
              { "NOTIFY", "RESULT", "ADD", percent }, "AddToNotifyList as (['" + percent + "'],)"),
        sends("NOTIFY: an empty id", { "NOTIFY", "CONFIG", "ADD", "" },
              "AddToNotifyList as ([''],)"),
        sends("NOTIFY: the id is Latin-1", { "NOTIFY", "CONFIG", "DEL", "\xe9\xc3\xa9" },
              "DeleteFromNotifyList as (['éÃ©'],)"),
        sends("NOTIFY: the added id is Latin-1, of CONFIG",
              { "NOTIFY", "CONFIG", "ADD", "\xe9\xc3\xa9" }, "AddToNotifyList as (['éÃ©'],)"),
        sends("NOTIFY: the added id is Latin-1, of RESULT",
              { "NOTIFY", "RESULT", "ADD", "\xe9\xc3\xa9" }, "AddToNotifyList as (['éÃ©'],)"),
        sends("NOTIFY: an added id is not trimmed", { "NOTIFY", "CONFIG", "ADD", " x\t" },
              "AddToNotifyList as ([' x\\t'],)"),
        sends("NOTIFY: a deleted id is not trimmed", { "NOTIFY", "RESULT", "DEL", " x\t" },
              "DeleteFromNotifyList as ([' x\\t'],)"),
        sends("NOTIFY: words after the id are ignored", { "NOTIFY", "CONFIG", "ADD", "x", "y" },
              "AddToNotifyList as (['x'],)"),
        sends("NOTIFY: words after START are ignored", { "NOTIFY", "CONFIG", "START", "x", "y" },
              "StartConfigNotify"),
        asks("NOTIFY: the reply to START is not awaited", { "NOTIFY", "CONFIG", "START" },
             refuses("StartConfigNotify"), "", "StartConfigNotify"),

        asks("LIST CONFIG prints a line for each id", { "LIST", "CONFIG" }, three,
             ":a:\n\n:\xe9?:\n", "ListConfigIds"),
        asks("LIST CONFIGURATION begins with CONFIG", { "LIST", "CONFIGURATION" }, three,
             ":a:\n\n:\xe9?:\n", "ListConfigIds"),
        asks("LIST CONFIGRESULT: the first prefix wins", { "LIST", "CONFIGRESULT" }, three,
             ":a:\n\n:\xe9?:\n", "ListConfigIds"),
        asks("LIST ACTIONS", { "LIST", "ACTIONS" }, answers("ListActionIds", "(['%s%n'],)"),
             "%s%n\n", "ListActionIds"),
        asks("LIST RESULTX begins with RESULT", { "LIST", "RESULTX" },
             answers("ListResultIds", "(['r'],)"), "r\n", "ListResultIds"),
        asks("LIST ACTIONX begins with ACTION", { "LIST", "ACTIONX" },
             answers("ListActionIds", "(['a'],)"), "a\n", "ListActionIds"),
        asks("LIST LOGS prints the one text as it is", { "LIST", "LOGS" },
             answers("LogGetIds", "('a b,c\\nd é€',)"), "a b,c\nd \xe9?\n", "LogGetIds"),
        asks("LIST LOGFILE begins with LOG", { "LIST", "LOGFILE" }, answers("LogGetIds", "('a',)"),
             "a\n", "LogGetIds"),
        asks("LIST LOG: an empty text is an empty line", { "LIST", "LOG" },
             answers("LogGetIds", "('',)"), "\n", "LogGetIds"),
        asks("LIST: an empty catalogue prints nothing", { "LIST", "RESULTS" },
             answers("ListResultIds", "(@as [],)"), "", "ListResultIds"),
        asks("LIST ignores further words", { "LIST", "RESULTS", "CONFIGS" },
             answers("ListResultIds", "(['r'],)"), "r\n", "ListResultIds"),
        { "LIST CONFIGS: only the status shows an error reply",
          { "@", "/", "LIST", "CONFIGS" },
          refuses("ListConfigIds"),
          error(3),
          { "ListConfigIds" },
          3 },
        asks("FILE SAVE answered false", { "FILE", "SAVE", "x" }, answers("SaveConfig", "(false,)"),
             "", "SaveConfig s ('x',)"),
        asks("FILE LOAD answered false", { "FILE", "LOAD", "x" }, answers("LoadConfig", "(false,)"),
             "", "LoadConfig s ('x',)"),
        asks("FILE passes the name as it is", { "FILE", "SAVE", " ../a b\t" },
             answers("SaveConfig", "(true,)"), "", "SaveConfig s (' ../a b\\t',)"),
        asks("FILE with an empty name", { "FILE", "LOAD", "" }, answers("LoadConfig", "(true,)"),
             "", "LoadConfig s ('',)"),
        asks("FILE: the name is Latin-1", { "FILE", "SAVE", "\xe9\xc3\xa9" },
             answers("SaveConfig", "(true,)"), "", "SaveConfig s ('éÃ©',)"),
        asks("FILE ignores further words", { "FILE", "SAVE", "a", "b" },
             answers("SaveConfig", "(true,)"), "", "SaveConfig s ('a',)"),
        asks("FILE SAVE: only the line shows an error reply", { "FILE", "SAVE", "a" },
             refuses("SaveConfig"), "Reply Not Valid     err=\n", "SaveConfig s ('a',)"),

        asks("SERVERSTAT prints a bare number", { "SERVERSTAT" },
             answers("DBusServerStatus", "(0,)"), "0\n", "DBusServerStatus"),
        asks("SERVERSTAT: the least number", { "SERVERSTAT" },
             answers("DBusServerStatus", "(-2147483648,)"), "-2147483648\n", "DBusServerStatus"),
        asks("SERVERSTAT: the greatest number", { "SERVERSTAT" },
             answers("DBusServerStatus", "(2147483647,)"), "2147483647\n", "DBusServerStatus"),
        asks("SERVERSTAT ignores further words", { "SERVERSTAT", "x", "y" },
             answers("DBusServerStatus", "(1,)"), "1\n", "DBusServerStatus"),
        asks("ACTION without a value ignores the content of the reply", { "ACTION", ":a:" },
             answers("DoAction", "('unasked', 1)"), "", "DoAction s (':a:',)"),
        asks("ACTION: an empty reply text is an empty line", { "ACTION", ":a:", "now" },
             answers("DoAction", "('',)"), "\n", "DoAction ss (':a:', 'now')"),
        asks("ACTION: formats and line ends in the reply are text", { "ACTION", ":a:", "now" },
             answers("DoAction", "('%s%n\\n\\ttwo',)"), "%s%n\n\ttwo\n",
             "DoAction ss (':a:', 'now')"),
        asks("ACTION: the reply is printed in Latin-1", { "ACTION", ":a:", "now" },
             answers("DoAction", "('é € \U0001F600',)"), "\xe9 ? ??\n",
             "DoAction ss (':a:', 'now')"),
        sends("ACTION with an empty id", { "ACTION", "" }, "DoAction s ('',)"),
        asks("ACTION with an empty value", { "ACTION", ":a:", "" }, answers("DoAction", "('x',)"),
             "x\n", "DoAction ss (':a:', '')"),
        asks("ACTION ignores words after the value", { "ACTION", ":a:", "1", "2", "3" },
             answers("DoAction", "('x',)"), "x\n", "DoAction ss (':a:', '1')"),
        asks("ACTION: e acute typed in UTF-8 is sent as two characters",
             { "ACTION", "\xc3\xa9", "\xc3\xa9" }, answers("DoAction", "('Ã©',)"), "\xc3\xa9\n",
             "DoAction ss ('Ã©', 'Ã©')"),
        asks("ACTION: a lone byte 0xe9 is sent as e acute", { "ACTION", "\xe9", "a\xe9z" },
             answers("DoAction", "('é',)"), "\xe9\n", "DoAction ss ('é', 'aéz')"),
        sends("ACTION: the greatest byte", { "ACTION", "\xff" }, "DoAction s ('ÿ',)"),
        timeoutRow("SERVERCMD knows both timers", "250", "250"),
        timeoutRow("SERVERCMD: abc is sent as 0", "abc", "0"),
        timeoutRow("SERVERCMD: an empty timeout is sent as 0", "", "0"),
        timeoutRow("SERVERCMD: a negative timeout", "-5", "-5"),
        timeoutRow("SERVERCMD: a sign in front", "+5", "5"),
        timeoutRow("SERVERCMD: blanks around", " 7 ", "7"),
        timeoutRow("SERVERCMD: zeros in front are decimal", "010", "10"),
        timeoutRow("SERVERCMD: hexadecimal is sent as 0", "0x10", "0"),
        timeoutRow("SERVERCMD: a fraction is sent as 0", "1.5", "0"),
        timeoutRow("SERVERCMD: a number with a unit is sent as 0", "100ms", "0"),
        timeoutRow("SERVERCMD: the greatest int", "2147483647", "2147483647"),
        timeoutRow("SERVERCMD: beyond the greatest int is sent as 0", "2147483648", "0"),
        timeoutRow("SERVERCMD: the least int", "-2147483648", "-2147483648"),
        timeoutRow("SERVERCMD: beyond the least int is sent as 0", "-2147483649", "0"),
        timeoutRow("SERVERCMD: 2 to the 32nd is sent as 0", "4294967296", "0"),
        timeoutRow("SERVERCMD: a byte above 0x7f is sent as 0", "5\xe9", "0"),
        asks("SERVERCMD prints nothing of the reply", { "SERVERCMD", "SET_RES_NOTIFY_TIMER", "1" },
             answers("DBusServerCmd", "('unasked',)"), "",
             "DBusServerCmd sv ('SET_RES_NOTIFY_TIMER', <1>)"),
        sends("SERVERCMD ignores words after the timeout",
              { "SERVERCMD", "SET_RES_NOTIFY_TIMER", "1", "2" },
              "DBusServerCmd sv ('SET_RES_NOTIFY_TIMER', <1>)"),
    };
}

struct tst_Commands : MovraRowsTest {
    tst_Commands()
        : MovraRowsTest(rows())
    {
    }
};

} // namespace

QTEST_GUILESS_MAIN(tst_Commands)
