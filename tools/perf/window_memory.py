#!/usr/bin/env python3
"""The game's resident memory around two things a player or an author does to the windows, under Xvfb:

1. a live reload: a game runs while its rules file is saved with a 60 MB description, then saved back
   as it was (the memory before, at the peak of the big file, with it, and once the good file is back);
2. random window events: clicks, moves and keys over the main window, the game window and help, in
   batches, the memory after each (the figure at the start, after the first 1,000 and at the end).

    window_memory.py --program build/bin/tolvar [--events 6000] [--megabytes 60] [--runs 3] [--only reload|events]

Figures are in MiB (VmRSS, and VmHWM for the peak), medians of --runs runs with the lowest and highest
in brackets, with the machine's load average.
"""

import argparse
import os
import plistlib
import random
import statistics
import subprocess
import sys

sys.path.insert(0, os.path.join(os.path.dirname(os.path.abspath(__file__)), "..", "..", "tests", "e2e"))
from tolvar_driver import MAIN_H, MAIN_W, WIN_H, WIN_W, Tolvar  # noqa: E402

sys.path.insert(0, os.path.join(os.path.dirname(os.path.abspath(__file__)), ".."))
from tool_version import add_version_option  # noqa: E402


def memory(t, field="VmRSS"):
    with open("/proc/%d/status" % t.proc.pid) as f:
        return int(next(l for l in f if l.startswith(field + ":")).split()[1]) / 1024.0


def save_rules(t, games):  # as an editor saves: a new file renamed over the old one
    path = os.path.join(t.folder, "RulesDict.dict")
    with open(path + ".new", "wb") as f:
        plistlib.dump(games, f, sort_keys=False)
    os.replace(path + ".new", path)


def reloads_seen(t):
    return t.stdout(t.err_path).count(" changed: ")


def live_reload(t, megabytes):
    with open(os.path.join(t.folder, "RulesDict.dict"), "rb") as f:
        good = plistlib.load(f)
    t.start(1, 8, 8)
    figures = {"before": memory(t)}
    seen = reloads_seen(t)
    save_rules(t, dict(good, Vexamor=dict(good["Vexamor"], GameDescription="word " * (megabytes * 1024 * 1024 // 5))))
    t.wait_for(lambda: reloads_seen(t) > seen, 120, "the big file to be read")
    figures["peak"], figures["with the big file"] = memory(t, "VmHWM"), memory(t)
    save_rules(t, good)
    t.wait_for(lambda: reloads_seen(t) > seen + 1, 120, "the good file to be read again")
    figures["good file back"] = memory(t)
    return figures


def random_events(t, count, seed):
    rng = random.Random(seed)
    mx, my = t.geometry(t.main)
    gx, gy = t.geometry(t.game)
    keys = ["Escape", "space", "Return", "Up", "Down", "Left", "Right", "F1", "h", "ctrl+w", "ctrl+z", "ctrl+shift+z"]
    figures, done, batch = {"start": memory(t)}, 0, 100
    while done < count:
        args = []
        for _ in range(batch):
            kind = rng.random()
            if kind < 0.45:
                x, y, w, h = (mx, my, MAIN_W, MAIN_H) if rng.random() < 0.5 else (gx, gy, WIN_W, WIN_H)
                args += ["mousemove", x + rng.randrange(w), y + rng.randrange(h)]
            elif kind < 0.85:
                args += ["click", rng.choice((1, 1, 1, 3))]
            else:
                args += ["key", rng.choice(keys)]
        t.xdo(*args)
        done += batch
        check_alive(t)
        if done == 1000:
            figures["after 1,000"] = memory(t)
    figures["after %d" % count] = memory(t)
    return figures


def check_alive(t):
    if t.proc.poll() is not None:
        sys.exit("the program ended (status %s)" % t.proc.returncode)


def main():
    parser = argparse.ArgumentParser(description="The game window's memory over a big live reload and many window events.")
    add_version_option(parser)
    parser.add_argument("--program", required=True)
    parser.add_argument("--events", type=int, default=6000)
    parser.add_argument("--megabytes", type=int, default=60)
    parser.add_argument("--runs", type=int, default=3)
    parser.add_argument("--only", choices=("reload", "events"))
    args = parser.parse_args()
    results = {}
    for run in range(args.runs):
        for name, measure in (("live reload", lambda t: live_reload(t, args.megabytes)),
                              ("random events", lambda t: random_events(t, args.events, run))):
            if args.only and not name.endswith(args.only):
                continue
            t = Tolvar(os.path.abspath(args.program), "memory")
            try:
                for what, mib in measure(t).items():
                    results.setdefault((name, what), []).append(mib)
                t.finish()
            finally:
                t.close()
    print("load average: %.2f %.2f %.2f" % os.getloadavg())
    for (name, what), values in results.items():
        print("%-14s %-18s %7.1f MiB  [%.1f .. %.1f]" % (name, what, statistics.median(values), min(values),
                                                       max(values)))


if __name__ == "__main__":
    main()
