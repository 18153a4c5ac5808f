# SPDX-License-Identifier: MIT
"""Compares movra with other command-line D-Bus tools; bench/run starts it on a private bus.

All tools take turns, so that what else the machine does falls on all of them alike.
"""
import argparse
import os
import shutil
import subprocess

from bus import SERVICE, Monitor, emit, instructions, start_service
from report import Results, write_report

PROGRAMS = "build/release/bench"
MOVRA = "build/release/app/movra"
PORTABLE = "build/portable/movra"
QDBUS = shutil.which("qdbus", path=f"/usr/lib/qt5/bin:{os.environ['PATH']}") or "qdbus"
ARRAY_ID = ":bench:doubleARRAY:"
SET_VALUES = [f"{i}.5" for i in range(512)]


def calls(path, member, arguments, literal=False):
    """The same call with each tool but movra; the arguments are pairs of signature and texts."""
    signature = "".join(code for code, _ in arguments)
    flat = [text for _, texts in arguments for text in texts]
    tools = {
        "gdbus": ["gdbus", "call", "--session", "--dest", SERVICE, "--object-path", path,
                  "--method", f"varn.pim.{member}"],
        "busctl": ["busctl", "--user", "call", SERVICE, path, "varn.pim", member],
        "qdbus": [QDBUS, *(["--literal"] if literal else []), SERVICE, path, f"varn.pim.{member}"],
        "dbus-send": ["dbus-send", "--print-reply=literal", f"--dest={SERVICE}", path,
                      f"varn.pim.{member}"],
    }
    if not arguments:
        return tools
    if signature != "s":  # an id and an array in a variant, which two of them cannot send
        return {
            "gdbus": tools["gdbus"] + [flat[0], f"<[{', '.join(flat[3:])}]>"],
            "busctl": tools["busctl"] + [signature, *flat],
        }
    return {
        "gdbus": tools["gdbus"] + flat,
        "busctl": tools["busctl"] + [signature, *flat],
        "qdbus": tools["qdbus"] + flat,
        "dbus-send": tools["dbus-send"] + [f"string:{flat[0]}"],
    }


def single_file(request):
    """Nothing where scripts/portable has not built it."""
    return {"single file": [PORTABLE, *request]} if os.path.exists(PORTABLE) else {}


def get_string():
    request = [SERVICE, "/", "GET", ":bench:string:"]
    return {"movra": [MOVRA, *request], **single_file(request),
            **calls("/", "GetValue", [("s", [":bench:string:"])]),
            "bare Qt program": [f"{PROGRAMS}/bench_minimal"]}


def get_array(size):
    request = [SERVICE, f"/n{size}", "GET", ARRAY_ID]
    return {"movra": [MOVRA, *request], **single_file(request),
            **calls(f"/n{size}", "GetValue", [("s", [ARRAY_ID])], literal=True),
            "bare loop": [f"{PROGRAMS}/bench_lines", str(size)]}


def set_array():
    request = [SERVICE, "/", "SETARRAY", ARRAY_ID, "512", *SET_VALUES]
    return {"movra": [MOVRA, *request], **single_file(request),
            **calls("/", "SetValue", [("s", [ARRAY_ID]), ("v", ["ad", "512", *SET_VALUES])])}


def list_ids(size):
    return {"movra": [MOVRA, SERVICE, f"/n{size}", "LIST", "CONFIGS"],
            **calls(f"/n{size}", "ListConfigIds", [])}


MONITORS = {
    "movra": [MOVRA, SERVICE, "/", "SIG"],
    "gdbus": ["gdbus", "monitor", "--session", "--dest", SERVICE, "--object-path", "/"],
    "busctl": ["busctl", "--user", "monitor", f"--match=type='signal',sender='{SERVICE}'"],
    "dbus-monitor": ["dbus-monitor", "--session", f"type='signal',sender='{SERVICE}'"],
}


def installed(tools):
    return {name: command for name, command in tools.items() if shutil.which(command[0])}


def launch(command, copies=1):
    """One run, or several in parallel, with the figures of bench_launch."""
    said = subprocess.run([f"{PROGRAMS}/bench_launch", str(copies), *command], check=True,
                          stdout=subprocess.PIPE, stderr=subprocess.PIPE)
    answer, end, processor, memory, size, lines, failed = map(float, said.stdout.split())
    if failed:
        raise SystemExit(f"{' '.join(command)[:200]}\nfailed: {said.stderr.decode()}")
    return {"answer": answer, "end": end, "processor": processor, "memory": memory / 1024}, \
        (size, lines)


def measure_calls(results, request, size, tools, runs, copies=1):
    """Times and memory of all tools, in turns; the first round warms up and does not count."""
    answers = {}
    for counts in [False] + [True] * runs:
        for tool, command in installed(tools).items():
            figures, answer = launch(command, copies)
            if answers.setdefault(tool, answer) != answer:
                raise SystemExit(f"{tool} answered {answer}, and {answers[tool]} before: {request}")
            if answer[0] == 0:
                del figures["answer"]
            if counts:
                for name, figure in figures.items():
                    results.add(request, size, tool, name, figure)


def messages(command):
    """How many messages a tool sends and receives on the bus."""
    with subprocess.Popen(["dbus-monitor", "--session", "--profile"], stdout=subprocess.PIPE,
                          stderr=subprocess.DEVNULL, text=True) as monitor:
        while "NameLost" not in monitor.stdout.readline():  # it listens from here on
            pass
        subprocess.run(command, stdout=subprocess.DEVNULL, stderr=subprocess.DEVNULL, check=True)
        subprocess.run(["dbus-send", "--session", "/", "varn.pim.Marker"], check=True)
        seen = []
        for line in monitor.stdout:
            seen.append(line.split())
            if seen[-1][-1] == "Marker":
                break
        monitor.terminate()
    tool = next(fields[3] for fields in seen if fields[-1] == "Hello")
    return sum(tool in fields[3:5] for fields in seen)


def count_once(results, request, size, tools):
    """What is the same in every run."""
    for tool, command in installed(tools).items():
        results.add(request, size, tool, "instructions", instructions(command) / 1e6)
        if tool != "bare loop":
            results.add(request, size, tool, "messages", messages(command))


def measure_monitor(results, size, tool, stalled):
    """One run of a monitor that is read while it prints, or only when all signals are there."""
    with Monitor(MONITORS[tool]) as monitor:
        before = monitor.processor_ms()
        request = "stalled" if stalled else "monitor"
        asking = emit("tick", size)
        if stalled:
            asking.wait()
            monitor.wait_until_idle()
        taken, seconds = monitor.take(size)
        asking.wait()
        processor = monitor.processor_ms() - before
        results.add(request, size, tool, "rate", taken / max(seconds, 1e-3) / 1000)
        results.add(request, size, tool, "lost", size - taken)
        results.add(request, size, tool, "processor", processor)
        results.add(request, size, tool, "memory", monitor.peak_kib() / 1024)


def measure_monitors(results, size, tools, runs, stalled=False):
    for _ in range(runs):
        for tool in installed(tools):
            measure_monitor(results, size, tool, stalled)


def measure(results, quick):
    runs = 2 if quick else 21
    few = 2 if quick else 5
    sizes = [1000] if quick else [1000, 100000, 1000000]
    signals = [1000] if quick else [100000, 1000000]

    measure_calls(results, "string", 1, get_string(), runs)
    count_once(results, "string", 1, get_string())
    for size in sizes:
        measure_calls(results, "array", size, get_array(size), runs if size == 1000 else few)
        if size == 1000:
            count_once(results, "array", size, get_array(size))
    measure_calls(results, "set", 512, set_array(), runs)
    count_once(results, "set", 512, set_array())
    copies = 4 if quick else 100
    measure_calls(results, "side by side", copies, get_string(), few, copies)
    for size in signals:
        measure_monitors(results, size, MONITORS, 3 if size <= 100000 else 1)
        measure_monitors(results, size, MONITORS, 1, stalled=True)

    # Growth of movra alone, which the tables above do not contain.
    for size in [10, 100] if quick else [1, 10000, 300000]:
        measure_calls(results, "array", size, {"movra": get_array(size)["movra"]}, few)
    for size in [10, 1000] if quick else [1, 1000, 10000, 100000, 300000, 1000000]:
        measure_calls(results, "ids", size, {"movra": list_ids(size)["movra"]}, few)
    for size in [100] if quick else [10000, 300000]:
        measure_monitors(results, size, {"movra": MONITORS["movra"]}, 1)
        measure_monitors(results, size, {"movra": MONITORS["movra"]}, 1, stalled=True)


def main():
    parser = argparse.ArgumentParser(prog="bench/run", description=__doc__.splitlines()[0])
    parser.add_argument("--quick", action="store_true",
                        help="small numbers, to see that it works; writes nothing to docs")
    parser.add_argument("--csv", metavar="FILE", default="build/bench/benchmarks.csv",
                        help="where the figures go as well (%(default)s)")
    options = parser.parse_args()
    for tool, command in {**get_string(), **MONITORS}.items():
        if not shutil.which(command[0]):
            print(f"{tool} is not installed, and is left out.")
    results = Results()
    service = start_service(PROGRAMS)
    try:
        measure(results, options.quick)
    finally:
        service.terminate()
        service.wait()
    write_report(results, options.csv, None if options.quick else "docs")


if __name__ == "__main__":
    main()
