#!/usr/bin/python3 -B
# SPDX-License-Identifier: MIT
"""Fails if movra takes more instructions than the figures in guard.figures.

    guard.py MOVRA FOLDER_OF_BENCH_PROGRAMS [--single-file]

Runs on a private bus, as the test bench.guard. Instructions, unlike times, are the same on a busy
machine. What the loader does, which is most of a run, is not counted. With --single-file, as the test
portable.guard, MOVRA is the single file, and a whole run of it is counted.
"""
import os
import pathlib
import platform
import shutil
import sys

from bus import SERVICE, TICK, Monitor, collected, emit, instructions, start_service

SKIPPED = 77


def of_an_element(movra):
    """Of printing one more double of an array, reading it from the message included."""
    def of_array(size):
        return instructions([movra, SERVICE, f"/n{size}", "GET", ":bench:doubleARRAY:"])
    return (of_array(11000) - of_array(1000)) / 10000


def of_a_line(movra):
    """Of the slot that prints a signal. Qt's thread, which parses the message, is left out:
    it takes far more, and not always the same."""
    lines = 5000
    command = ["valgrind", "--tool=callgrind", "--callgrind-out-file=/dev/null",
               "--toggle-collect=Movra::sigUpdateSlot*", movra, SERVICE, "/", "SIG"]
    with Monitor(command) as monitor:
        emit(TICK.decode(), lines)
        taken, _ = monitor.take(lines)
        if taken != lines:
            raise SystemExit(f"The monitor printed {taken} of {lines} signals.")
        return collected(monitor.end()) / monitor.lines


def of_a_request(movra, programs):
    """Of main() for a GET, beyond what a bare Qt program takes for the same."""
    def in_main(command):
        return instructions(command, "--toggle-collect=main")
    return in_main([movra, SERVICE, "/", "GET", ":bench:string:"]) \
        - in_main([f"{programs}/bench_minimal"])


def of_a_run(movra):
    """Of all threads and the loader, for one GET."""
    return instructions([movra, SERVICE, "/", "GET", ":bench:string:"])


def written_figures():
    """The figure and the margin of each count that this system has a figure of."""
    system = platform.freedesktop_os_release()
    text = pathlib.Path(__file__).with_name("guard.figures").read_text(encoding="ascii")
    head, *rows = [line.split() for line in text.splitlines() if not line.startswith("#")]
    column = f"{system['ID']}-{system.get('VERSION_ID', '')}"
    if column not in head:
        return {}
    return {row[0]: (float(row[head.index(column)]), float(row[head.index("margin")]))
            for row in rows if row[head.index(column)] != "-"}


def main():
    movra, programs, *single_file = sys.argv[1:]
    names = ["single-file"] if single_file else ["element", "line", "request"]
    written = {name: row for name, row in written_figures().items() if name in names}
    if not written or not shutil.which("valgrind"):
        print("Skipped: valgrind is not installed, or guard.figures has no figures for this system.")
        return SKIPPED
    if not single_file:
        os.environ["LD_BIND_NOW"] = "1"  # the loader has done all that it does when main() begins
    service = start_service(programs)
    try:
        if single_file:
            counted = {"single-file": of_a_run(movra)}
        else:
            counted = {"element": of_an_element(movra), "line": of_a_line(movra),
                       "request": of_a_request(movra, programs)}
    finally:
        service.terminate()
        service.wait()
    grown = 0
    for name, (figure, margin) in written.items():
        more = (counted[name] / figure - 1) * 100
        print(f"{name}: {counted[name]:.0f} instructions, {figure:.0f} written down,"
              f" {more:+.1f} in 100, at most {margin:+.0f}")
        grown += more > margin or counted[name] <= 0
    return 1 if grown else 0


if __name__ == "__main__":
    sys.exit(main())
