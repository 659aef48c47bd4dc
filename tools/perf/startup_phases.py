#!/usr/bin/env python3
"""Where the milliseconds from exec to Tolvar's main window go: launches the program (no game chosen, an
X server and a home of its own, as peers.py does) under strace, tracing only the few system calls that
mark the steps of the start (strace's seccomp filter stops the program on those alone), and takes the
X server's MapNotify of the main window in the same clock. Prints, for each step, the median time since
exec (lowest - highest) over --runs launches, then the same program's exec -> first window without
strace, so that the tracing's own cost shows.

    startup_phases.py --program build/bin/tolvar [--runs 5]
"""

import argparse
import os
import re
import shutil
import statistics
import subprocess
import sys
import tempfile
import time

sys.path.insert(0, os.path.dirname(os.path.abspath(__file__)))
import peers  # noqa: E402

sys.path.insert(0, os.path.join(os.path.dirname(os.path.abspath(__file__)), ".."))
from tool_version import add_version_option  # noqa: E402

MAPPED = "main window mapped (X MapNotify)"
# (step, pattern of a traced line); the first line that matches marks the step, except for the
# libraries, where the last one opened before the first X connection does.
STEPS = (
    ("libraries opened by the loader (last one)", None),
    ("SDL_Init: first X connection", re.compile(r'connect\(.*X11-unix')),
    ("SDL_Init: X compose table read", re.compile(r'openat\(.*/Compose"')),
    ("display density: X connection of its own", None),
    ("fontconfig: configuration read", re.compile(r'openat\(.*fonts\.conf"')),
    ("rules file read", re.compile(r'openat\(.*\.dict"')),
    ("ImGui: interface font file opened", re.compile(r'openat\(.*\.ttf"')),
    ("first frame: window image shared with the X server", re.compile(r'shmat\(')),
    (MAPPED, None),
    ("game window: OpenGL driver loaded", re.compile(r'openat\(.*swrast_dri\.so"')),
)
TRACED = "trace=execve,openat,connect,shmat"
SETTLE_SECONDS = 3.0  # after the window is up, for the game window's steps to be traced too


def step_times(trace_file, exec_wall, mapped_wall):
    """{step: ms since exec} from one strace -ttt output."""
    lines = []
    with open(trace_file) as f:
        for line in f:
            parts = line.split(None, 2)
            if len(parts) == 3 and "= -1" not in parts[2]:
                lines.append((float(parts[1]), parts[2]))
    start = next((t for t, text in lines if text.startswith("execve(")), exec_wall)
    times = {MAPPED: 1000.0 * (mapped_wall - start)}
    connects = [t for t, text in lines if STEPS[1][1].search(text)]
    if connects:
        libraries = [t for t, text in lines if t < connects[0] and re.search(r'openat\(.*\.so[.0-9]*"', text)]
        if libraries:
            times[STEPS[0][0]] = 1000.0 * (libraries[-1] - start)
        # SDL opens two connections; the display density asks on a third.
        if len(connects) >= 3:
            times[STEPS[3][0]] = 1000.0 * (connects[2] - start)
    for step, pattern in STEPS:
        if pattern and step not in times:
            hit = next((t for t, text in lines if pattern.search(text)), None)
            if hit is not None:
                times[step] = 1000.0 * (hit - start)
    return times


def traced_launch(program):
    xvfb, display, dpy = peers.start_xvfb()
    bus, address = peers.session_bus()
    home = tempfile.mkdtemp(prefix="tolvar-startup-home-")
    trace_file = os.path.join(home, "trace")
    env = {k: v for k, v in os.environ.items() if not k.startswith("XDG_")}
    env.update(HOME=home, DISPLAY=display, LC_ALL="C.UTF-8", DBUS_SESSION_BUS_ADDRESS=address,
               SDL_VIDEODRIVER="x11")
    proc = None
    try:
        exec_wall = time.time()
        t0 = time.monotonic()
        proc = subprocess.Popen(["strace", "--seccomp-bpf", "-f", "-ttt", "-e", TRACED, "-o", trace_file,
                                 os.path.abspath(program)], env=env, cwd=home, stdout=subprocess.DEVNULL,
                                stderr=subprocess.DEVNULL)
        mapped = peers.wait_for_maps(dpy, 1, t0, proc)[0]
        time.sleep(SETTLE_SECONDS)
        return step_times(trace_file, exec_wall, exec_wall + mapped)
    finally:
        peers.XLIB.XCloseDisplay(dpy)
        peers.stop(proc, bus, xvfb)
        shutil.rmtree(home, ignore_errors=True)


def main():
    parser = argparse.ArgumentParser(description=__doc__.split("\n\n")[0])
    parser.add_argument("--program", required=True, help="the tolvar program")
    parser.add_argument("--runs", type=int, default=5)
    add_version_option(parser)
    args = parser.parse_args()
    if not shutil.which("strace"):
        print("startup_phases.py needs strace", file=sys.stderr)
        return 1
    load = [peers.loadavg()]
    traced = [traced_launch(args.program) for _ in range(args.runs)]
    plain = [peers.launch(peers.Program("Tolvar", [os.path.abspath(args.program)]), 0.0)["exec to first window (ms)"]
             for _ in range(args.runs)]
    load.append(peers.loadavg())
    print("| step (traced) | ms since exec: median (lowest - highest) |\n|---|---|")
    for step, _ in STEPS:
        values = [t[step] for t in traced if step in t]
        if values:
            print("| %s | %.1f (%.1f - %.1f) |" % (step, statistics.median(values), min(values), max(values)))
    print("| exec -> main window mapped, not traced | %.1f (%.1f - %.1f) |" % (
        statistics.median(plain), min(plain), max(plain)))
    print("\n%d launches; load average before: %s, after: %s" % (args.runs, load[0], load[1]))
    return 0


if __name__ == "__main__":
    sys.exit(main())
