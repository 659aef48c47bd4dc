#!/usr/bin/env python3
"""Measures Tolvar beside the other puzzle games installed on this machine, in one run: each launch has
an X server and a home folder of its own, and the programs take turns (round-robin), so that the load
of the machine falls on all of them alike. For each program it prints, as median (lowest - highest):

- exec to first window: from just before exec to the X server's MapNotify of its first window;
- at rest: % of a core and wake-ups a second (voluntary context switches of all its threads) over
  --seconds with a board showing;
- peak resident memory (VmHWM), and PSS / private (USS: Private_Clean + Private_Dirty of
  /proc/PID/smaps_rollup) and the private dirty part alone with a board showing;

and the ratios of Tolvar's figures to the fastest or smallest peer's. Peers not installed are skipped
with a line; `scripts/setup-deps --peers` installs them.

    peers.py --program build/bin/tolvar [--runs 5] [--seconds 10]
"""

import argparse
import ctypes
import os
import select
import shutil
import statistics
import subprocess
import sys
import tempfile
import time

sys.path.insert(0, os.path.join(os.path.dirname(os.path.abspath(__file__)), "..", "..", "tests", "e2e"))
from tolvar_driver import MAP_NOTIFY, XEvent, XLIB, start_xvfb  # noqa: E402

sys.path.insert(0, os.path.join(os.path.dirname(os.path.abspath(__file__)), ".."))
from tool_version import add_version_option  # noqa: E402

XLIB.XConnectionNumber.argtypes = [ctypes.c_void_p]
SETTLE_SECONDS = 2.0  # after the board's window is up, before anything is measured
WINDOW_TIMEOUT = 30.0
TOLVAR_GAME = "Vexamor"


class Program:
    """A program measured: its label, its command and environment, the files its fresh home starts with
    ({path under home: text}), and how many windows it maps before its board shows."""
    def __init__(self, label, command, env=None, files=None, windows_to_board=1):
        self.label, self.command, self.env, self.files = label, command, env or {}, files or {}
        self.windows_to_board = windows_to_board


# Gweled without sound: its own settings file, set before it starts.
GWELED_SOUND_OFF = {".config/gweled.conf": "[General]\nmusic_on=false\nsounds_on=false\n"}


def stop(*processes):
    """Ends each process started (None for one that was not): TERM, then KILL after 10 s."""
    for p in filter(None, processes):
        p.terminate()
        try:
            p.wait(timeout=10)
        except subprocess.TimeoutExpired:
            p.kill()
            p.wait()


def peers():
    """The peers installed, and a line for each one that is not."""
    found, absent = [], []
    for label, path, env, files in (
            ("Gweled (sound off)", "/usr/games/gweled", {}, GWELED_SOUND_OFF),
            ("sgt Same Game", "/usr/games/sgt-samegame", {}, {}),
            ("Swell Foop", "/usr/games/swell-foop", {}, {}),
            ("Klickety", "/usr/games/klickety", {"QT_QPA_PLATFORM": "xcb"}, {})):
        if os.access(path, os.X_OK):
            found.append(Program(label, [path], env, files))
        else:
            absent.append("%s: not installed (%s), skipped; scripts/setup-deps --peers installs it" % (label, path))
    return found, absent


def wait_for_maps(dpy, count, t0, proc):
    """Seconds from t0 to each of the first count windows mapped on the display (MapNotify)."""
    times, event, fd = [], XEvent(), XLIB.XConnectionNumber(dpy)
    deadline = t0 + WINDOW_TIMEOUT
    while len(times) < count:
        while XLIB.XPending(dpy) and len(times) < count:
            XLIB.XNextEvent(dpy, ctypes.byref(event))
            if event.type == MAP_NOTIFY:
                times.append(time.monotonic() - t0)
        if len(times) >= count:
            break
        if proc.poll() is not None or time.monotonic() > deadline:
            raise RuntimeError("no window after %.0f s (status %s)" % (time.monotonic() - t0, proc.returncode))
        select.select([fd], [], [], 0.05)
    return times


def cpu_seconds(pid):
    with open("/proc/%d/stat" % pid) as f:
        fields = f.read().rsplit(")", 1)[1].split()
    return (int(fields[11]) + int(fields[12])) / os.sysconf("SC_CLK_TCK")


def wakeups(pid):  # voluntary context switches of every thread so far
    total = 0
    for task in os.listdir("/proc/%d/task" % pid):
        try:
            with open("/proc/%d/task/%s/status" % (pid, task)) as f:
                total += next(int(l.split()[1]) for l in f if l.startswith("voluntary_ctxt_switches:"))
        except (FileNotFoundError, ProcessLookupError):
            pass  # a thread that ended meanwhile
    return total


def memory_mib(pid):
    """(peak RSS, PSS, USS, private dirty) in MiB. The USS counts the pages of a library file that no other
    process maps at the moment, so it moves with what else runs; the dirty part does not."""
    kib = {}
    with open("/proc/%d/smaps_rollup" % pid) as f:
        for line in f:
            parts = line.split()
            if len(parts) == 3 and parts[2] == "kB":
                kib[parts[0].rstrip(":")] = int(parts[1])
    with open("/proc/%d/status" % pid) as f:
        peak = next(int(l.split()[1]) for l in f if l.startswith("VmHWM:"))
    return (peak / 1024.0, kib["Pss"] / 1024.0, (kib["Private_Clean"] + kib["Private_Dirty"]) / 1024.0,
            kib["Private_Dirty"] / 1024.0)


def session_bus():
    """A session bus of its own, as a desktop gives every program (some peers will not start without
    one): (the daemon's process or None, its address)."""
    if not shutil.which("dbus-daemon"):
        return None, "unix:path=/nonexistent/x"
    bus = subprocess.Popen(["dbus-daemon", "--session", "--nofork", "--print-address"], stdout=subprocess.PIPE,
                           stderr=subprocess.DEVNULL)
    return bus, bus.stdout.readline().decode().strip()


def launch(program, seconds, look=None):
    """One launch on an X server, a session bus and a home of its own; returns {figure: value}. look, if
    given, is called with the process id while the board shows, before the memory is read."""
    xvfb, display, dpy = start_xvfb()
    bus, address = session_bus()
    home = tempfile.mkdtemp(prefix="tolvar-peer-home-")
    for path, text in program.files.items():
        os.makedirs(os.path.dirname(os.path.join(home, path)), exist_ok=True)
        with open(os.path.join(home, path), "w") as f:
            f.write(text)
    env = {k: v for k, v in os.environ.items() if not k.startswith("XDG_")}
    env.update(HOME=home, DISPLAY=display, LC_ALL="C.UTF-8", DBUS_SESSION_BUS_ADDRESS=address,
               GSETTINGS_BACKEND="memory", NO_AT_BRIDGE="1", SDL_VIDEODRIVER="x11", **program.env)
    proc = None
    try:
        t0 = time.monotonic()
        proc = subprocess.Popen(program.command, env=env, cwd=home, stdout=subprocess.DEVNULL,
                                stderr=subprocess.DEVNULL)
        maps = wait_for_maps(dpy, program.windows_to_board, t0, proc)
        time.sleep(SETTLE_SECONDS)
        c0, w0, s0 = cpu_seconds(proc.pid), wakeups(proc.pid), time.monotonic()
        time.sleep(seconds)
        c1, w1, s1 = cpu_seconds(proc.pid), wakeups(proc.pid), time.monotonic()
        if look:
            look(proc.pid)
        peak, pss, uss, dirty = memory_mib(proc.pid)
        if proc.poll() is not None:
            raise RuntimeError("ended (status %s) while being measured" % proc.returncode)
        return {"exec to first window (ms)": 1000.0 * maps[0],
                "at rest (% of a core)": 100.0 * (c1 - c0) / max(s1 - s0, 1e-9),
                "at rest (wake-ups a second)": (w1 - w0) / max(s1 - s0, 1e-9),
                "peak RSS with a board (MiB)": peak, "PSS with a board (MiB)": pss,
                "private (USS) with a board (MiB)": uss, "private dirty with a board (MiB)": dirty}
    finally:
        XLIB.XCloseDisplay(dpy)
        stop(proc, bus, xvfb)
        shutil.rmtree(home, ignore_errors=True)


FIGURES = ("exec to first window (ms)", "at rest (% of a core)", "at rest (wake-ups a second)",
           "peak RSS with a board (MiB)", "PSS with a board (MiB)", "private (USS) with a board (MiB)",
           "private dirty with a board (MiB)")


def loadavg():
    with open("/proc/loadavg") as f:
        return " ".join(f.read().split()[:3])


def compare(tolvar, runs, seconds, out=sys.stdout):
    """Measures Tolvar (started on a board with --game) and the peers installed, round-robin, and prints
    the table; returns {label: {figure: [values]}}."""
    found, absent = peers()
    for line in absent:
        print(line, file=out)
    programs = [Program("Tolvar", [os.path.abspath(tolvar), "--game", TOLVAR_GAME], windows_to_board=2)] + found
    samples = {p.label: {f: [] for f in FIGURES} for p in programs}
    load = [loadavg()]
    for run in range(runs):
        for p in programs:
            try:
                for figure, value in launch(p, seconds).items():
                    samples[p.label][figure].append(value)
            except (RuntimeError, OSError) as e:
                print("%s, run %d: %s" % (p.label, run + 1, e), file=out)
    load.append(loadavg())
    measured = [p.label for p in programs if samples[p.label][FIGURES[0]]]
    print("\n| | " + " | ".join(measured) + " | Tolvar / best peer |", file=out)
    print("|---|" + "---|" * (len(measured) + 1), file=out)
    for figure in FIGURES:
        cells, medians = [], {}
        for label in measured:
            values = samples[label][figure]
            medians[label] = statistics.median(values)
            cells.append("%.1f (%.1f-%.1f)" % (medians[label], min(values), max(values)))
        others = [medians[l] for l in measured if l != "Tolvar"]
        best = min(others) if others else None
        ratio = "%.2f" % (medians["Tolvar"] / best) if best else "-"
        print("| %s | %s | %s |" % (figure, " | ".join(cells), ratio), file=out)
    print("\n%d launches each, interleaved; load average before: %s, after: %s" % (runs, load[0], load[1]),
          file=out)
    return samples


def main():
    parser = argparse.ArgumentParser(description=__doc__.split("\n\n")[0])
    parser.add_argument("--program", required=True, help="the tolvar program")
    parser.add_argument("--runs", type=int, default=5)
    parser.add_argument("--seconds", type=float, default=10.0)
    add_version_option(parser)
    args = parser.parse_args()
    compare(args.program, args.runs, args.seconds)
    return 0


if __name__ == "__main__":
    sys.exit(main())
