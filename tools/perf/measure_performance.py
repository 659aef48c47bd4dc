#!/usr/bin/env python3
"""Measures the desktop game under Xvfb: time from exec to the main window, and the processor
time the program uses over 10 s in three states (main window, no game; a running "Vexamor" with
no input; back at the main window with the game hidden and still ticking).

    measure_performance.py --program build/bin/tolvar
"""

import argparse
import os
import sys
import time

# The program is driven by the end-to-end tests' driver.
sys.path.insert(0, os.path.join(os.path.dirname(os.path.abspath(__file__)), "..", "..", "tests", "e2e"))
from tolvar_driver import Tolvar  # noqa: E402

TICKS = os.sysconf("SC_CLK_TCK")


def cpu_seconds(pid):
    with open("/proc/%d/stat" % pid) as f:
        fields = f.read().rsplit(")", 1)[1].split()
    return (int(fields[11]) + int(fields[12])) / TICKS  # utime + stime


def cpu_percent(pid, seconds):
    c0, t0 = cpu_seconds(pid), time.monotonic()
    time.sleep(seconds)
    c1, t1 = cpu_seconds(pid), time.monotonic()
    return 100.0 * (c1 - c0) / (t1 - t0)


def main():
    parser = argparse.ArgumentParser()
    parser.add_argument("--program", required=True)
    parser.add_argument("--seconds", type=float, default=10.0)
    args = parser.parse_args()
    starts = []
    for _ in range(3):
        t = Tolvar(os.path.abspath(args.program), "perf-start")
        starts.append(t.startup_seconds)
        t.close()
    print("exec to main window shown: %s s (median %.2f s)" % (
        ", ".join("%.2f" % s for s in starts), sorted(starts)[1]))
    t = Tolvar(os.path.abspath(args.program), "perf")
    try:
        time.sleep(1.0)
        print("main window shown, no game: %.1f %% of one core" % cpu_percent(t.proc.pid, args.seconds))
        t.start(1, 8, 8)
        time.sleep(1.0)
        print("running Vexamor, no input: %.1f %% of one core" % cpu_percent(t.proc.pid, args.seconds))
        t.xdo("key", "ctrl+w")
        t.wait_for(lambda: t.mapped(t.main), 10, "the main window")
        time.sleep(1.0)
        print("game window hidden after Return (game kept), no input: %.1f %% of one core"
              % cpu_percent(t.proc.pid, args.seconds))
    finally:
        t.close()
    return 0


if __name__ == "__main__":
    sys.exit(main())
