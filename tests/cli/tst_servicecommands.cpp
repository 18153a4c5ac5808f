// SPDX-License-Identifier: MIT
// ACTION, SERVERSTAT and SERVERCMD through the built program: screen, wire and status.
#include "tests/support/movrarun.h"

#include <QTest>

namespace
{

/// A timeout as it is typed and as it travels.
MovraRow timeoutRow(const char *name, const char *typed, const char *sent)
{
    return sends(name, { "SERVERCMD", "SET_CFG_NOTIFY_TIMER", typed },
                 QByteArray("DBusServerCmd sv ('SET_CFG_NOTIFY_TIMER', <") + sent + ">)");
}

std::vector<MovraRow> rows()
{
    return {
        asks("SERVERSTAT prints a bare number", { "SERVERSTAT" },
             answers("DBusServerStatus", "(0,)"), "0\n", "DBusServerStatus"),
        asks("SERVERSTAT: the least number", { "SERVERSTAT" },
             answers("DBusServerStatus", "(-2147483648,)"), "-2147483648\n", "DBusServerStatus"),
        asks("SERVERSTAT: the greatest number", { "SERVERSTAT" },
             answers("DBusServerStatus", "(2147483647,)"), "2147483647\n", "DBusServerStatus"),
        asks("SERVERSTAT ignores further words", { "SERVERSTAT", "x", "y" },
             answers("DBusServerStatus", "(1,)"), "1\n", "DBusServerStatus"),
        asks("ACTION without a value drops what the reply holds", { "ACTION", ":a:" },
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
        asks("ACTION: e acute typed in UTF-8 travels as two characters",
             { "ACTION", "\xc3\xa9", "\xc3\xa9" }, answers("DoAction", "('Ã©',)"), "\xc3\xa9\n",
             "DoAction ss ('Ã©', 'Ã©')"),
        asks("ACTION: a lone byte 0xe9 travels as e acute", { "ACTION", "\xe9", "a\xe9z" },
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
        asks("SERVERCMD prints nothing whatever the reply holds",
             { "SERVERCMD", "SET_RES_NOTIFY_TIMER", "1" }, answers("DBusServerCmd", "('unasked',)"),
             "", "DBusServerCmd sv ('SET_RES_NOTIFY_TIMER', <1>)"),
        sends("SERVERCMD ignores words after the timeout",
              { "SERVERCMD", "SET_RES_NOTIFY_TIMER", "1", "2" },
              "DBusServerCmd sv ('SET_RES_NOTIFY_TIMER', <1>)"),
    };
}

struct tst_ServiceCommands : MovraRowsTest {
    tst_ServiceCommands()
        : MovraRowsTest(rows())
    {
    }
};

} // namespace

QTEST_GUILESS_MAIN(tst_ServiceCommands)
