// SPDX-License-Identifier: MIT
#include "tests/support/commandforms.h"

#include "tests/support/fakeservice.h"
#include "tests/support/movrarun.h"

#include <algorithm>

namespace
{

CommandForm form(const char *name, const QByteArray &call, const char *answer,
                 const char *signature, const char *out, const QByteArray &failed,
                 int failedStatus = 0)
{
    QByteArray typed = name;
    for (const char *sign : { "<", ">", "*" }) {
        typed.replace(sign, "");
    }
    const bool waits = !call.isEmpty() && !failed.isEmpty();
    return { name,   typed.split(' '), call, call.split(' ').first(), answer, signature, out,
             failed, failedStatus,     waits };
}

/// A form that does not wait for its reply.
CommandForm sends(const char *name, const char *call)
{
    return form(name, call, "()", "", "", "");
}

CommandForm rejected(const char *name, int status)
{
    return form(name, "", "", "", "", error(status), status);
}

/// The first form that fits is used. A known command with words that fit no form has status 3.
const std::vector<CommandForm> &allForms()
{
    static const QByteArray getFailed = "Reply Not Valid   err=\n";
    static const QByteArray failed = "Reply Not Valid     err=\n";
    static const QByteArray listFailed = "Error While Parsing Command -- use -h for help   err:3\n";
    // clang-format off
    static const std::vector<CommandForm> forms {
        form("DBG GET_IDS", "DbgLogGetIds", "(['a', 'b'],)", "as", "a\nb\n",
             "DBG GET_IDS  ERROR  err=\n"),
        form("DBG SAVE_STOP", "DbgLogCmd ss ('SAVE_STOP', '')", "()", "", "",
             "DBG SAVE_STOP   ERROR     err=\n"),
        form("DBG <SET> <v>", "DbgLogCmd ss ('SET', 'v')", "()", "", "",
             "DBG SET   ERROR     err=\n"),
        rejected("DBG <SET>", 2),
        form("SIG", "", "", "", "", ""),
        sends("NOTIFY CONFIG START", "StartConfigNotify"),
        sends("NOTIFY CONFIG STOP", "StopConfigNotify"),
        sends("NOTIFY CONFIG CLEAR", "ClearConfigNotifyList"),
        sends("NOTIFY CONFIG ADD <:x:>", "AddToNotifyList as ([':x:'],)"),
        sends("NOTIFY CONFIG DEL <:x:>", "DeleteFromNotifyList as ([':x:'],)"),
        rejected("NOTIFY CONFIG <NO>", 3),
        sends("NOTIFY RESULT START", "StartResultNotify"),
        sends("NOTIFY RESULT STOP", "StopResultNotify"),
        sends("NOTIFY RESULT CLEAR", "ClearResultNotifyList"),
        sends("NOTIFY RESULT ADD <:x:>", "AddToNotifyList as ([':x:'],)"),
        sends("NOTIFY RESULT DEL <:x:>", "DeleteFromNotifyList as ([':x:'],)"),
        rejected("NOTIFY RESULT <NO>", 3),
        rejected("NOTIFY <LOG>", 2),
        sends("SET <:x:> <5>", "SetValue a(sv) ([(':x:', <'5'>)],)"),
        sends("SETARRAY <:int32ARRAY:> <1> <5>", "SetValue a(sv) ([(':int32ARRAY:', <[5]>)],)"),
        form("GET STATUS* <:x:>", "GetStatus s (':x:',)", "(7,)", "i", "7\n", getFailed),
        form("GET VALUE* <:x:>", "GetValue s (':x:',)", "(<'text'>,)", "v", "text\n", getFailed),
        form("GET VAL_STAT* <:x:>", "GetValueStatus s (':x:',)", "((':x:', <'text'>, 7),)", "(svi)",
             "status=7\ntext\n", getFailed),
        rejected("GET <ALL> <:x:>", 2),
        form("GET <:x:>", "GetValue s (':x:',)", "(<'text'>,)", "v", "text\n", getFailed),
        form("LIST CONFIG*S", "ListConfigIds", "(['a', 'b'],)", "as", "a\nb\n", listFailed, 3),
        form("LIST RESULT*S", "ListResultIds", "(['a', 'b'],)", "as", "a\nb\n", listFailed, 3),
        form("LIST ACTION*S", "ListActionIds", "(['a', 'b'],)", "as", "a\nb\n", listFailed, 3),
        form("LIST LOG*S", "LogGetIds", "('a,b',)", "s", "a,b\n", listFailed, 3),
        form("FILE SAVE <f>", "SaveConfig s ('f',)", "(true,)", "b", "", failed),
        form("FILE LOAD <f>", "LoadConfig s ('f',)", "(true,)", "b", "", failed),
        rejected("FILE <NO> <f>", 2),
        // One member: the fake service gives both the same answer.
        form("ACTION <:a:> <v>", "DoAction ss (':a:', 'v')", "('done',)", "s", "done\n", failed),
        form("ACTION <:a:>", "DoAction s (':a:',)", "('done',)", "", "", failed),
        form("SERVERSTAT", "DBusServerStatus", "(5,)", "i", "5\n", failed),
        form("SERVERCMD SET_RES_NOTIFY_TIMER <9>",
             "DBusServerCmd sv ('SET_RES_NOTIFY_TIMER', <9>)", "()", "", "", failed),
        form("SERVERCMD SET_CFG_NOTIFY_TIMER <9>",
             "DBusServerCmd sv ('SET_CFG_NOTIFY_TIMER', <9>)", "()", "", "", failed),
        rejected("SERVERCMD <NO> <9>", 2),
    };
    // clang-format on
    return forms;
}

bool fits(const QByteArrayList &words, const char *name)
{
    const QByteArrayList pattern = QByteArray(name).split(' ');
    return words.size() >= pattern.size()
        && std::equal(pattern.begin(), pattern.end(), words.begin(),
                      [](const QByteArray &part, const QByteArray &word) {
                          const int asterisk = part.indexOf('*');
                          return part.startsWith('<')
                              || (asterisk < 0 ? word == part
                                               : word.startsWith(part.left(asterisk)));
                      });
}

template <typename Test> std::vector<CommandForm> formsThat(const Test &test)
{
    std::vector<CommandForm> forms;
    std::copy_if(allForms().begin(), allForms().end(), std::back_inserter(forms), test);
    return forms;
}

} // namespace

const std::vector<CommandForm> &commandForms()
{
    static const std::vector<CommandForm> forms =
        formsThat([](const CommandForm &row) { return !row.call.isEmpty(); });
    return forms;
}

std::vector<CommandForm> firstForms()
{
    QByteArray last;
    return formsThat([&last](const CommandForm &row) {
        const bool isFirst = !row.call.isEmpty() && row.words.first() != last;
        last = row.words.first();
        return isFirst;
    });
}

std::vector<CommandForm> firstFormsThatWait()
{
    std::vector<CommandForm> forms = firstForms();
    forms.erase(std::remove_if(forms.begin(), forms.end(),
                               [](const CommandForm &row) { return !row.waits; }),
                forms.end());
    return forms;
}

const CommandForm &monitorForm()
{
    static const CommandForm monitor = formOf({ "SIG" });
    return monitor;
}

QByteArrayList commandWords()
{
    QByteArrayList words;
    for (const CommandForm &row : allForms()) {
        if (!words.contains(row.words.first())) {
            words.append(row.words.first());
        }
    }
    return words;
}

CommandForm formOf(const QByteArrayList &words)
{
    for (const CommandForm &row : allForms()) {
        if (fits(words, row.name)) {
            return row;
        }
    }
    return rejected("", commandWords().contains(words.value(0)) ? 3 : 1);
}

QByteArrayList requestOf(const CommandForm &form)
{
    return QByteArrayList { "com.varn.tul", "/" } + form.words;
}

void answerAll(FakeService &service)
{
    for (const CommandForm &row : commandForms()) {
        service.answer(row.member, row.answer);
    }
}
