# SPDX-License-Identifier: MIT
"""What measurements and guard share: the service, its signals, monitors, counts of instructions.

The session bus is the one that the program was started on; bench/run makes a private one.
"""
import os
import re
import subprocess
import time

SERVICE = "com.varn.bench"
TICK = b"tick"  # the text of each signal that is counted


def start_service(programs):
    """Starts bench_service, and returns when it can be called."""
    service = subprocess.Popen([f"{programs}/bench_service"], stdout=subprocess.PIPE)
    if service.stdout.readline() != b"ready\n":
        raise SystemExit("The service of the measurements did not start.")
    return service


def emit(text, count):
    """Has the service emit so many signals: the process that ends when the bus has them all."""
    return subprocess.Popen(
        ["dbus-send", "--print-reply", "--reply-timeout=300000", f"--dest={SERVICE}", "/",
         "varn.pim.Emit", f"string:{text}", f"uint32:{count}"], stdout=subprocess.DEVNULL)


def instructions(command, *options):
    """How many instructions a program takes: all of its threads and the loader, unless an option
    of callgrind selects less."""
    run = subprocess.run(
        ["valgrind", "--tool=callgrind", "--callgrind-out-file=/dev/null", *options, *command],
        stdout=subprocess.DEVNULL, stderr=subprocess.PIPE, check=True)
    return collected(run.stderr)


def collected(callgrind_says):
    return int(re.search(rb"Collected : (\d+)", callgrind_says).group(1))


class Monitor:
    """A program that prints signals until it is ended, read like a file that grows."""

    def __init__(self, command):
        self.process = subprocess.Popen(command, stdout=subprocess.PIPE, stderr=subprocess.PIPE)
        os.set_blocking(self.process.stdout.fileno(), False)
        self.before = b""  # the end of what was read, for a text that two reads share
        self.lines = 0  # read so far, for signals of any text

    def __enter__(self):
        # The program does not see a signal that is emitted before it listens: repeat until it sees one.
        deadline = time.monotonic() + 60
        while not self.count(b"marker"):
            if time.monotonic() > deadline:
                self.process.kill()
                raise SystemExit(f"{self.process.args[0]} shows no signal.")
            emit("marker", 1).wait()
            time.sleep(0.02)
        return self

    def __exit__(self, *_):
        if self.process.poll() is None:
            self.end()

    def count(self, text):
        """How often the text occurs in the output since the last call."""
        try:
            new = os.read(self.process.stdout.fileno(), 1 << 20)
        except BlockingIOError:
            return 0
        self.lines += new.count(b"\n")
        data = self.before + new
        self.before = data[-(len(text) - 1):]
        return data.count(text)

    def take(self, wanted):
        """Reads until so many ticks are there, or none comes for 20 s: their number, and the
        seconds from the first to the last."""
        taken, first, last = 0, None, time.monotonic()
        while taken < wanted and time.monotonic() - last < 20:
            # One read takes the output of a millisecond, so that the reader uses little time.
            time.sleep(0.001)
            new = self.count(TICK)
            if new:
                taken += new
                last = time.monotonic()
                first = first or last
        return taken, last - (first or last)

    def wait_until_idle(self):
        """Waits until the program has used no processor time for half a second."""
        used, since = self.processor_ms(), time.monotonic()
        while time.monotonic() - since < 0.5:
            time.sleep(0.05)
            if self.processor_ms() != used:
                used, since = self.processor_ms(), time.monotonic()

    def processor_ms(self):
        with open(f"/proc/{self.process.pid}/stat", encoding="ascii") as stat:
            fields = stat.read().rpartition(")")[2].split()
        return (int(fields[11]) + int(fields[12])) * 1000 / os.sysconf("SC_CLK_TCK")

    def peak_kib(self):
        with open(f"/proc/{self.process.pid}/status", encoding="ascii") as status:
            return int(re.search(r"VmHWM:\s+(\d+)", status.read()).group(1))

    def end(self):
        """Ends the program, and returns its standard error."""
        self.process.terminate()
        os.set_blocking(self.process.stdout.fileno(), True)
        return self.process.communicate()[1]
