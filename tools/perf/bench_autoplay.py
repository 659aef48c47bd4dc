#!/usr/bin/env python3
"""The balance bench's own cost: wall time and processor time of `tolvar-sim --autoplay GAMES --game
TITLE` with 1 and 2 jobs, and the processor time per game.

    bench_autoplay.py BUILD_DIR [--runs N] [--games N] [--game TITLE]

Each figure is the median of N runs with the smallest and largest in brackets. Processor time is the
user and system time of tolvar-sim and the processes it starts. The machine's load average is printed
before and after, as the figures depend on it."""
import argparse
import os
import resource
import statistics
import subprocess
import sys
import tempfile
import time

sys.path.insert(0, os.path.join(os.path.dirname(os.path.abspath(__file__)), ".."))
from tool_version import add_version_option  # noqa: E402


def children_cpu():
    used = resource.getrusage(resource.RUSAGE_CHILDREN)
    return used.ru_utime + used.ru_stime


def run_once(command, env):
    """(wall seconds, processor seconds) of one run, which must succeed."""
    cpu, start = children_cpu(), time.monotonic()
    done = subprocess.run(command, capture_output=True, text=True, env=env, check=False)
    wall = time.monotonic() - start
    if done.returncode != 0:
        raise SystemExit("%s failed with status %d: %s" % (" ".join(command), done.returncode, done.stderr))
    return wall, children_cpu() - cpu


def spread(values, fmt):
    return "%s (%s – %s)" % (fmt % statistics.median(values), fmt % min(values), fmt % max(values))


def main():
    parser = argparse.ArgumentParser(description=__doc__.split("\n\n")[0])
    parser.add_argument("build", help="the build folder (its bin/tolvar-sim is measured)")
    parser.add_argument("--runs", type=int, default=5, help="runs per figure (5)")
    parser.add_argument("--games", type=int, default=500, help="games per run (500)")
    parser.add_argument("--game", default="Vexamor", help="the title played (Vexamor)")
    add_version_option(parser)
    args = parser.parse_args()
    sim = os.path.join(args.build, "bin", "tolvar-sim")
    print("load average before: %.2f %.2f %.2f on %d cores" % (os.getloadavg() + (os.cpu_count(),)))
    print("| %s, %d games | wall ms | processor ms | processor µs per game |" % (args.game, args.games))
    print("|---|---|---|---|")
    with tempfile.TemporaryDirectory() as home:
        env = dict(os.environ, XDG_DATA_HOME=home)
        subprocess.run([sim], input="", capture_output=True, env=env, check=True)  # writes the built-in games
        for jobs in (1, 2):
            command = [sim, "--autoplay", str(args.games), "--game", args.game, "--jobs", str(jobs)]
            runs = [run_once(command, env) for _ in range(args.runs)]
            walls = [wall * 1e3 for wall, _ in runs]
            cpus = [cpu * 1e3 for _, cpu in runs]
            per_game = [cpu * 1e3 / args.games for cpu in cpus]
            print("| %d job%s | %s | %s | %s |" % (jobs, "" if jobs == 1 else "s", spread(walls, "%.0f"),
                                                   spread(cpus, "%.0f"), spread(per_game, "%.0f")))
    print("load average after: %.2f %.2f %.2f" % os.getloadavg())


if __name__ == "__main__":
    main()
