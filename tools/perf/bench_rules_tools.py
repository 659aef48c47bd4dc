#!/usr/bin/env python3
"""Figures for rules authors' tools: how long tolvar-check takes on a file of 10,000 games, and how
many games per second the balance bench plays for each built-in game with 1 and 2 jobs.

    bench_rules_tools.py BUILD_DIR [--runs N] [--games N]

Each figure is the median of N runs with the smallest and largest beside it; the machine's load
average is printed first, as the figures depend on it."""
import argparse
import os
import plistlib
import statistics
import subprocess
import sys
import tempfile
import time

sys.path.insert(0, os.path.join(os.path.dirname(os.path.abspath(__file__)), ".."))
from tool_version import add_version_option  # noqa: E402


def timed(command, env):
    start = time.monotonic()
    done = subprocess.run(command, capture_output=True, text=True, env=env, check=False)
    return time.monotonic() - start, done


def spread(values, fmt):
    return "%s (%s to %s)" % (fmt % statistics.median(values), fmt % min(values), fmt % max(values))


def main():
    parser = argparse.ArgumentParser()
    parser.add_argument("build")
    parser.add_argument("--runs", type=int, default=5)
    parser.add_argument("--games", type=int, default=200)
    add_version_option(parser)
    args = parser.parse_args()
    check, sim = (os.path.join(args.build, "bin", p) for p in ("tolvar-check", "tolvar-sim"))
    print("load average before: %.2f %.2f %.2f on %d cores" % (os.getloadavg() + (os.cpu_count(),)))
    with tempfile.TemporaryDirectory() as home:
        env = dict(os.environ, XDG_DATA_HOME=home)
        subprocess.run([sim], input="", capture_output=True, env=env, check=True)  # writes the built-in games
        with open(os.path.join(home, "Tolvar", "RulesDict.dict"), "rb") as f:
            builtin = plistlib.load(f)
        big = {}
        for i in range(10000):
            title, rules = list(builtin.items())[i % 3]
            big["%s %05d" % (title, i)] = dict(rules, GameName="%s %05d" % (title, i))
        path = os.path.join(home, "big.dict")
        with open(path, "wb") as f:
            plistlib.dump(big, f, sort_keys=False)
        times = []
        for _ in range(args.runs):
            seconds, done = timed([check, path], env)
            assert done.returncode == 0 and not done.stdout, done.stdout[:500]
            times.append(seconds)
        print("| tolvar-check, 10,000 games (%.1f MB) | %s s |" % (os.path.getsize(path) / 1e6, spread(times, "%.2f")))
        for title in builtin:
            for jobs in (1, 2):
                rates = []
                for _ in range(args.runs):
                    _, done = timed([sim, "--autoplay", str(args.games), "--game", title, "--jobs", str(jobs)], env)
                    assert done.returncode == 0, done.stderr
                    rates.append(float(done.stdout.splitlines()[-1].split()[3]))
                print("| %s, random bot, %d job%s | %s games/s |" % (title, jobs, "" if jobs == 1 else "s",
                                                                     spread(rates, "%.0f")))
    print("load average after: %.2f %.2f %.2f" % os.getloadavg())


if __name__ == "__main__":
    main()
