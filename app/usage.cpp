// SPDX-License-Identifier: MIT
#include "app/usage.h"

#include "app/commandline.h"

#include <cstring>
#include <iostream>

namespace
{

// Every character is kept, oddities included: the SET_ALL line occurs twice, two lines end in a
// blank, the SERVERCMD line does not close its bracket, and GET ALL and NOTIFY LOG are shown but
// rejected.
// clang-format off
constexpr const char *usageLines[] = {
    "Command should look similar to following:",
    "",
    "   movra com.varn.tul / DBG SET \"LOG_XDSL, 0, ENABLED\"",
    "   movra com.varn.tul / DBG SET_ALL \"LOG_XDSL, ENABLED\"",
    "   movra com.varn.tul / DBG SET_ALL \"LOG_XDSL, ENABLED\"",
    "   movra com.varn.tul / DBG SET_REPORTING_LEVEL ERROR",
    "   movra com.varn.tul / DBG SET_REPORTING_LEVEL INFO",
    "   movra com.varn.tul / DBG SET_REPORTING_LEVEL DEBUG",
    "   movra com.varn.tul / DBG SET_REPORTING_LEVEL DEBUG1",
    "   movra com.varn.tul / DBG SET_REPORTING_LEVEL DEBUG2",
    "   movra com.varn.tul / DBG SET_REPORTING_LEVEL DEBUG3",
    "   movra com.varn.tul / DBG SET_REPORTING_LEVEL DEBUG4",
    "   movra com.varn.tul / DBG SAVE_TO /tmp/capture1.txt",
    "   movra com.varn.tul / DBG SAVE_STOP",
    "   movra com.varn.tul / DBG GET_IDS",
    "",
    "   movra com.varn.tul / SIG",
    "",
    "   movra com.varn.tul / NOTIFY CONFIG [ START | STOP | CLEAR | ADD <id> | DEL <id> ]",
    "   movra com.varn.tul / NOTIFY RESULT [ START | STOP | CLEAR | ADD <id> | DEL <id> ]",
    "   movra com.varn.tul / NOTIFY LOG [ START <id> | STOP <id> | CLEAR <id> ]",
    "      Example:",
    "       movra com.varn.tul / NOTIFY CONFIG START",
    "       movra com.varn.tul / NOTIFY RESULT START",
    "       movra com.varn.tul / NOTIFY RESULT ADD :result:data:ftp:percentTransfered:0:",
    "       movra com.varn.tul / SIG",
    "",
    "   movra com.varn.tul / SET <id> <value>",
    "   movra com.varn.tul / SETARRAY <id> <length> <values>",
    "      Example:",
    "       movra com.varn.tul / SETARRAY :config:voip:delay: 5 1.1 2.2 3.3 4.4 5.5",
    "       movra com.varn.tul / SETARRAY :config:data:ifnames: 2 wifi bluetooth",
    "       movra com.varn.tul / SETARRAY :config:data:threshold: 3 10 21 40",
    "",
    "   movra com.varn.tul / GET <id>",
    "   movra com.varn.tul / GET [ ALL | STATUS | VALUE | VAL_STAT | VAL_STAT_SEVER ] <id>",
    "      Example:",
    "       movra com.varn.tul / SET :config:data:ftp:userName: pordo_user",
    "       movra com.varn.tul / GET ALL :config:data:ftp:userName:",
    "       movra com.varn.tul / GET STATUS :config:data:ftp:userName:",
    "       movra com.varn.tul / GET VALUE :config:data:ftp:userName:",
    "       movra com.varn.tul / GET :config:data:ftp:userName:",
    "",
    "   movra com.varn.tul / LIST [ RESULTS | CONFIGS | ACTIONS | LOGS ]",
    "   movra com.varn.tul / FILE [ LOAD <filename> | SAVE <filename> ]",
    "   movra com.varn.tul / ACTION [ <string> ]",
    "   movra com.varn.tul / SERVERSTAT ",
    "   movra com.varn.tul / SERVERCMD [ SET_RES_NOTIFY_TIMER | SET_CFG_NOTIFY_TIMER <timeout in ms> ",
    "",
    "    Note: First two args are service name and path for dest dbus server",
};
// clang-format on

bool beginsWith(const char *text, const char *prefix)
{
    return std::strncmp(text, prefix, std::strlen(prefix)) == 0;
}

} // namespace

bool asksForUsage(char **argv)
{
    for (int position = 0; position <= CommandPosition; ++position) {
        if (argv[position] == nullptr) {
            return true;
        }
    }
    return beginsWith(argv[ServicePosition], "-h") || beginsWith(argv[ServicePosition], "--h");
}

void printUsage()
{
    for (const char *line : usageLines) {
        std::cout << line << std::endl;
    }
}
