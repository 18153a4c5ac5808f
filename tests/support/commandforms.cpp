// SPDX-License-Identifier: MIT
#include "tests/support/commandforms.h"

#include "tests/support/fakeservice.h"

const std::vector<CommandForm> &commandForms()
{
    static const QByteArray getFailed = "Reply Not Valid   err=\n";
    static const QByteArray failed = "Reply Not Valid     err=\n";
    static const QByteArray listFailed = "Error While Parsing Command -- use -h for help   err:3\n";
    // clang-format off
    static const std::vector<CommandForm> forms {
        { "GET", { "GET", ":x:" }, "GetValue", "GetValue s (':x:',)", "(<'text'>,)", "v", "text\n",
          getFailed, 0, true },
        { "GET STATUS", { "GET", "STATUS", ":x:" }, "GetStatus", "GetStatus s (':x:',)", "(7,)", "i",
          "7\n", getFailed, 0, true },
        { "GET VAL_STAT", { "GET", "VAL_STAT", ":x:" }, "GetValueStatus",
          "GetValueStatus s (':x:',)", "((':x:', <'text'>, 7),)", "(svi)", "status=7\ntext\n", getFailed, 0,
          true },
        { "SET", { "SET", ":x:", "5" }, "SetValue", "SetValue a(sv) ([(':x:', <'5'>)],)", "()", "", "",
          "", 0, false },
        { "SETARRAY", { "SETARRAY", ":int32ARRAY:", "2", "5", "6" }, "SetValue",
          "SetValue a(sv) ([(':int32ARRAY:', <[5, 6]>)],)", "()", "", "", "", 0, false },
        { "LIST CONFIGS", { "LIST", "CONFIGS" }, "ListConfigIds", "ListConfigIds", "(['a', 'b'],)", "as",
          "a\nb\n", listFailed, 3, true },
        { "LIST RESULTS", { "LIST", "RESULTS" }, "ListResultIds", "ListResultIds", "(['a', 'b'],)", "as",
          "a\nb\n", listFailed, 3, true },
        { "LIST ACTIONS", { "LIST", "ACTIONS" }, "ListActionIds", "ListActionIds", "(['a', 'b'],)", "as",
          "a\nb\n", listFailed, 3, true },
        { "LIST LOGS", { "LIST", "LOGS" }, "LogGetIds", "LogGetIds", "('a,b',)", "s", "a,b\n",
          listFailed, 3, true },
        { "FILE SAVE", { "FILE", "SAVE", "f" }, "SaveConfig", "SaveConfig s ('f',)", "(true,)", "b", "",
          failed, 0, true },
        { "FILE LOAD", { "FILE", "LOAD", "f" }, "LoadConfig", "LoadConfig s ('f',)", "(true,)", "b", "",
          failed, 0, true },
        { "ACTION", { "ACTION", ":a:" }, "DoAction", "DoAction s (':a:',)", "()", "", "", failed, 0,
          true },
        { "ACTION with a value", { "ACTION", ":a:", "v" }, "DoAction", "DoAction ss (':a:', 'v')",
          "('done',)", "s", "done\n", failed, 0, true },
        { "SERVERSTAT", { "SERVERSTAT" }, "DBusServerStatus", "DBusServerStatus", "(5,)", "i", "5\n",
          failed, 0, true },
        { "SERVERCMD", { "SERVERCMD", "SET_RES_NOTIFY_TIMER", "9" }, "DBusServerCmd",
          "DBusServerCmd sv ('SET_RES_NOTIFY_TIMER', <9>)", "()", "", "", failed, 0, true },
        { "NOTIFY CONFIG START", { "NOTIFY", "CONFIG", "START" }, "StartConfigNotify",
          "StartConfigNotify", "()", "", "", "", 0, false },
        { "NOTIFY CONFIG STOP", { "NOTIFY", "CONFIG", "STOP" }, "StopConfigNotify",
          "StopConfigNotify", "()", "", "", "", 0, false },
        { "NOTIFY CONFIG CLEAR", { "NOTIFY", "CONFIG", "CLEAR" }, "ClearConfigNotifyList",
          "ClearConfigNotifyList", "()", "", "", "", 0, false },
        { "NOTIFY RESULT START", { "NOTIFY", "RESULT", "START" }, "StartResultNotify",
          "StartResultNotify", "()", "", "", "", 0, false },
        { "NOTIFY RESULT STOP", { "NOTIFY", "RESULT", "STOP" }, "StopResultNotify",
          "StopResultNotify", "()", "", "", "", 0, false },
        { "NOTIFY RESULT CLEAR", { "NOTIFY", "RESULT", "CLEAR" }, "ClearResultNotifyList",
          "ClearResultNotifyList", "()", "", "", "", 0, false },
        { "NOTIFY ADD", { "NOTIFY", "CONFIG", "ADD", ":x:" }, "AddToNotifyList",
          "AddToNotifyList as ([':x:'],)", "()", "", "", "", 0, false },
        { "NOTIFY DEL", { "NOTIFY", "RESULT", "DEL", ":x:" }, "DeleteFromNotifyList",
          "DeleteFromNotifyList as ([':x:'],)", "()", "", "", "", 0, false },
        { "DBG SET", { "DBG", "SET", "v" }, "DbgLogCmd", "DbgLogCmd ss ('SET', 'v')", "()", "", "",
          "DBG SET   ERROR     err=\n", 0, true },
        { "DBG GET_IDS", { "DBG", "GET_IDS" }, "DbgLogGetIds", "DbgLogGetIds", "(['a', 'b'],)", "as",
          "a\nb\n", "DBG GET_IDS  ERROR  err=\n", 0, true },
    };
    // clang-format on
    return forms;
}

std::vector<CommandForm> firstForms()
{
    std::vector<CommandForm> firsts;
    for (const CommandForm &form : commandForms()) {
        if (firsts.empty() || firsts.back().words.first() != form.words.first()) {
            firsts.push_back(form);
        }
    }
    return firsts;
}

std::vector<CommandForm> firstFormsThatWait()
{
    std::vector<CommandForm> waiting;
    for (const CommandForm &form : firstForms()) {
        if (form.waits) {
            waiting.push_back(form);
        }
    }
    return waiting;
}

const CommandForm &monitorForm()
{
    static const CommandForm monitor { "SIG", { "SIG" }, "", {}, {}, "", {}, {}, 0, false };
    return monitor;
}

QByteArrayList requestOf(const CommandForm &form)
{
    return QByteArrayList { "com.varn.tul", "/" } + form.words;
}

void answerAll(FakeService &service)
{
    // Of two forms that call one member, the answer to the later one is taken by both.
    for (const CommandForm &form : commandForms()) {
        service.answer(form.member, form.answer);
    }
}
