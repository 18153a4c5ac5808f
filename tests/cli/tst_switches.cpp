// SPDX-License-Identifier: MIT
// NOTIFY and DBG through the built program: screen, wire and status.
#include "tests/support/movrarun.h"

#include <QTest>

namespace
{

std::vector<MovraRow> rows()
{
    const QByteArray percent = ":result:data:ftp:percentTransfered:0:";
    return {
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
        asks("a refusal of START is not learned", { "NOTIFY", "CONFIG", "START" },
             refuses("StartConfigNotify"), "", "StartConfigNotify"),
        sends("SET passes its value as it is", { "DBG", "SET", "LOG_XDSL, 0, ENABLED" },
              "DbgLogCmd ss ('SET', 'LOG_XDSL, 0, ENABLED')"),
        sends("word and value are not trimmed", { "DBG", " SET ", " x\t" },
              "DbgLogCmd ss (' SET ', ' x\\t')"),
        asks("what a reply holds is dropped", { "DBG", "SET", "x" },
             answers("DbgLogCmd", "('unasked', 1)"), "", "DbgLogCmd ss ('SET', 'x')"),
        sends("SET_REPORTING_LEVEL DEBUG3", { "DBG", "SET_REPORTING_LEVEL", "DEBUG3" },
              "DbgLogCmd ss ('SET_REPORTING_LEVEL', 'DEBUG3')"),
        sends("SAVE_STOP drops a value that is typed", { "DBG", "SAVE_STOP", "now" },
              "DbgLogCmd ss ('SAVE_STOP', '')"),
        sends("the service decides about an unknown word", { "DBG", "NOSUCH", "x" },
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
        asks("GET_IDS prints a line for each id", { "DBG", "GET_IDS" },
             answers("DbgLogGetIds", "(['LOG_XDSL', '', 'é€%s'],)"), "LOG_XDSL\n\n\xe9?%s\n",
             "DbgLogGetIds"),
        asks("GET_IDS ignores further words", { "DBG", "GET_IDS", "x" },
             answers("DbgLogGetIds", "(['a'],)"), "a\n", "DbgLogGetIds"),
        asks("GET_IDS without any id prints nothing", { "DBG", "GET_IDS" },
             answers("DbgLogGetIds", "(@as [],)"), "", "DbgLogGetIds"),
        asks("a refused unknown word", { "DBG", "NO%s\xe9", "x" }, refuses("DbgLogCmd"),
             "DBG NO%s\xe9   ERROR     err=\n", "DbgLogCmd ss ('NO%sé', 'x')"),
    };
}

struct tst_Switches : MovraRowsTest {
    tst_Switches()
        : MovraRowsTest(rows())
    {
    }
};

} // namespace

QTEST_GUILESS_MAIN(tst_Switches)
