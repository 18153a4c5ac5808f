# SPDX-License-Identifier: MIT
"""The figures of a run as tables, as CSV and as pictures."""
import csv
import os
import platform
import re
import statistics
import subprocess

UNITS = {"answer": "ms", "end": "ms", "processor": "ms", "memory": "MiB", "rate": "lines/ms",
         "lost": "signals", "instructions": "millions", "messages": ""}
COLUMNS = {
    "answer": "answer, ms", "end": "all ended, ms", "processor": "processor, ms",
    "instructions": "instructions, millions", "memory": "peak memory, MiB", "messages": "messages",
    "rate": "1000 lines/s", "lost": "lost",
}


class Results:
    """All figures, by (request, size, tool, measure), in the order in which they came."""

    def __init__(self):
        self.figures = {}

    def add(self, *key_and_value):
        *key, value = key_and_value
        self.figures.setdefault(tuple(key), []).append(value)

    def median(self, *key):
        return statistics.median(self.figures[key]) if key in self.figures else None

    def quartiles(self, *key):
        """The first and the third; the only figure, twice, if there is one."""
        figures = self.figures[key]
        if len(figures) == 1:
            return figures[0], figures[0]
        first, _, third = statistics.quantiles(figures, n=4, method="inclusive")
        return first, third

    def tables(self):
        """(request, size) and the tools that were measured with it, in order."""
        tables = {}
        for request, size, tool, _ in self.figures:
            tables.setdefault((request, size), {})[tool] = None
        return tables

    def growth(self, request, tool="movra"):
        """The sizes that were measured, in order."""
        return sorted({key[1] for key in self.figures if key[0] == request and key[2] == tool})


def number(value):
    """Three significant digits, without an exponent."""
    if value >= 100 or value == int(value):
        return f"{value:,.0f}"
    return f"{value:.1f}" if value >= 10 else f"{value:.2f}"


def cell(results, request, size, tool, measure):
    """Median, spread, and the ratio to movra's."""
    key = (request, size, tool, measure)
    median = results.median(*key)
    if median is None:
        return "-"
    text = number(median)
    if len(results.figures[key]) > 2 and measure not in ("lost", "memory"):
        first, third = map(number, results.quartiles(*key))
        text += f" ({first} to {third})"
    ours = results.median(request, size, "movra", measure)
    if tool != "movra" and ours and measure not in ("lost", "messages"):
        text += f", x {number(median / ours)}"
    return text


def table(results, request, size, tools):
    measures = [name for name in COLUMNS
                if any((request, size, tool, name) in results.figures for tool in tools)]
    if request != "side by side":
        measures = [name for name in measures if name != "end"]
    head = ["", *(COLUMNS[name] for name in measures)]
    rows = [[tool, *(cell(results, request, size, tool, name) for name in measures)]
            for tool in tools]
    return markdown(head, rows)


def markdown(head, rows):
    widths = [max(len(row[i]) for row in [head, *rows]) for i in range(len(head))]
    lines = [head, ["-" * width for width in widths], *rows]
    return "\n".join(
        "| " + " | ".join(text.ljust(width) for text, width in zip(line, widths)) + " |"
        for line in lines)


TITLES = {
    "string": "GET of one string",
    "array": "GET of an array of {} doubles",
    "set": "SETARRAY of {} doubles",
    "side by side": "GET of one string, {} side by side",
    "monitor": "Monitor, {} signals, read at once",
    "stalled": "Monitor, {} signals, read when all have been sent",
}


def goals(results):
    """The goals and the figures reached."""
    rows = []

    def row(goal, reached, met):
        rows.append([goal, reached, "yes" if met else "no"])

    ours = results.median("string", 1, "movra", "answer")
    for tool in ("gdbus", "busctl", "qdbus", "bare Qt program"):
        theirs = results.median("string", 1, tool, "answer")
        if theirs is None:
            continue
        row(f"answer no later than that of {tool}", f"{number(ours / theirs)} times",
            ours <= theirs)
    single = results.median("string", 1, "single file", "answer")
    peers_answers = [results.median("string", 1, tool, "answer") for tool in ("gdbus", "busctl")]
    if single and all(peers_answers):
        ratio = single / min(peers_answers)
        row("single file: answer within 0.6 times the faster of gdbus and busctl",
            f"{number(ratio)} times", ratio <= 0.6)
    for measure, goal in (("answer", "answer no later than that of dbus-send"),
                          ("instructions", "fewer instructions than dbus-send")):
        theirs = results.median("string", 1, "dbus-send", measure)
        if single and theirs:
            ratio = results.median("string", 1, "single file", measure) / theirs
            row(f"single file: {goal}", f"{number(ratio)} times", ratio <= 1)
    size = results.growth("array")[-1]
    ratio = (results.median("array", size, "movra", "answer")
             / results.median("array", size, "bare loop", "answer"))
    row(f"{size:,} doubles within 1.5 times of a bare loop", f"{number(ratio)} times", ratio <= 1.5)
    size = results.growth("monitor")[-1]
    rate = results.median("monitor", size, "movra", "rate")
    row("100,000 lines a second of the monitor", number(rate * 1000), rate >= 100)
    lost = sum(sum(figures) for key, figures in results.figures.items()
               if key[2:] == ("movra", "lost"))
    row("no signal lost, also with a stalled reader", f"lost {number(lost)}", lost == 0)
    copies = results.growth("side by side")[-1]
    end = results.median("side by side", copies, "movra", "end")
    row(f"{copies} requests side by side ended within a second", f"{number(end)} ms", end < 1000)
    return markdown(["goal", "reached", "met"], rows)


def machine():
    with open("/proc/cpuinfo", encoding="ascii") as cpuinfo:
        processor = re.search(r"model name\s*: (.*)", cpuinfo.read()).group(1)
    packages = subprocess.run(
        ["dpkg-query", "-W", "-f", "${Package} ${Version}\n", "dbus-daemon", "libqt5dbus5",
         "libglib2.0-bin", "systemd", "qdbus-qt5", "dbus-bin"],
        stdout=subprocess.PIPE, stderr=subprocess.DEVNULL, text=True, check=False).stdout
    return (f"{os.cpu_count()} processors ({processor}), Linux {platform.release()};"
            f" {', '.join(packages.splitlines())}. Load of the last five minutes of this run:"
            f" {os.getloadavg()[1]:.1f}.")


def text_of(results):
    """A table for the largest size of each request; the CSV has all sizes."""
    parts = [machine(), "### Goals", goals(results)]
    for (request, size), tools in results.tables().items():
        if request in TITLES and size == results.growth(request)[-1] and len(tools) > 1:
            parts += [f"### {TITLES[request].format(f'{size:,}')}",
                      table(results, request, size, tools)]
    return "\n\n".join(parts)


def write_csv(results, path):
    with open(path, "w", encoding="ascii", newline="") as file:
        out = csv.writer(file, lineterminator="\n")
        out.writerow(["request", "size", "tool", "measure", "unit", "runs", "median", "quartile 1",
                      "quartile 3"])
        for key, figures in results.figures.items():
            out.writerow([*key, UNITS[key[3]], len(figures), *(
                f"{value:.6g}" for value in (results.median(*key), *results.quartiles(*key)))])


def block(name, rows):
    return f"${name} << END\n" + "".join(" ".join(map(str, row)) + "\n" for row in rows) + "END\n"


def peers(results, request, size, measure):
    """Rows of a picture's bars: tool, median, quartiles."""
    return [(f'"{tool}"', results.median(*key), *results.quartiles(*key))
            for tool in results.tables()[request, size]
            for key in [(request, size, tool, measure)] if key in results.figures]


def growing(results, request, measure):
    return [(size, results.median(request, size, "movra", measure))
            for size in results.growth(request)]


def monitor_seconds(results, request):
    return [(size, size / 1000 / results.median(request, size, "movra", "rate"))
            for size in results.growth(request)]


def draw(results, docs):
    arrays = results.growth("array")
    blocks = [
        block("string", peers(results, "string", 1, "answer")),
        block("array", peers(results, "array", arrays[-1], "answer")),
        block("monitor", peers(results, "monitor", results.growth("monitor")[-1], "rate")),
        block("array_time", growing(results, "array", "answer")),
        block("array_memory", growing(results, "array", "memory")),
        block("ids_time", growing(results, "ids", "answer")),
        block("ids_memory", growing(results, "ids", "memory")),
        block("monitor_time", monitor_seconds(results, "monitor")),
        block("monitor_memory", growing(results, "monitor", "memory")),
        block("stalled_memory", growing(results, "stalled", "memory")),
    ]
    script = f'docs = "{docs}"\n' + "".join(blocks) + 'load "bench/pictures.gp"\n'
    subprocess.run(["gnuplot", "-"], input=script, text=True, check=True)


def write_report(results, csv_path, docs):
    """Prints the tables and writes the CSV; with a folder for documents, writes there as well."""
    text = text_of(results)
    print(text)
    write_csv(results, csv_path)
    draw(results, docs or "build/bench")
    if docs:
        write_csv(results, f"{docs}/benchmarks.csv")
        page = f"{docs}/benchmarks.md"
        with open(page, encoding="utf-8") as file:
            old = file.read()
        new = re.sub(r"(?s)(<!-- figures -->\n).*(<!-- end of figures -->)",
                     lambda marks: f"{marks[1]}\n{text}\n\n{marks[2]}", old)
        with open(page, "w", encoding="utf-8") as file:
            file.write(new)
