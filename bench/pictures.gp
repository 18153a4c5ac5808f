# SPDX-License-Identifier: MIT
# The pictures of docs/benchmarks.md. bench/report.py gives the data, and the folder as "docs".
set terminal svg size 900, 300 font "sans,11" background "white"
set encoding utf8

set output docs."/bench-peers.svg"
set multiplot layout 1, 3
set style fill solid 0.6
set offsets 0.6, 0.6, 0, 0
set xtics rotate by -35
set yrange [0:*]
set grid ytics
unset key
set title "one string: answer, ms"
plot $string using 0:2:3:4:(0.7):xtic(1) with boxerrorbars lc rgb "#4477aa"
set title "largest array: answer, ms"
plot $array using 0:2:3:4:(0.7):xtic(1) with boxerrorbars lc rgb "#4477aa"
set title "monitor: 1000 lines a second"
plot $monitor using 0:2:3:4:(0.7):xtic(1) with boxerrorbars lc rgb "#4477aa"
unset multiplot

set terminal svg size 900, 560 font "sans,11" background "white"
set output docs."/bench-scale.svg"
set multiplot layout 2, 3
unset offsets
set xtics norotate
set xrange [0:*]
set format x "%.0s%c"
set xtics autofreq
set title "array: answer, ms"
plot $array_time with linespoints pt 7 ps 0.5
set title "ids: answer, ms"
plot $ids_time with linespoints pt 7 ps 0.5
set title "signals: s"
plot $monitor_time with linespoints pt 7 ps 0.5
set key left top
set title "array: peak memory, MiB"
plot $array_memory notitle with linespoints pt 7 ps 0.5
set title "ids: peak memory, MiB"
plot $ids_memory notitle with linespoints pt 7 ps 0.5
set title "signals: peak memory, MiB"
plot $monitor_memory title "reader" with linespoints pt 7 ps 0.5, \
     $stalled_memory title "stalled reader" with linespoints pt 7 ps 0.5
unset multiplot
