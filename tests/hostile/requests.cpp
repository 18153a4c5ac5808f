// SPDX-License-Identifier: MIT
#include "tests/hostile/requests.h"

#include "tests/support/capture.h"

#include <QtGlobal>

const std::vector<Request> &requests()
{
    static const char *const ofGet = "Reply Not Valid   err=\n";
    static const char *const ofOthers = "Reply Not Valid     err=\n";
    // clang-format off
    static const std::vector<Request> all {
        { "GET", &Movra::getCommand, { ":x:" }, "GetValue", "v", ofGet, 0 },
        { "GET of doubles", &Movra::getCommand, { ":doubleARRAY:" }, "GetValue", "v", ofGet, 0 },
        { "GET of uint64", &Movra::getCommand, { ":uint64ARRAY:" }, "GetValue", "v", ofGet, 0 },
        { "GET of int32", &Movra::getCommand, { ":int32ARRAY:" }, "GetValue", "v", ofGet, 0 },
        { "GET STATUS", &Movra::getCommand, { "STATUS", ":x:" }, "GetStatus", "i", ofGet, 0 },
        { "GET VAL_STAT", &Movra::getCommand, { "VAL_STAT", ":uint32ARRAY:" }, "GetValueStatus",
          "(svi)", ofGet, 0 },
        { "LIST CONFIGS", &Movra::listCommand, { "CONFIGS" }, "ListConfigIds", "as", "", 3 },
        { "LIST RESULTS", &Movra::listCommand, { "RESULTS" }, "ListResultIds", "as", "", 3 },
        { "LIST ACTIONS", &Movra::listCommand, { "ACTIONS" }, "ListActionIds", "as", "", 3 },
        { "LIST LOGS", &Movra::listCommand, { "LOGS" }, "LogGetIds", "s", "", 3 },
        { "FILE SAVE", &Movra::fileCommand, { "SAVE", "x" }, "SaveConfig", "b", ofOthers, 0 },
        { "FILE LOAD", &Movra::fileCommand, { "LOAD", "x" }, "LoadConfig", "b", ofOthers, 0 },
        { "ACTION", &Movra::actionCommand, { "x" }, "DoAction", "", ofOthers, 0 },
        { "ACTION with a value", &Movra::actionCommand, { "x", "y" }, "DoAction", "s", ofOthers,
          0 },
        { "SERVERSTAT", &Movra::serverStatCommand, {}, "DBusServerStatus", "i", ofOthers, 0 },
        { "SERVERCMD", &Movra::serverCmdCommand, { "SET_RES_NOTIFY_TIMER", "1" }, "DBusServerCmd",
          "", ofOthers, 0 },
        { "DBG", &Movra::dbgCommand, { "SET", "x" }, "DbgLogCmd", "",
          "DBG SET   ERROR     err=\n", 0 },
        { "DBG GET_IDS", &Movra::dbgCommand, { "GET_IDS" }, "DbgLogGetIds", "as",
          "DBG GET_IDS  ERROR  err=\n", 0 },
        // Nobody waits for these: whatever comes back, nothing is printed.
        { "SET", &Movra::setCommand, { ":x:", "1" }, "SetValue", "", "", 0 },
        { "SETARRAY", &Movra::setArrayCommand, { ":doubleARRAY:", "1", "2" }, "SetValue", "", "",
          0 },
        { "NOTIFY CONFIG START", &Movra::notifyCommand, { "CONFIG", "START" }, "StartConfigNotify",
          "", "", 0 },
        { "NOTIFY CONFIG STOP", &Movra::notifyCommand, { "CONFIG", "STOP" }, "StopConfigNotify",
          "", "", 0 },
        { "NOTIFY CONFIG CLEAR", &Movra::notifyCommand, { "CONFIG", "CLEAR" },
          "ClearConfigNotifyList", "", "", 0 },
        { "NOTIFY CONFIG ADD", &Movra::notifyCommand, { "CONFIG", "ADD", "x" }, "AddToNotifyList",
          "", "", 0 },
        { "NOTIFY RESULT START", &Movra::notifyCommand, { "RESULT", "START" }, "StartResultNotify",
          "", "", 0 },
        { "NOTIFY RESULT STOP", &Movra::notifyCommand, { "RESULT", "STOP" }, "StopResultNotify",
          "", "", 0 },
        { "NOTIFY RESULT CLEAR", &Movra::notifyCommand, { "RESULT", "CLEAR" },
          "ClearResultNotifyList", "", "", 0 },
        { "NOTIFY RESULT DEL", &Movra::notifyCommand, { "RESULT", "DEL", "x" },
          "DeleteFromNotifyList", "", "", 0 },
    };
    // clang-format on
    return all;
}

Outcome make(const Request &request, Movra &movra)
{
    QByteArrayList words = QByteArrayList { "movra", "com.varn.tul", "/", "WORD" };
    words += request.arguments;
    std::vector<char *> argv;
    argv.reserve(static_cast<std::size_t>(words.size()) + 2);
    for (QByteArray &word : words) {
        argv.push_back(word.data());
    }
    argv.insert(argv.end(), { nullptr, nullptr });

    Outcome outcome {};
    outcome.out = captureOutput([&] {
        outcome.err =
            captureErrors([&] { outcome.status = (movra.*request.handler)(argv.data()); });
    });
    return outcome;
}

QByteArray faultOf(const Request &request, const Outcome &outcome, bool taken)
{
    // Of some answers nothing is shown.
    const bool shown = qstrlen(request.expected) != 0 && qstrcmp(request.expected, "b") != 0;
    if (outcome.status != (taken ? 0 : request.failureStatus)) {
        return "status " + QByteArray::number(outcome.status);
    }
    if (!outcome.err.isEmpty()) {
        return "on standard error: " + outcome.err.left(2000);
    }
    if (taken ? !shown && !outcome.out.isEmpty() : outcome.out != request.failure) {
        return "on standard output: " + outcome.out.left(2000);
    }
    if (taken && shown && !outcome.out.isEmpty() && outcome.out == request.failure) {
        return "taken for a failure";
    }
    return {};
}

int setting(const char *name, int usual)
{
    return qEnvironmentVariableIsSet(name) ? qEnvironmentVariableIntValue(name) : usual;
}
