# SPDX-License-Identifier: MIT
"""What is typed, and the expected result."""

SERVICES = [
    ("com.varn.tul",),
    ("com.varn.hostile", "--path", "/com/varn/pim", "--catalog", "HERE/hostile.json"),
    ("com.varn.silent",),
]

# Must never be offered: FILE and DBG SAVE_TO name files of the service.
FILES = ["evening.json", "evening two.json"]

CONFIGS = [
    ":config:data:balance:int64ARRAY:",
    ":config:data:ftp:budget:",
    ":config:data:ftp:limit:",
    ":config:data:ftp:passive:",
    ":config:data:ftp:port:",
    ":config:data:ftp:retries:",
    ":config:data:ftp:userName:",
    ":config:data:ifnames:",
    ":config:data:ifnames:stringARRAY:",
    ":config:data:offset:int32ARRAY:",
    ":config:data:quota:uint64ARRAY:",
    ":config:data:threshold:uint32ARRAY:",
    ":config:voip:delay:doubleARRAY:",
    ":config:voip:gain:floatARRAY:",
    ":config:voip:jitter:",
    ":config:xdsl:line:profile:",
]
ARRAYS = [
    ":config:data:balance:int64ARRAY:",
    ":config:data:ifnames:stringARRAY:",
    ":config:data:offset:int32ARRAY:",
    ":config:data:quota:uint64ARRAY:",
    ":config:data:threshold:uint32ARRAY:",
    ":config:voip:delay:doubleARRAY:",
    ":config:voip:gain:floatARRAY:",
]
RESULTS = [
    ":result:data:ftp:bytes:0:",
    ":result:data:ftp:percentTransfered:0:",
    ":result:data:ftp:server:",
    ":result:voip:call:active:",
    ":result:voip:call:loss:",
    ":result:xdsl:line:margin:doubleARRAY:",
    ":result:xdsl:line:rate:0:",
]
ACTIONS = [
    ":action:data:ftp:download:",
    ":action:data:ftp:ping:",
    ":action:data:threshold:scan:",
    ":action:voip:delay:measure:",
    ":action:xdsl:line:drop:",
]

# Words of the usage text that movra rejects.
REFUSED = ["ALL", "LOG"]

TUL = "movra com.varn.tul / "
VAST = "movra com.varn.vast / "
HOSTILE = "movra com.varn.hostile /com/varn/pim "

# Name, line, all candidates for its last word.
CANDIDATES = [
    ("services", "movra ", ["com.varn.hostile", "com.varn.silent", "com.varn.tul",
                             "com.varn.vast"]),
    ("commands with the same beginning", TUL + "SE", ["SET", "SETARRAY", "SERVERSTAT", "SERVERCMD"]),
    ("GET", TUL + "GET ",
     ["STATUS", "VALUE", "VAL_STAT", "VAL_STAT_SEVER"] + CONFIGS + RESULTS),
    ("GET, words only", TUL + "GET VAL", ["VALUE", "VAL_STAT", "VAL_STAT_SEVER"]),
    ("GET STATUS", TUL + "GET STATUS ", CONFIGS + RESULTS),
    ("GET VALUE", TUL + "GET VALUE ", CONFIGS + RESULTS),
    ("GET VAL_STAT", TUL + "GET VAL_STAT ", CONFIGS + RESULTS),
    ("GET VAL_STAT_SEVER", TUL + "GET VAL_STAT_SEVER ", CONFIGS + RESULTS),
    ("SET", TUL + "SET ", CONFIGS),
    ("SET of a boolean", TUL + "SET :config:data:ftp:passive: ", ["true", "false"]),
    ("SETARRAY: ids with a kind", TUL + "SETARRAY ", ARRAYS),
    ("a beginning with colons", TUL + "GET :config:data:f",
     [":config:data:ftp:budget:", ":config:data:ftp:limit:", ":config:data:ftp:passive:",
      ":config:data:ftp:port:", ":config:data:ftp:retries:", ":config:data:ftp:userName:"]),
    ("a beginning that ends in a colon", TUL + "SET :config:voip:",
     [":config:voip:delay:doubleARRAY:", ":config:voip:gain:floatARRAY:", ":config:voip:jitter:"]),
    ("one colon", TUL + "ACTION :", ACTIONS),
    ("ACTION", TUL + "ACTION ", ACTIONS),
    ("no ids with control characters", HOSTILE + "ACTION ", [":action:harmless:"]),
    ("LIST", TUL + "LIST ", ["CONFIGS", "RESULTS", "ACTIONS", "LOGS"]),
    ("FILE", TUL + "FILE ", ["SAVE", "LOAD"]),
    ("NOTIFY", TUL + "NOTIFY ", ["CONFIG", "RESULT"]),
    ("NOTIFY CONFIG", TUL + "NOTIFY CONFIG ", ["START", "STOP", "CLEAR", "ADD", "DEL"]),
    ("NOTIFY RESULT", TUL + "NOTIFY RESULT ", ["START", "STOP", "CLEAR", "ADD", "DEL"]),
    ("NOTIFY CONFIG ADD", TUL + "NOTIFY CONFIG ADD ", CONFIGS),
    ("NOTIFY CONFIG DEL", TUL + "NOTIFY CONFIG DEL ", CONFIGS),
    ("NOTIFY RESULT ADD", TUL + "NOTIFY RESULT ADD ", RESULTS),
    ("NOTIFY RESULT DEL", TUL + "NOTIFY RESULT DEL ", RESULTS),
    ("DBG", TUL + "DBG ",
     ["SET", "SET_ALL", "SET_REPORTING_LEVEL", "SAVE_TO", "SAVE_STOP", "GET_IDS"]),
    ("DBG SET", TUL + "DBG SET ",
     ["LOG_DATA, 0, ENABLED", "LOG_DATA, 0, DISABLED", "LOG_VOIP, 0, ENABLED",
      "LOG_VOIP, 0, DISABLED", "LOG_XDSL, 0, ENABLED", "LOG_XDSL, 0, DISABLED"]),
    ("DBG SET_ALL", TUL + "DBG SET_ALL ",
     ["LOG_DATA, ENABLED", "LOG_DATA, DISABLED", "LOG_VOIP, ENABLED", "LOG_VOIP, DISABLED",
      "LOG_XDSL, ENABLED", "LOG_XDSL, DISABLED"]),
    ("DBG SET_REPORTING_LEVEL", TUL + "DBG SET_REPORTING_LEVEL ",
     ["ERROR", "INFO", "DEBUG", "DEBUG1", "DEBUG2", "DEBUG3", "DEBUG4"]),
    ("SERVERCMD", TUL + "SERVERCMD ", ["SET_RES_NOTIFY_TIMER", "SET_CFG_NOTIFY_TIMER"]),
    ("no id of 10 MB", VAST + "SET ", [":config:first:", ":config:last:"]),
    ("options of movra-sim", "movra-sim --ca", ["--catalog", "--capture"]),
    ("options of movra-sim, after a value", "movra-sim --fault GetValue=delay:5 --ver", ["--version"]),
    ("members of --fault", "movra-sim --fault GetValue", ["GetValue=", "GetValueStatus="]),
    ("faults", "movra-sim --fault GetValue=",
     ["GetValue=delay:", "GetValue=refuse", "GetValue=refuse:", "GetValue=error:",
      "GetValue=wrong-type", "GetValue=silence", "GetValue=vanish"]),
    ("faults after an equals sign", "movra-sim --fault=GetValue=re",
     ["--fault=GetValue=refuse", "--fault=GetValue=refuse:"]),
    ("a path and a mark for 200,000 nodes", "movra com.varn.vast ", ["/", "+more"]),
    ("the 100 of 200,000 ids with this beginning", VAST + "NOTIFY RESULT ADD :result:1999",
     [f":result:{number:06}:" for number in range(199900, 200000)]),
]

# A service that does not answer.
UNANSWERED = "movra com.varn.silent / SET :config:"

# Name, line, the line after a Tab.
LINES = [
    ("a service", "movra com.varn.t", "movra com.varn.tul "),
    ("the path /", "movra com.varn.tul ", TUL),
    ("a path further down", "movra com.varn.hostile ", HOSTILE),
    ("the path of a service that does not run", "movra com.varn.nobody ", "movra com.varn.nobody / "),
    ("a malformed path", "movra com.varn.tul --", "movra com.varn.tul --"),
    ("a command", TUL + "NO", TUL + "NOTIFY "),
    ("the common beginning of all ids", TUL + "SET :config:data:f", TUL + "SET :config:data:ftp:"),
    ("the only id", TUL + "SET :config:data:ftp:u", TUL + "SET :config:data:ftp:userName: "),
    ("the only id, from its first letter", TUL + "NOTIFY RESULT ADD :result:xdsl:line:r",
     TUL + "NOTIFY RESULT ADD :result:xdsl:line:rate:0: "),
    ("an id between quotes", TUL + "SET ':config:data:ftp:u",
     TUL + "SET ':config:data:ftp:userName:' "),
    ("quoted service and path", "movra 'com.varn.tul' \"/\" SET :config:data:ftp:u",
     "movra 'com.varn.tul' \"/\" SET :config:data:ftp:userName: "),
    ("the same with more blanks", "movra  com.varn.tul   / SET :config:data:ftp:u",
     "movra  com.varn.tul   / SET :config:data:ftp:userName: "),
    ("after another command", "true; " + TUL + "SET :config:data:ftp:u",
     "true; " + TUL + "SET :config:data:ftp:userName: "),
    ("the common beginning of 1,000 of 200,000 ids", VAST + "NOTIFY RESULT ADD :result:0",
     VAST + "NOTIFY RESULT ADD :result:0"),
    ("an option of movra-sim", "movra-sim --fa", "movra-sim --fault "),
    ("a member without a blank after it", "movra-sim --fault GetStat", "movra-sim --fault GetStatus="),
    ("a fault without a blank before its time", "movra-sim --fault GetStatus=d", "movra-sim --fault GetStatus=delay:"),
    ("a fault without a value", "movra-sim --fault GetStatus=v", "movra-sim --fault GetStatus=vanish "),
    ("a fault of one id", "movra-sim --fault 'GetStatus(:config:a=b:)=v",
     "movra-sim --fault 'GetStatus(:config:a=b:)=vanish' "),
    ("a file", "movra-sim --catalog evening.", "movra-sim --catalog evening.json "),
    ("a file after an equals sign", "movra-sim --check=evening.", "movra-sim --check=evening.json "),
    ("a directory", "movra-sim --state /usr/shar", "movra-sim --state /usr/share/"),
    ("a directory after an equals sign", "movra-sim --state=/usr/shar", "movra-sim --state=/usr/share/"),
    ("true or false", TUL + "SET :config:data:ftp:passive: t",
     TUL + "SET :config:data:ftp:passive: true "),
]

# The same for the command that movra-sim runs. bash needs bash-completion for it.
COMMAND_LINES = [
    ("a command", "movra-sim --path / -- dbus-run-sess", "movra-sim --path / -- dbus-run-session "),
    ("the words of a command", "movra-sim -- " + TUL + "NO", "movra-sim -- " + TUL + "NOTIFY "),
    ("an id for a command", "movra-sim -- " + TUL + "SET :config:data:ftp:u",
     "movra-sim -- " + TUL + "SET :config:data:ftp:userName: "),
]

# Name, line, the words that movra gets after a Tab and Enter.
HOSTILE_SET = ["com.varn.hostile", "/com/varn/pim", "SET"]
WORDS = [
    ("an id with a command substitution", HOSTILE + "SET :config:d",
     HOSTILE_SET + [":config:dollar:$(touch pwned)${HOME}:"]),
    ("an id with a command substitution, between quotes", HOSTILE + 'SET ":config:d',
     HOSTILE_SET + [":config:dollar:$(touch pwned)${HOME}:"]),
    ("an id with grave accents", HOSTILE + "SET :config:g",
     HOSTILE_SET + [":config:grave:`touch pwned`:"]),
    ("an id with a blank", HOSTILE + "SET :config:b", HOSTILE_SET + [":config:blank:two words:"]),
    ("an id with a blank, between quotes", HOSTILE + "SET ':config:b",
     HOSTILE_SET + [":config:blank:two words:"]),
    ("an id with a blank, partly typed", HOSTILE + "SET :config:blank:two\\ w", HOSTILE_SET + [":config:blank:two words:"]),
    ("an id with all special characters", HOSTILE + "SET :config:s",
     HOSTILE_SET + [":config:signs:'\"\\;&|<>*?[]{}()~#!%^=@,:"]),
    ("an id beyond ASCII", HOSTILE + "SET :config:u", HOSTILE_SET + [":config:umlaut:ü:"]),
    ("an id with a tilde at its beginning", HOSTILE + "SET \\~r", HOSTILE_SET + ["~root:"]),
    ("the same between quotes", HOSTILE + "SET '~r", HOSTILE_SET + ["~root:"]),
    ("the only id, with a tilde at its beginning", HOSTILE + "NOTIFY RESULT ADD ",
     HOSTILE_SET[:2] + ["NOTIFY", "RESULT", "ADD", "~user:"]),
    ("the value of a log", TUL + "DBG SET LOG_X\tE",
     ["com.varn.tul", "/", "DBG", "SET", "LOG_XDSL, 0, ENABLED"]),
    ("the value of a log, between quotes", TUL + 'DBG SET "LOG_X\tE',
     ["com.varn.tul", "/", "DBG", "SET", "LOG_XDSL, 0, ENABLED"]),
]

# bash quotes nothing inside double quotes. fish does not close the quote after a colon and cannot quote a
# tilde.
LEFT_OUT = {"bash": ["an id with a command substitution, between quotes"],
            "fish": ["an id with a command substitution, between quotes",
                     "an id with a blank, between quotes", "the same between quotes",
                     "the only id, with a tilde at its beginning"]}
SILENT_IN = {
    "bash": [("no command substitution between quotes", HOSTILE + 'SET ":config:d'),
             ("no grave accents between quotes", HOSTILE + 'SET ":config:g')],
    "fish": [("no tilde without a quote", HOSTILE + "NOTIFY RESULT ADD ")],
}

# Name, a line that a Tab does not change.
SILENT = [
    ("no unique names", "movra :"),
    ("not the bus itself", "movra org"),
    ("no unknown command", TUL + "X"),
    ("GET ALL is rejected", TUL + "GET AL"),
    ("NOTIFY LOG is rejected", TUL + "NOTIFY LO"),
    ("nothing after SIG", TUL + "SIG "),
    ("nothing after SERVERSTAT", TUL + "SERVERSTAT "),
    ("nothing after the id of GET", TUL + "GET :config:data:ftp:port: "),
    ("nothing after GET and its word and id", TUL + "GET VALUE :config:data:ftp:port: "),
    ("nothing after NOTIFY CONFIG START", TUL + "NOTIFY CONFIG START "),
    ("nothing after LIST CONFIGS", TUL + "LIST CONFIGS "),
    ("no file as the name of FILE SAVE", TUL + "FILE SAVE even"),
    ("no file as the name of FILE LOAD", TUL + "FILE LOAD even"),
    ("no file as the name of DBG SAVE_TO", TUL + "DBG SAVE_TO even"),
    ("no file as the value of an integer", TUL + "SET :config:data:ftp:port: even"),
    ("nothing for the value of an unknown id", TUL + "SET :config:no:such: "),
    ("no file as a value", TUL + "SET :config:data:ftp:userName: even"),
    ("nothing after DBG GET_IDS", TUL + "DBG GET_IDS "),
    ("nothing after a timer's word", TUL + "SERVERCMD SET_RES_NOTIFY_TIMER "),
    ("nothing for an unknown word", TUL + "NOSUCH "),
    ("a name without an owner", "movra com.varn.nobody / SET :config:"),
    ("a service that could be started", "movra com.varn.asleep / SET :config:"),
    ("a service name with a command substitution", "movra '$(touch pwned)' / SET :config:"),
    ("words that are commands", "movra touch pwned ask"),
    ("a path that is an option", "movra com.varn.tul --bus=unixexec:path=touch,argv1=pwned SET :config:"),
    ("a path that does not exist", "movra com.varn.tul /no/such SET :config:"),
    ("no file as a bus name", "movra-sim --service even"),
    ("no file as the id of a fault", "movra-sim --fault 'GetValue(even"),
    ("no file as the time of a fault", "movra-sim --fault GetValue=delay:even"),
    ("no file as a directory", "movra-sim --state even"),
    ("no arguments without an option", "movra-sim even"),
    ("an id with an escape sequence", HOSTILE + "SET :config:e"),
    ("an id of several lines", HOSTILE + "SET :config:l"),
    ("an id with a tab", HOSTILE + "SET :config:t"),
    ("an id with U+009B", HOSTILE + "SET ':config:c"),
    ("an id that changes the direction of writing", HOSTILE + "SET ':config:r"),
]

# The same in the locale C.
SILENT_IN_LOCALE_C = [
    ("an id with U+009B", HOSTILE + "SET ':config:c"),
    ("an id beyond ASCII", HOSTILE + "SET ':config:u"),
]

# The same without a bus, and without dbus-send.
SILENT_WITHOUT = [
    ("no service without a bus or dbus-send", "movra com.varn.t"),
    ("no id without a bus or dbus-send", TUL + "SET :config:data:f"),
]
