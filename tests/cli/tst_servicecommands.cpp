// SPDX-License-Identifier: MIT
// ACTION, SERVERSTAT and SERVERCMD through the built program: screen, wire and status.
#include "tests/support/movrarun.h"

#include <QTest>

#include <vector>

namespace
{

/// A timeout as it is typed and as it travels.
MovraRow timeoutRow(const char *name, const char *typed, const char *sent)
{
    return { name,
             { "@", "/", "SERVERCMD", "SET_CFG_NOTIFY_TIMER", typed },
             {},
             "",
             { QByteArray("DBusServerCmd sv ('SET_CFG_NOTIFY_TIMER', <") + sent + ">)" },
             0 };
}

const QByteArray failed = "Reply Not Valid     err=\n"; // five blanks

std::vector<MovraRow> rows()
{
    // clang-format off
    return {
        { "SERVERSTAT prints a bare number", { "@", "/", "SERVERSTAT" },
          answers("DBusServerStatus", "(0,)"), "0\n", { "DBusServerStatus" }, 0 },
        { "SERVERSTAT: the least number", { "@", "/", "SERVERSTAT" },
          answers("DBusServerStatus", "(-2147483648,)"), "-2147483648\n", { "DBusServerStatus" },
          0 },
        { "SERVERSTAT: the greatest number", { "@", "/", "SERVERSTAT" },
          answers("DBusServerStatus", "(2147483647,)"), "2147483647\n", { "DBusServerStatus" }, 0 },
        { "SERVERSTAT ignores further words", { "@", "/", "SERVERSTAT", "x", "y" },
          answers("DBusServerStatus", "(1,)"), "1\n", { "DBusServerStatus" }, 0 },
        { "SERVERSTAT: an error reply", { "@", "/", "SERVERSTAT" }, refuses("DBusServerStatus"),
          failed, { "DBusServerStatus" }, 0 },
        { "SERVERSTAT: an unsigned reply is a failed call", { "@", "/", "SERVERSTAT" },
          answers("DBusServerStatus", "(uint32 5,)"), failed, { "DBusServerStatus" }, 0 },
        { "SERVERSTAT: a text reply is a failed call", { "@", "/", "SERVERSTAT" },
          answers("DBusServerStatus", "('5',)"), failed, { "DBusServerStatus" }, 0 },
        { "SERVERSTAT: a variant reply is a failed call", { "@", "/", "SERVERSTAT" },
          answers("DBusServerStatus", "(<5>,)"), failed, { "DBusServerStatus" }, 0 },
        { "SERVERSTAT: an empty reply is a failed call", { "@", "/", "SERVERSTAT" },
          answers("DBusServerStatus", "()"), failed, { "DBusServerStatus" }, 0 },
        { "SERVERSTAT: a reply with more behind the number passes", { "@", "/", "SERVERSTAT" },
          answers("DBusServerStatus", "(5, 'more', [1])"), "5\n", { "DBusServerStatus" }, 0 },

        { "ACTION without a value prints nothing", { "@", "/", "ACTION", ":action:x:" }, {}, "",
          { "DoAction s (':action:x:',)" }, 0 },
        { "ACTION without a value drops what the reply holds", { "@", "/", "ACTION", ":a:" },
          answers("DoAction", "('unasked', 1)"), "", { "DoAction s (':a:',)" }, 0 },
        { "ACTION without a value: an error reply", { "@", "/", "ACTION", ":a:" },
          refuses("DoAction"), failed, { "DoAction s (':a:',)" }, 0 },
        { "ACTION with a value prints the reply on a line", { "@", "/", "ACTION", ":a:", "now" },
          answers("DoAction", "('started',)"), "started\n", { "DoAction ss (':a:', 'now')" }, 0 },
        { "ACTION: an empty reply text is an empty line", { "@", "/", "ACTION", ":a:", "now" },
          answers("DoAction", "('',)"), "\n", { "DoAction ss (':a:', 'now')" }, 0 },
        { "ACTION: formats and line ends in the reply are text",
          { "@", "/", "ACTION", ":a:", "now" }, answers("DoAction", "('%s%n\\n\\ttwo',)"),
          "%s%n\n\ttwo\n", { "DoAction ss (':a:', 'now')" }, 0 },
        { "ACTION: the reply is printed in Latin-1", { "@", "/", "ACTION", ":a:", "now" },
          answers("DoAction", "('é € \U0001F600',)"), "\xe9 ? ??\n",
          { "DoAction ss (':a:', 'now')" }, 0 },
        { "ACTION with a value: an error reply", { "@", "/", "ACTION", ":a:", "now" },
          refuses("DoAction"), failed, { "DoAction ss (':a:', 'now')" }, 0 },
        { "ACTION with a value: a number is a failed call", { "@", "/", "ACTION", ":a:", "now" },
          answers("DoAction", "(5,)"), failed, { "DoAction ss (':a:', 'now')" }, 0 },
        { "ACTION with a value: a list is a failed call", { "@", "/", "ACTION", ":a:", "now" },
          answers("DoAction", "(['a'],)"), failed, { "DoAction ss (':a:', 'now')" }, 0 },
        { "ACTION with a value: an object path is a failed call",
          { "@", "/", "ACTION", ":a:", "now" }, answers("DoAction", "(objectpath '/a',)"), failed,
          { "DoAction ss (':a:', 'now')" }, 0 },
        { "ACTION with a value: an empty reply is a failed call",
          { "@", "/", "ACTION", ":a:", "now" }, answers("DoAction", "()"), failed,
          { "DoAction ss (':a:', 'now')" }, 0 },
        { "ACTION with a value: a reply with more behind the text passes",
          { "@", "/", "ACTION", ":a:", "now" }, answers("DoAction", "('x', 5)"), "x\n",
          { "DoAction ss (':a:', 'now')" }, 0 },
        { "ACTION with an empty id", { "@", "/", "ACTION", "" }, {}, "", { "DoAction s ('',)" },
          0 },
        { "ACTION with an empty value", { "@", "/", "ACTION", ":a:", "" },
          answers("DoAction", "('x',)"), "x\n", { "DoAction ss (':a:', '')" }, 0 },
        { "ACTION ignores words after the value", { "@", "/", "ACTION", ":a:", "1", "2", "3" },
          answers("DoAction", "('x',)"), "x\n", { "DoAction ss (':a:', '1')" }, 0 },
        { "ACTION: e acute typed in UTF-8 travels as two characters",
          { "@", "/", "ACTION", "\xc3\xa9", "\xc3\xa9" }, answers("DoAction", "('Ã©',)"),
          "\xc3\xa9\n", { "DoAction ss ('Ã©', 'Ã©')" }, 0 },
        { "ACTION: a lone byte 0xe9 travels as e acute", { "@", "/", "ACTION", "\xe9", "a\xe9z" },
          answers("DoAction", "('é',)"), "\xe9\n", { "DoAction ss ('é', 'aéz')" }, 0 },
        { "ACTION: the greatest byte", { "@", "/", "ACTION", "\xff" }, {}, "",
          { "DoAction s ('ÿ',)" }, 0 },
        { "ACTION without an id", { "@", "/", "ACTION" }, {}, error("3"), {}, 3 },

        { "SERVERCMD sends a variant that holds an int",
          { "@", "/", "SERVERCMD", "SET_RES_NOTIFY_TIMER", "250" }, {}, "",
          { "DBusServerCmd sv ('SET_RES_NOTIFY_TIMER', <250>)" }, 0 },
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
        { "SERVERCMD prints nothing whatever the reply holds",
          { "@", "/", "SERVERCMD", "SET_RES_NOTIFY_TIMER", "1" },
          answers("DBusServerCmd", "('unasked',)"), "",
          { "DBusServerCmd sv ('SET_RES_NOTIFY_TIMER', <1>)" }, 0 },
        { "SERVERCMD ignores words after the timeout",
          { "@", "/", "SERVERCMD", "SET_RES_NOTIFY_TIMER", "1", "2" }, {}, "",
          { "DBusServerCmd sv ('SET_RES_NOTIFY_TIMER', <1>)" }, 0 },
        { "SERVERCMD: an error reply", { "@", "/", "SERVERCMD", "SET_RES_NOTIFY_TIMER", "1" },
          refuses("DBusServerCmd"), failed, { "DBusServerCmd sv ('SET_RES_NOTIFY_TIMER', <1>)" },
          0 },
        { "SERVERCMD without a word", { "@", "/", "SERVERCMD" }, {}, error("3"), {}, 3 },
        { "SERVERCMD without a timeout", { "@", "/", "SERVERCMD", "SET_RES_NOTIFY_TIMER" }, {},
          error("3"), {}, 3 },
        { "SERVERCMD with an unknown word and no timeout: the positions are tested first",
          { "@", "/", "SERVERCMD", "NO" }, {}, error("3"), {}, 3 },
        { "SERVERCMD with an unknown word", { "@", "/", "SERVERCMD", "NO", "1" }, {}, error("2"),
          {}, 2 },
        { "SERVERCMD in lower case", { "@", "/", "SERVERCMD", "set_res_notify_timer", "100" }, {},
          error("2"), {}, 2 },
        { "SERVERCMD with a longer word", { "@", "/", "SERVERCMD", "SET_RES_NOTIFY_TIMERS", "100" },
          {}, error("2"), {}, 2 },
        { "SERVERCMD with the beginning of a word",
          { "@", "/", "SERVERCMD", "SET_RES_NOTIFY", "100" }, {}, error("2"), {}, 2 },
        { "SERVERCMD with an empty word", { "@", "/", "SERVERCMD", "", "100" }, {}, error("2"), {},
          2 },
    };
    // clang-format on
}

} // namespace

class tst_ServiceCommands : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void run_data() { table.addTestData(); }
    void run()
    {
        QFETCH(int, row);
        table.check(row);
    }

private:
    MovraRows table { rows() };
};

QTEST_GUILESS_MAIN(tst_ServiceCommands)
#include "tst_servicecommands.moc"
