# SPDX-License-Identifier: MIT
# Read by the fish under test: Ctrl-N inserts all candidates, Ctrl-T shows the line, movra shows its words.
function fish_prompt
    printf 'READY> '
end
function movra
    printf '\nWORDS%s>>\n' (printf '<%s>' $argv | string collect)
end
function show_line
    printf '\nLINE<<%s>>\n' (commandline | string collect)
    commandline -f repaint
end
function insert_all
    commandline -rt -- (complete -C (commandline) | string split -f1 \t | string escape | string join ' ')
end
bind \cn insert_all
bind \ct show_line
bind \cu kill-whole-line
source $COMPLETIONS/movra.fish
source $COMPLETIONS/movra-sim.fish
