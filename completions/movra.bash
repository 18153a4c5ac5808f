# shellcheck shell=bash
# SPDX-License-Identifier: MIT
# Completion of movra for bash, with the names on the session bus and the ids that the running
# service lists. What a service says is only ever compared and quoted, never evaluated.
# It waits for a second at most, or for MOVRA_COMPLETION_SECONDS: a bus may be far away.

# _movra_call DESTINATION PATH METHOD [ARGUMENT]: prints the answer as dbus-send shows it, if there is
# one before the end. Without a display, dbus-send does not start a session bus.
_movra_call() {
    local left=$((end - ${EPOCHREALTIME//[!0-9]/}))
    ((left > 0)) && DISPLAY='' timeout "${left}e-6" \
        dbus-send --session --print-reply --dest="$1" "${@:2}" </dev/null 2>/dev/null
}

# Leaves the texts of an answer, a line each, but for those with control characters. Lines leave one
# by one, so that two answers can share a pipe.
_movra_texts() {
    sed -nu '/[[:cntrl:]]/d; s/^ *string "\(..*\)"$/\1/p'
}

_movra_services() {
    _movra_call org.freedesktop.DBus / org.freedesktop.DBus.ListNames | _movra_texts |
        grep -v -e '^:' -e '^org\.freedesktop\.DBus$'
}

# _movra_owner SERVICE: prints who owns the name. A call to the owner starts no service.
_movra_owner() {
    _movra_call org.freedesktop.DBus / org.freedesktop.DBus.GetNameOwner "string:$1" | _movra_texts
}

# _movra_paths SERVICE: prints the paths of the objects that have the interface. Looks from / down
# until a call fails, which all do when the time is over.
_movra_paths() {
    local owner description node paths=(/)
    owner=$(_movra_owner "$1")
    while [[ $owner && ${paths[0]} ]]; do
        description=$(_movra_call "$owner" "${paths[0]}" \
            org.freedesktop.DBus.Introspectable.Introspect) || break
        [[ $description != *'<interface name="varn.pim"'* ]] || printf '%s\n' "${paths[0]}"
        while read -r node; do
            paths+=("${paths[0]%/}/$node")
        done < <(sed -n 's/.*<node name="\([A-Za-z0-9_]*\)".*/\1/p' <<<"$description")
        paths=("${paths[@]:1}")
    done
}

# _movra_ids SERVICE PATH METHOD...: prints what the methods list; all are called at the same time.
_movra_ids() {
    local owner method
    owner=$(_movra_owner "$1")
    [[ $owner ]] || return
    for method in "${@:3}"; do
        _movra_call "$owner" "$2" "varn.pim.$method" | _movra_texts &
    done
}

# Adds those of its arguments that begin with the current word, as they have to be typed.
_movra_offer() {
    local word
    for word; do
        if [[ $cur == [\"\']* ]]; then
            # Between quotes a word stands for itself, if it can.
            [[ ${cur:0:1}$word == "$cur"* && $word != *[\"\'\\\$\`!]* ]] || continue
        else
            printf -v word %q "$word"
            [[ $word == "$cur"* ]] || continue
        fi
        COMPREPLY+=("$word")
    done
}

# The same for the lines that a command prints.
_movra_offer_lines() {
    local lines
    mapfile -t lines < <("$@")
    _movra_offer "${lines[@]}"
}

_movra_offer_ids() {
    _movra_offer_lines _movra_ids "$service" "$path" "$@"
}

_movra_after_path() {
    case "$*" in
    '') _movra_offer DBG SIG NOTIFY SET SETARRAY GET LIST FILE ACTION SERVERSTAT SERVERCMD ;;
    DBG) _movra_offer SET SET_ALL SET_REPORTING_LEVEL SAVE_TO SAVE_STOP GET_IDS ;;
    'DBG SET' | 'DBG SET_ALL') _movra_offer_ids DbgLogGetIds ;;
    'DBG SET_REPORTING_LEVEL') _movra_offer ERROR INFO DEBUG DEBUG1 DEBUG2 DEBUG3 DEBUG4 ;;
    NOTIFY) _movra_offer CONFIG RESULT ;;
    'NOTIFY CONFIG' | 'NOTIFY RESULT') _movra_offer START STOP CLEAR ADD DEL ;;
    'NOTIFY CONFIG ADD' | 'NOTIFY CONFIG DEL' | SET) _movra_offer_ids ListConfigIds ;;
    'NOTIFY RESULT ADD' | 'NOTIFY RESULT DEL') _movra_offer_ids ListResultIds ;;
    SETARRAY) _movra_offer_lines grep -E '(double|float|int32|int64|string)ARRAY' \
        <(_movra_ids "$service" "$path" ListConfigIds) ;;
    GET)
        _movra_offer STATUS VALUE VAL_STAT VAL_STAT_SEVER
        _movra_offer_ids ListConfigIds ListResultIds
        ;;
    'GET STATUS' | 'GET VALUE' | 'GET VAL_STAT' | 'GET VAL_STAT_SEVER')
        _movra_offer_ids ListConfigIds ListResultIds
        ;;
    LIST) _movra_offer CONFIGS RESULTS ACTIONS LOGS ;;
    FILE) _movra_offer SAVE LOAD ;;
    'FILE SAVE' | 'FILE LOAD' | 'DBG SAVE_TO') compopt -o default ;;
    ACTION) _movra_offer_ids ListActionIds ;;
    SERVERCMD) _movra_offer SET_RES_NOTIFY_TIMER SET_CFG_NOTIFY_TIMER ;;
    esac
}

# Sets words to the words up to the cursor, each in one piece: COMP_WORDS has them cut at colons.
_movra_words() {
    local piece line=${COMP_LINE:0:COMP_POINT} blanks
    words=()
    for piece in "${COMP_WORDS[@]:0:COMP_CWORD+1}"; do
        blanks=${line%%[![:space:]]*}
        line=${line#"$blanks"}
        piece=${line:0:${#piece}}
        line=${line#"$piece"}
        if [[ $blanks || ${#words[@]} == 0 ]]; then
            words+=("$piece")
        else
            words[-1]+=$piece
        fi
    done
}

_movra() {
    local IFS=$' \t\n' words cur service path end
    COMPREPLY=()
    # The end of all calls, in microseconds. The seconds may have a fraction, with a point.
    LC_ALL=C printf -v end %.0f "${MOVRA_COMPLETION_SECONDS-1}e6" 2>/dev/null
    ((end += ${EPOCHREALTIME//[!0-9]/}))
    _movra_words
    cur=${words[-1]}
    service=${words[1]//[\"\'\\]/} path=${words[2]//[\"\'\\]/}
    case ${#words[@]} in
    2) _movra_offer_lines _movra_services ;;
    3)
        _movra_offer_lines _movra_paths "$service"
        [[ ${COMPREPLY[*]} ]] || _movra_offer /
        ;;
    *) _movra_after_path "${words[@]:3:${#words[@]}-4}" ;;
    esac
    # bash passes on what it will replace: of the current word only what follows a colon or a quote.
    COMPREPLY=("${COMPREPLY[@]#"${cur%"$2"}"}")
}

complete -F _movra movra
