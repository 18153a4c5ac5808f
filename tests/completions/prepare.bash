# shellcheck shell=bash
# SPDX-License-Identifier: MIT
# Read by the bash under test: Ctrl-N inserts all candidates, Ctrl-T shows the line, movra shows its words.
PS1='READY> '
HISTFILE=
movra() { printf '\nWORDS%s>>\n' "$(printf '<%s>' "$@")"; }
show_line() { printf '\nLINE<<%s>>\n' "$READLINE_LINE"; }
bind '"\C-n": insert-completions'
bind -x '"\C-t": show_line'
[[ ! ${NOUNSET-} ]] || set -u
# shellcheck source=/dev/null
[[ ! ${BASH_COMPLETION-} ]] || . "$BASH_COMPLETION"
# shellcheck source=completions/movra.bash
. "$COMPLETIONS/movra.bash"
# shellcheck source=completions/movra-sim.bash
. "$COMPLETIONS/movra-sim.bash"
