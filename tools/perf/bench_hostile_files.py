#!/usr/bin/env python3
"""Time (on the clock and of the processor) and peak memory of tolvar-check and of the game's reading of the rules (tolvar-sim --rules)
on each hostile file of the test suite (tests/hostile/hostile_files.py), plus 100,000 games and a
10 MB title.

    bench_hostile_files.py BUILD_BIN_DIR [--runs N] [--limit SECONDS] [--only NAME...]

Each figure is the median of N runs with the smallest and largest beside it; the machine's load
average is printed first. A run that passes the limit is stopped and shown as "> limit" (a program
blocked on a pipe, or reading in quadratic time)."""
import argparse
import os
import plistlib
import statistics
import subprocess
import sys
import tempfile

sys.path.insert(0, os.path.join(os.path.dirname(os.path.abspath(__file__)), "..", "..", "tests", "hostile"))
import hostile_files  # noqa: E402

sys.path.insert(0, os.path.join(os.path.dirname(os.path.abspath(__file__)), ".."))
from tool_version import add_version_option  # noqa: E402


def measured(command, stdin_text, limit, scratch):
    """(seconds on the clock, processor seconds (user + system), peak resident MB) of one run, or
    (None, None, None) when it passed the limit. The figures come from /usr/bin/time (the `time`
    package, in scripts/setup-deps): a child's own peak from wait4 here would start at this
    script's size."""
    report = os.path.join(scratch, "time.txt")
    try:
        subprocess.run(["/usr/bin/time", "-f", "%e %U %S %M", "-o", report] + command, input=stdin_text.encode(),
                       stdout=subprocess.DEVNULL, stderr=subprocess.DEVNULL, timeout=limit)
    except subprocess.TimeoutExpired:
        return None, None, None
    with open(report) as f:
        seconds, user, system, kilobytes = f.read().split()[-4:]
    return float(seconds), float(user) + float(system), int(kilobytes) / 1024.0


def spread(values, fmt):
    return "%s (%s–%s)" % (fmt % statistics.median(values), fmt % min(values), fmt % max(values))


def extra_cases():
    games = {"G%06d" % i: {"GameName": "G%06d" % i, "BoardWidth": 5} for i in range(100000)}
    return {
        "games-100000": lambda: plistlib.dumps(games, sort_keys=False),
        "title-10MB": lambda: plistlib.dumps({"T" * 10_000_000: hostile_files.GAME}),
    }


def main():
    parser = argparse.ArgumentParser(description="Time and peak memory of reading each hostile file.")
    add_version_option(parser)
    parser.add_argument("bin")
    parser.add_argument("--runs", type=int, default=5)
    parser.add_argument("--limit", type=float, default=60.0)
    parser.add_argument("--only", nargs="*")
    args = parser.parse_args()
    check, sim = (os.path.join(args.bin, p) for p in ("tolvar-check", "tolvar-sim"))
    print("load average before: %.2f %.2f %.2f on %d cores" % (os.getloadavg() + (os.cpu_count(),)))
    if not os.access("/usr/bin/time", os.X_OK):
        sys.exit("bench_hostile_files.py: /usr/bin/time is missing (the Debian package `time`; scripts/setup-deps installs it)")
    print("| file | size | tolvar-check s | tolvar-check CPU s | tolvar-check MB | tolvar-sim --rules s |"
          " tolvar-sim --rules CPU s | tolvar-sim --rules MB |")
    print("|---|---|---|---|---|---|---|---|")
    extras = extra_cases()
    names = list(hostile_files.CASES) + list(extras)
    with tempfile.TemporaryDirectory() as folder:
        for name in names:
            if args.only and name not in args.only:
                continue
            if name in extras:
                path, keep = os.path.join(folder, name + ".dict"), None
                with open(path, "wb") as f:
                    f.write(extras[name]())
            else:
                path, keep = hostile_files.make(name, folder)
            size = os.path.getsize(path) if os.path.isfile(path) else 0
            cells = []
            for command, stdin_text in (([check, path], ""), ([sim, "--rules", path], "select G\nstart\n")):
                times, cpus, peaks = [], [], []
                for _ in range(args.runs):
                    seconds, cpu, peak = measured(command, stdin_text, args.limit, folder)
                    if seconds is None:
                        break
                    times.append(seconds)
                    cpus.append(cpu)
                    peaks.append(peak)
                if len(times) < args.runs:
                    cells += ["> %.0f (stopped)" % args.limit, "—", "—"]
                else:
                    cells += [spread(times, "%.2f"), spread(cpus, "%.2f"), spread(peaks, "%.0f")]
            print("| %s | %.1f MB | %s |" % (name, size / 1e6, " | ".join(cells)), flush=True)
            if keep is not None:
                keep.close()
            if os.path.exists(path):
                os.remove(path)
    print("load average after: %.2f %.2f %.2f" % os.getloadavg())


if __name__ == "__main__":
    main()
