# shellcheck shell=bash
# SPDX-License-Identifier: MIT
# Completion of movra for bash. The script "candidates" prints the candidates. It is in this
# directory of the sources and in share/movra of an installation.

_movra_candidates=$(cd "$(dirname "${BASH_SOURCE[0]}")" >/dev/null && pwd)/candidates
[[ -x $_movra_candidates ]] || _movra_candidates=${_movra_candidates%/*}/../../movra/candidates

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

# Sets plain to the value of a word with backslashes or between quotes.
_movra_unquote() {
    if [[ $1 == [\"\']* ]]; then
        plain=${1:1}
        plain=${plain%"${1:0:1}"}
    else
        # shellcheck disable=SC2162 # read removes the backslashes
        IFS='' read plain <<<"$1"
    fi
}

_movra() {
    local IFS=$' \t\n' words word plain beginning kept before=() candidate
    COMPREPLY=()
    _movra_words
    for word in "${words[@]:1:${#words[@]}-2}"; do
        _movra_unquote "$word"
        before+=("$plain")
    done
    # bash replaces $2: of the last word only what follows a colon or a quote.
    word=${words[-1]}
    _movra_unquote "${word%"$2"}"
    kept=$plain
    _movra_unquote "$word"
    beginning=$plain
    while IFS='' read -r candidate; do
        candidate=${candidate%%$'\t'*}
        [[ $candidate == "$beginning"* ]] || continue
        candidate=${candidate#"$kept"}
        if [[ $word == [\"\']* ]]; then
            # Between quotes only words that need no further quoting are offered.
            [[ $candidate != *[\"\'\\\$\`!]* ]] || continue
        elif [[ $candidate ]]; then
            printf -v candidate %q "$candidate"
        fi
        COMPREPLY+=("$candidate")
    done < <("$_movra_candidates" offer "$beginning" "${before[@]}" </dev/null 2>/dev/null)
}

complete -F _movra movra
