# shellcheck shell=bash
# SPDX-License-Identifier: MIT
# Completion of movra-sim for bash. The script "sim-candidates" prints the candidates. It is in this
# directory of the sources and in share/movra-sim of an installation.

_movra_sim_candidates=$(cd "$(dirname "${BASH_SOURCE[0]}")" >/dev/null && pwd)/sim-candidates
[[ -x $_movra_sim_candidates ]] || _movra_sim_candidates=${_movra_sim_candidates%/*}/../../movra-sim/sim-candidates

_movra_sim() {
    local IFS=$' \t\n' i word kept previous candidate line=${COMP_LINE:0:COMP_POINT}
    COMPREPLY=()
    for ((i = 1; i < COMP_CWORD; ++i)); do
        if [[ ${COMP_WORDS[i]} == -- ]]; then
            # The name of the function depends on the version of bash-completion.
            for word in _comp_command_offset _command_offset; do
                declare -F $word >/dev/null && $word $((i + 1)) && break
            done
            return
        fi
    done
    # COMP_WORDS has words cut at "=" and ":". Only words between quotes have blanks.
    word=${COMP_WORDS[COMP_CWORD]}
    [[ $word == [\"\']* ]] || word=${line##*[[:space:]]}
    read -ra previous <<<"${line%"$word"}"
    # bash replaces $2: of the last word only what follows "=", ":" or a quote.
    kept=${word%"$2"}
    kept=${kept//[\\\"\']/}
    while IFS='' read -r candidate; do
        case $candidate in
        $'\tfiles') compopt -o default ;;
        $'\tdirectories') compopt -o dirnames ;;
        esac
        candidate=${candidate%%$'\t'*}
        [[ $candidate && $candidate == "${word//[\\\"\']/}"* ]] || continue
        candidate=${candidate#"$kept"}
        [[ $word == [\"\']* || ! $candidate ]] || printf -v candidate %q "$candidate"
        COMPREPLY+=("$candidate")
    done < <("$_movra_sim_candidates" "${previous[-1]-}" "${word//[\\\"\']/}" </dev/null 2>/dev/null)
    [[ ${COMPREPLY[0]-} != *[=:] ]] || compopt -o nospace
}

complete -F _movra_sim movra-sim
