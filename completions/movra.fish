# SPDX-License-Identifier: MIT
# Completion of movra for fish. The script "candidates" prints the candidates. It is in this
# directory of the sources and in share/movra of an installation.

set -g __movra_candidates (realpath (status dirname))/candidates
test -x $__movra_candidates
or set -g __movra_candidates (realpath (status dirname)/../../movra)/candidates

function __movra_complete
    set -l words (commandline -opc)
    set -l typed (commandline -ct)
    set -l beginning (string trim -lc '"\'' -- $typed | string replace -ra '\\\\(.)' '$1')
    # fish inserts a tilde at the beginning as it is, unless there is a quote or a backslash before it.
    set -l unfit '~*'
    string match -qr '^[\'"\\\\]' -- $typed; and set unfit ''
    $__movra_candidates offer "$beginning" $words[2..] </dev/null 2>/dev/null | string match -v -- $unfit
end

complete -c movra -f -a '(__movra_complete)'
