// SPDX-License-Identifier: MIT
// LIST and FILE through the built program: screen, wire and status.
#include "tests/support/movrarun.h"

#include <QTest>

namespace
{

const QByteArray failed = "Reply Not Valid     err=\n"; // five blanks

std::vector<MovraRow> rows()
{
    const Prepare three = answers("ListConfigIds", "([':a:', '', ':é€:'],)");
    return {
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
        { "LIST CONFIGS: an error reply shows in the status alone",
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
        asks("FILE SAVE: an error reply shows in its line alone", { "FILE", "SAVE", "a" },
             refuses("SaveConfig"), failed, "SaveConfig s ('a',)"),
    };
}

struct tst_Catalogues : MovraRowsTest {
    tst_Catalogues()
        : MovraRowsTest(rows())
    {
    }
};

} // namespace

QTEST_GUILESS_MAIN(tst_Catalogues)
