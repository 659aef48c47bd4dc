#!/usr/bin/env python3
"""Where the private memory of Tolvar with a board showing goes: launches it as peers.py does (an X server,
a session bus and a home of its own, `--game Vexamor`), waits for the board's window and a settle time,
then sums Private_Clean + Private_Dirty of /proc/PID/smaps by mapping (a library file, the heap, a
thread's stack, the anonymous mappings; the anonymous ones beside a library are counted as that
library's) and prints the largest, with the total as smaps_rollup gives it. Several runs print the
median of each mapping.

    private_memory.py --program build/bin/tolvar [--runs 3] [--top 25] [--env NAME=VALUE ...]
"""

import argparse
import collections
import os
import statistics
import sys
import time

sys.path.insert(0, os.path.dirname(os.path.abspath(__file__)))
import peers  # noqa: E402

sys.path.insert(0, os.path.join(os.path.dirname(os.path.abspath(__file__)), ".."))
from tool_version import add_version_option  # noqa: E402


def private_by_mapping(pid):
    """{(mapping name, "dirty" or "clean"): private KiB}. An anonymous mapping takes the name of the file mapped just before it
    (a library's .bss), else "[anon]"; a thread's stack is told by its guard page before it."""
    totals, name, last_file = collections.Counter(), None, "[anon]"
    with open("/proc/%d/smaps" % pid) as f:
        for line in f:
            first = line.split(None, 1)[0]
            if "-" in first and not first.endswith(":"):
                parts = line.split()
                path = parts[5] if len(parts) > 5 else ""
                if path.startswith("/"):
                    last_file = name = os.path.basename(path)
                elif path:
                    name = path
                else:
                    name = last_file + " (anon beside)" if last_file != "[anon]" else "[anon]"
                    if parts[1].startswith("---"):
                        last_file = "[anon]"
            elif first in ("Private_Clean:", "Private_Dirty:"):
                totals[(name, first[8:13].lower())] += int(line.split()[1])
    return totals


def measure(program, extra_env, seconds):
    found = peers.Program("Tolvar", [os.path.abspath(program), "--game", peers.TOLVAR_GAME], extra_env,
                          windows_to_board=2)
    result = {}

    def look(pid):
        time.sleep(seconds)
        result["mappings"] = private_by_mapping(pid)

    figures = peers.launch(found, 0.0, look)
    return figures, result["mappings"]


def main():
    parser = argparse.ArgumentParser(description=__doc__.split("\n\n")[0])
    parser.add_argument("--program", required=True, help="the tolvar program")
    parser.add_argument("--runs", type=int, default=3)
    parser.add_argument("--top", type=int, default=25)
    parser.add_argument("--seconds", type=float, default=1.0, help="waited with the board up before looking")
    parser.add_argument("--env", action="append", default=[], help="NAME=VALUE given to the program")
    add_version_option(parser)
    args = parser.parse_args()
    extra = dict(e.split("=", 1) for e in args.env)
    runs = [measure(args.program, extra, args.seconds) for _ in range(args.runs)]
    keys = set().union(*(m.keys() for _, m in runs))
    median = {k: statistics.median(m.get(k, 0) for _, m in runs) for k in keys}
    names = {name for name, _ in keys}
    total = {n: median.get((n, "dirty"), 0) + median.get((n, "clean"), 0) for n in names}
    print("private memory by mapping with a board, MiB (median of %d; load %s)" % (args.runs, peers.loadavg()))
    print("   dirty    clean  mapping")
    for name in sorted(names, key=lambda n: -total[n])[:args.top]:
        print("%8.1f %8.1f  %s" % (median.get((name, "dirty"), 0) / 1024.0, median.get((name, "clean"), 0) / 1024.0, name))
    print("%8.1f %8.1f  all mappings (clean: file pages no other process maps now)" % (
        sum(v for (_, kind), v in median.items() if kind == "dirty") / 1024.0,
        sum(v for (_, kind), v in median.items() if kind == "clean") / 1024.0))
    for figure in ("exec to first window (ms)", "private (USS) with a board (MiB)", "peak RSS with a board (MiB)"):
        values = [f[figure] for f, _ in runs]
        print("%s: %.1f (%.1f-%.1f)" % (figure, statistics.median(values), min(values), max(values)))
    return 0


if __name__ == "__main__":
    sys.exit(main())
