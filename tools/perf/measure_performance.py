#!/usr/bin/env python3
"""Measures the desktop game under Xvfb and prints one table: exec to the main window, Start to the
first board, processor use (and, at rest, the main thread's wake-ups) over 10 s in five states (main window; a "Vexamor" board at rest; one region
of 3 spiky pieces selected; the score screen; the game hidden behind the main window), the peak
resident memory with a board showing, and the time of a full frame and of a one-cell redraw.

    measure_performance.py --program build/bin/tolvar [--bench build/bin/bench_presentation] [--runs 5] [--peers]

--peers adds the table of Tolvar beside the other puzzle games installed (peers.py), measured in the
same run, interleaved.

Every figure is the median of --runs runs, with the lowest and highest in brackets.
"""

import argparse
import json
import os
import statistics
import subprocess
import sys
import tempfile
import time

# The program is driven by the end-to-end tests' driver.
sys.path.insert(0, os.path.join(os.path.dirname(os.path.abspath(__file__)), "..", "..", "tests", "e2e"))
from tolvar_driver import Layout, Tolvar  # noqa: E402

import peers  # noqa: E402  (beside this script)

sys.path.insert(0, os.path.join(os.path.dirname(os.path.abspath(__file__)), ".."))
from tool_version import add_version_option  # noqa: E402


def peak_resident_mib(pid):
    with open("/proc/%d/status" % pid) as f:
        line = next(l for l in f if l.startswith("VmHWM:"))
    return int(line.split()[1]) / 1024.0


def region_of(colours, size):
    """A cell of a region of exactly size pieces of one colour, or None."""
    n, m, seen = len(colours), len(colours[0]), set()
    for x in range(n):
        for y in range(m):
            if (x, y) in seen or not colours[x][y]:
                continue
            region = [(x, y)]
            seen.add((x, y))
            for a, b in region:
                for q in ((a + 1, b), (a - 1, b), (a, b + 1), (a, b - 1)):
                    if 0 <= q[0] < n and 0 <= q[1] < m and q not in seen and colours[q[0]][q[1]] == colours[x][y]:
                        seen.add(q)
                        region.append(q)
            if len(region) == size:
                return region[0]
    return None


def session(program, seconds, seed):
    """One run of the program through every state; returns {figure: value}."""
    t = Tolvar(os.path.abspath(program), "perf", seed=seed)
    figures = {"exec to main window (ms)": 1000.0 * t.startup_seconds}
    try:
        time.sleep(1.0)
        woken = t.main_thread_wakeups()
        figures["main window, no game (% of a core)"] = t.cpu_percent(seconds)
        figures["main window, no game (wake-ups a second)"] = (t.main_thread_wakeups() - woken) / seconds
        t.choose_game(1)
        t0 = time.monotonic()
        t.press_start()
        lay = Layout(8, 8, t.geometry(t.game))
        t.wait_shot(lambda s: all(c for col in lay.colours(s) for c in col), "a piece in every cell")
        figures["Start to board (ms)"] = 1000.0 * (time.monotonic() - t0)
        time.sleep(1.0)
        woken = t.main_thread_wakeups()
        figures["board at rest (% of a core)"] = t.cpu_percent(seconds)
        figures["board at rest (wake-ups a second)"] = (t.main_thread_wakeups() - woken) / seconds
        figures["peak resident memory, board showing (MiB)"] = peak_resident_mib(t.proc.pid)
        cell = region_of(lay.colours(t.shot()), 3)
        if cell:
            t.click(*lay.centre(*cell))
            time.sleep(1.0)
            figures["region of 3 spiky pieces selected (% of a core)"] = t.cpu_percent(seconds)
            t.click(*lay.centre(*cell))  # deselects
        t.xdo("key", "ctrl+w")
        t.wait_for(lambda: t.mapped(t.main), 10, "the main window")
        time.sleep(1.0)
        figures["game hidden, main window (% of a core)"] = t.cpu_percent(seconds)
        # The score screen: a one-move game.
        t.relaunch_with_one_move_game()
        lay = t.start(1, 2, 1)
        t.xdo("mousemove", *map(int, lay.centre(0, 0)), "click", 1, "sleep", 0.3, "key", "space")
        t.dismiss_alert()
        t.dismiss_alert()
        time.sleep(1.0)
        figures["score screen (% of a core)"] = t.cpu_percent(seconds)
        t.finish()
    finally:
        t.close()
    return figures


def frame_times(bench):
    """Real time of a full frame and of a one-cell redraw of the "Vexamor" board, in ms."""
    display = [] if os.environ.get("DISPLAY") else ["xvfb-run", "-a", "-s", "-screen 0 1280x1024x24 -nolisten tcp"]
    with tempfile.NamedTemporaryFile(suffix=".json") as out:
        subprocess.run(display + [bench, "--benchmark_out_format=json", "--benchmark_out=" + out.name,
                                  "--benchmark_filter=drawBoardOf/Vexamor/|OneCell", "--benchmark_repetitions=5"],
                       stdout=subprocess.DEVNULL, check=True)
        runs = json.load(out)["benchmarks"]
    figures = {}
    for name, label in (("drawBoardOf/Vexamor/", "full frame (ms)"), ("OneCell", "one-cell redraw (ms)")):
        times = [b["real_time"] for b in runs if b.get("run_type") == "iteration" and name in b["name"]]
        if times:
            figures[label] = times
    return figures


def main():
    parser = argparse.ArgumentParser()
    parser.add_argument("--program", required=True)
    parser.add_argument("--bench", help="bench_presentation, for the frame times")
    parser.add_argument("--seconds", type=float, default=10.0)
    parser.add_argument("--runs", type=int, default=3)
    parser.add_argument("--seed", type=int, default=7)
    parser.add_argument("--peers", action="store_true", help="also measure the other puzzle games installed")
    add_version_option(parser)
    args = parser.parse_args()
    with open("/proc/loadavg") as f:
        load = f.read().split()[:3]
    samples = {}
    for _ in range(args.runs):
        for key, value in session(args.program, args.seconds, args.seed).items():
            samples.setdefault(key, []).append(value)
    if args.bench:
        samples.update(frame_times(args.bench))
    with open("/proc/loadavg") as f:
        load += f.read().split()[:3]
    print("| figure | median | lowest - highest | runs |")
    print("|---|---|---|---|")
    for key, values in samples.items():
        print("| %s | %.1f | %.1f - %.1f | %d |" % (key, statistics.median(values), min(values), max(values),
                                                   len(values)))
    print("\nload average before: %s, after: %s" % (" ".join(load[:3]), " ".join(load[3:])))
    if args.peers:
        peers.compare(args.program, args.runs, args.seconds)
    return 0


if __name__ == "__main__":
    sys.exit(main())
