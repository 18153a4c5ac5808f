# SPDX-License-Identifier: MIT
# Completion of movra for fish, with the names on the session bus and the ids that the running service
# lists. What a service says is only ever printed, never evaluated.
# It waits for a second at most, or for MOVRA_COMPLETION_SECONDS: a bus may be far away.

# DESTINATION PATH METHOD [ARGUMENT]: prints the answer as dbus-send shows it, if there is one before
# the end. Without a display, dbus-send does not start a session bus.
function __movra_call
    set -l left (math $__movra_end - (date +%s.%N))
    test $left -gt 0
    and DISPLAY= timeout $left dbus-send --session --print-reply \
        --dest=$argv[1] $argv[2..] </dev/null 2>/dev/null
end

# Leaves the texts of an answer, a line each, but for those with control characters.
function __movra_texts
    sed -n '/[[:cntrl:]]/d; s/^ *string "\(..*\)"$/\1/p'
end

function __movra_services
    __movra_call org.freedesktop.DBus / org.freedesktop.DBus.ListNames | __movra_texts |
        string match -rv '^(:.*|org\.freedesktop\.DBus)$'
end

# SERVICE: prints who owns the name. A call to the owner starts no service.
function __movra_owner
    __movra_call org.freedesktop.DBus / org.freedesktop.DBus.GetNameOwner string:$argv[1] |
        __movra_texts
end

# SERVICE: prints the paths of the objects that have the interface. Looks from / down until a
# call fails, which all do when the time is over.
function __movra_paths
    set -l owner (__movra_owner $argv[1])
    set -l paths /
    set -l found
    while test -n "$owner" -a -n "$paths"
        set -l description (
            __movra_call $owner $paths[1] org.freedesktop.DBus.Introspectable.Introspect)
        or break
        string match -q '*<interface name="varn.pim"*' -- $description
        and set -a found $paths[1]
        set -a paths (string replace -r '/$' '' -- $paths[1])/(
            string match -rg '<node name="([A-Za-z0-9_]+)"' -- $description)
        set -e paths[1]
    end
    set -q found[1]; or set found /
    printf '%s\n' $found
end

# METHOD...: prints what the methods list. fish calls one after the other.
function __movra_ids
    set -l words (commandline -opc)
    set -l owner (__movra_owner $words[2])
    test -n "$owner"; or return
    for method in varn.pim.$argv
        __movra_call $owner $words[3] $method | __movra_texts
    end
end

function __movra_candidates
    set -l words (commandline -opc)
    set -q MOVRA_COMPLETION_SECONDS; or set -l MOVRA_COMPLETION_SECONDS 1
    set -g __movra_end (math (date +%s.%N) + $MOVRA_COMPLETION_SECONDS 2>/dev/null)
    switch (count $words)
        case 1
            __movra_services
            return
        case 2
            __movra_paths $words[2]
            return
    end
    switch "$words[4..]"
        case ''
            printf '%s\n' DBG SIG NOTIFY SET SETARRAY GET LIST FILE ACTION SERVERSTAT SERVERCMD
        case DBG
            printf '%s\n' SET SET_ALL SET_REPORTING_LEVEL SAVE_TO SAVE_STOP GET_IDS
        case 'DBG SET' 'DBG SET_ALL'
            __movra_ids DbgLogGetIds
        case 'DBG SET_REPORTING_LEVEL'
            printf '%s\n' ERROR INFO DEBUG DEBUG1 DEBUG2 DEBUG3 DEBUG4
        case NOTIFY
            printf '%s\n' CONFIG RESULT
        case 'NOTIFY CONFIG' 'NOTIFY RESULT'
            printf '%s\n' START STOP CLEAR ADD DEL
        case 'NOTIFY CONFIG ADD' 'NOTIFY CONFIG DEL' SET
            __movra_ids ListConfigIds
        case 'NOTIFY RESULT ADD' 'NOTIFY RESULT DEL'
            __movra_ids ListResultIds
        case SETARRAY
            __movra_ids ListConfigIds | string match -r '.*(?:double|float|int32|int64|string)ARRAY.*'
        case GET
            printf '%s\n' STATUS VALUE VAL_STAT VAL_STAT_SEVER
            __movra_ids ListConfigIds ListResultIds
        case 'GET STATUS' 'GET VALUE' 'GET VAL_STAT' 'GET VAL_STAT_SEVER'
            __movra_ids ListConfigIds ListResultIds
        case LIST
            printf '%s\n' CONFIGS RESULTS ACTIONS LOGS
        case FILE
            printf '%s\n' SAVE LOAD
        case ACTION
            __movra_ids ListActionIds
        case SERVERCMD
            printf '%s\n' SET_RES_NOTIFY_TIMER SET_CFG_NOTIFY_TIMER
    end
end

function __movra_wants_a_file
    set -l words (commandline -opc)
    contains -- "$words[4..]" 'FILE SAVE' 'FILE LOAD' 'DBG SAVE_TO'
end

complete -c movra -f -a '(__movra_candidates)'
complete -c movra -n __movra_wants_a_file -F
