// SPDX-License-Identifier: MIT
// Requests that the program refuses by itself: one error line, the status, and nothing is sent.
// The table of command forms has their outcomes.
#include "tests/support/commandforms.h"
#include "tests/support/movrarun.h"

#include <QTest>

namespace
{

/// Words after service and path, with one blank between them.
const char *const requests[] = {
    // No command word; only the first position is looked at for the help switch.
    "",
    "NOPE",
    "get",
    "-h",
    "--help x",
    "SERVERSTATS",
    "SERVER",
    // The service decides about an unknown word, but not without a value.
    "DBG",
    "DBG SET",
    "DBG NOSUCH",
    "DBG save_stop",
    "DBG get_ids",
    // A missing action has another status than an unknown one.
    "NOTIFY",
    "NOTIFY CONFIG",
    "NOTIFY RESULT",
    "NOTIFY LOG",
    "NOTIFY NOPE",
    // The usage text offers LOG.
    "NOTIFY LOG START 5",
    "NOTIFY LOG STOP 5",
    "NOTIFY LOG CLEAR 5",
    "NOTIFY config START",
    "NOTIFY CONFIGS START",
    "NOTIFY CONF START",
    "NOTIFY  START",
    "NOTIFY CONFIG start",
    "NOTIFY CONFIG STARTED",
    "NOTIFY RESULT NOPE x",
    "NOTIFY RESULT ",
    "NOTIFY CONFIG ADD",
    "NOTIFY CONFIG DEL",
    "NOTIFY RESULT ADD",
    "NOTIFY RESULT DEL",
    "SET",
    "SET :a:",
    "SETARRAY",
    "SETARRAY :x:int32ARRAY:",
    "SETARRAY :x:int32ARRAY: 1",
    // The positions are tested before the length.
    "SETARRAY :x:int32ARRAY: 0",
    "GET",
    // The usage text offers ALL.
    "GET ALL :x:",
    "GET status :x:",
    "GET VAL :x:",
    "GET VAL_STA :x:",
    "GET \tVALUE :x:",
    "GET  :x:",
    "GET :x: VALUE",
    // An unknown word has the status of a missing one.
    "LIST",
    "LIST NOPE",
    "LIST configs",
    "LIST CONF",
    "LIST \tLOG",
    "LIST ",
    // The positions are tested before the word.
    "FILE",
    "FILE SAVE",
    "FILE NOPE",
    "FILE NOPE a",
    "FILE save a",
    "FILE SAVES a",
    "FILE LOA a",
    "FILE  a",
    "ACTION",
    "SERVERCMD",
    "SERVERCMD SET_RES_NOTIFY_TIMER",
    "SERVERCMD NO",
    "SERVERCMD NO 1",
    "SERVERCMD set_res_notify_timer 100",
    "SERVERCMD SET_RES_NOTIFY_TIMERS 100",
    "SERVERCMD SET_RES_NOTIFY 100",
    "SERVERCMD  100",
};

std::vector<MovraRow> rows()
{
    std::vector<MovraRow> table;
    for (const QByteArray request : requests) {
        const QByteArrayList words = request.split(' ');
        const CommandForm form = formOf(words);
        table.push_back({ "movra SERVICE PATH " + request,
                          QByteArrayList { "@", "/" } + words,
                          {},
                          form.failed,
                          {},
                          form.failedStatus });
    }
    return table;
}

struct tst_Refusals : MovraRowsTest {
    tst_Refusals()
        : MovraRowsTest(rows())
    {
    }
};

} // namespace

QTEST_GUILESS_MAIN(tst_Refusals)
