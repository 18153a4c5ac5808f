// SPDX-License-Identifier: MIT
#include "tests/endurance/forms.h"

namespace
{

MovraRow form(const char *name, const QByteArrayList &typed, const char *out,
              const QByteArrayList &calls)
{
    return { name, QByteArrayList { "com.varn.tul", "/" } + typed, {}, out, calls, 0 };
}

MovraRow refused(const char *name, const QByteArrayList &typed, const char *status)
{
    return { name,         QByteArrayList { "com.varn.tul", "/" } + typed, {}, error(status), {},
             *status - '0' };
}

} // namespace

void prepareForForms(FakeService &service)
{
    service.answer("GetValue", "(<[-1, 5]>,)");
    service.answer("GetStatus", "(-7,)");
    service.answer("GetValueStatus", "((':x:', <'anna'>, 1),)");
    service.answer("ListConfigIds", "([':config:a:', ':config:b:'],)");
    service.answer("ListResultIds", "([':result:a:'],)");
    service.answer("ListActionIds", "(@as [],)");
    service.answer("LogGetIds", "('a, b',)");
    service.answer("SaveConfig", "(true,)");
    service.answer("LoadConfig", "(false,)");
    service.answer("DoAction", "('started',)");
    service.answer("DBusServerStatus", "(3,)");
    service.answer("DbgLogGetIds", "(['LOG_XDSL', 'LOG_VOIP'],)");
    service.refuse("StopResultNotify", "varn.pim.Error.Refused", "nobody waits for this");
    service.refuse("DbgLogCmd", "varn.pim.Error.Refused", "nobody sees this");
}

// clang-format off
std::vector<MovraRow> forms()
{
    return {
        form("GET", { "GET", ":x:" }, "-1\n5\n", { "GetValue s (':x:',)" }),
        form("GET VALUE", { "GET", "VALUE", ":x:" }, "-1\n5\n", { "GetValue s (':x:',)" }),
        form("GET VALUE of a kind", { "GET", "VALUE", ":uint32ARRAY:" }, "4294967295\n5\n",
             { "GetValue s (':uint32ARRAY:',)" }),
        form("GET STATUS", { "GET", "STATUS", ":x:" }, "-7\n", { "GetStatus s (':x:',)" }),
        form("GET VAL_STAT", { "GET", "VAL_STAT", ":x:" }, "status=1\nanna\n",
             { "GetValueStatus s (':x:',)" }),
        form("SET", { "SET", ":x:", "anna" }, "", { "SetValue a(sv) ([(':x:', <'anna'>)],)" }),
        form("SETARRAY of doubles", { "SETARRAY", ":doubleARRAY:", "2", "0.5", "x" }, "",
             { "SetValue a(sv) ([(':doubleARRAY:', <[0.5, 0.0]>)],)" }),
        form("SETARRAY of texts", { "SETARRAY", ":stringARRAY:", "2", "a", "b" }, "",
             { "SetValue a(sv) ([(':stringARRAY:', <['a', 'b']>)],)" }),
        form("LIST CONFIGS", { "LIST", "CONFIGS" }, ":config:a:\n:config:b:\n", { "ListConfigIds" }),
        form("LIST RESULTS", { "LIST", "RESULTS" }, ":result:a:\n", { "ListResultIds" }),
        form("LIST ACTIONS", { "LIST", "ACTIONS" }, "", { "ListActionIds" }),
        form("LIST LOGS", { "LIST", "LOGS" }, "a, b\n", { "LogGetIds" }),
        form("FILE SAVE", { "FILE", "SAVE", "a.json" }, "", { "SaveConfig s ('a.json',)" }),
        form("FILE LOAD", { "FILE", "LOAD", "a.json" }, "", { "LoadConfig s ('a.json',)" }),
        form("NOTIFY START", { "NOTIFY", "CONFIG", "START" }, "", { "StartConfigNotify" }),
        form("NOTIFY STOP", { "NOTIFY", "RESULT", "STOP" }, "", { "StopResultNotify" }),
        form("NOTIFY CLEAR", { "NOTIFY", "CONFIG", "CLEAR" }, "", { "ClearConfigNotifyList" }),
        form("NOTIFY ADD", { "NOTIFY", "CONFIG", "ADD", ":x:" }, "",
             { "AddToNotifyList as ([':x:'],)" }),
        form("NOTIFY DEL", { "NOTIFY", "RESULT", "DEL", ":x:" }, "",
             { "DeleteFromNotifyList as ([':x:'],)" }),
        form("ACTION", { "ACTION", ":x:" }, "", { "DoAction s (':x:',)" }),
        form("ACTION with a value", { "ACTION", ":x:", "now" }, "started\n",
             { "DoAction ss (':x:', 'now')" }),
        form("SERVERSTAT", { "SERVERSTAT" }, "3\n", { "DBusServerStatus" }),
        form("SERVERCMD", { "SERVERCMD", "SET_RES_NOTIFY_TIMER", "50" }, "",
             { "DBusServerCmd sv ('SET_RES_NOTIFY_TIMER', <50>)" }),
        form("DBG", { "DBG", "SET", "x" }, "DBG SET   ERROR     err=\n",
             { "DbgLogCmd ss ('SET', 'x')" }),
        form("DBG GET_IDS", { "DBG", "GET_IDS" }, "LOG_XDSL\nLOG_VOIP\n", { "DbgLogGetIds" }),
        refused("an unknown word", { "GETS", ":x:" }, "1"),
        refused("a value that is not supported", { "GET", "ALL", ":x:" }, "2"),
        refused("an argument that is missing", { "ACTION" }, "3"),
    };
}
// clang-format on
