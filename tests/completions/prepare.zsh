# SPDX-License-Identifier: MIT
# Read by the zsh under test: Ctrl-N inserts all candidates, Ctrl-T shows the line, movra shows its words.
PS1='READY> '
movra() { print -r -- $'\n'"WORDS$(printf '<%s>' "$@")>>" }
show-line() { zle -I; print -r -- $'\n'"LINE<<$BUFFER>>" }
insert-all() { _main_complete; compstate[insert]=all }
fpath=($COMPLETIONS $fpath)
autoload -Uz compinit
compinit -D -u
zle -N show-line
zle -C insert-all complete-word insert-all
bindkey '^T' show-line '^N' insert-all '^U' kill-whole-line
LISTMAX=1000
