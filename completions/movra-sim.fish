# SPDX-License-Identifier: MIT
# Completion of movra-sim for fish. The script "sim-candidates" prints the candidates. It is in this
# directory of the sources and in share/movra-sim of an installation.

set -g __movra_sim_candidates (realpath (status dirname))/sim-candidates
test -x $__movra_sim_candidates
or set -g __movra_sim_candidates (realpath (status dirname)/../../movra-sim)/sim-candidates

function __movra_sim_complete
    set -l words (commandline -opc)
    set -l typed (commandline -ct)
    if set -l separator (contains -i -- -- $words)
        set -l rest (string escape -- $words[(math $separator + 1)..])
        complete -C "$rest $typed"
        return
    end
    set -l beginning (string trim -lc '"\'' -- $typed | string replace -ra '\\\\(.)' '$1')
    set -l option (string match -r -- '^--[a-z]+=' $beginning)
    for line in ($__movra_sim_candidates $words[-1] "$beginning" </dev/null 2>/dev/null)
        switch $line
            case \tfiles
                __fish_complete_path (string replace -- "$option" '' $beginning) | string replace -r '^' -- "$option"
            case \tdirectories
                __fish_complete_directories (string replace -- "$option" '' $beginning) | string replace -r '^' -- "$option"
            case '*'
                echo $line
        end
    end
end

complete -c movra-sim -f -a '(__movra_sim_complete)'
