#!/usr/bin/env python3
"""Every game of examples/ checks clean and is played to its end by both bots.

    run_examples.py TOLVAR_CHECK TOLVAR_SIM EXAMPLES_DIR"""
import os
import plistlib
import subprocess
import sys
import tempfile

CHECK, SIM, DIR = sys.argv[1:4]
failures = []
files = sorted(os.path.join(DIR, f) for f in os.listdir(DIR) if f.endswith(".dict"))
if len(files) < 3:
    failures.append("fewer than three examples in %s" % DIR)

checked = subprocess.run([CHECK] + files, capture_output=True, text=True, timeout=60)
if checked.returncode != 0 or checked.stdout:
    failures.append("tolvar-check: status %d\n%s" % (checked.returncode, checked.stdout))

with tempfile.TemporaryDirectory() as home:
    for path in files:
        with open(path, "rb") as f:
            games = plistlib.load(f)
        for title, rules in games.items():
            if not rules.get("GameDescription"):
                failures.append("%s: %s has no description" % (path, title))
            for player in ("random", "greedy"):
                out = subprocess.run([SIM, "--rules", path, "--autoplay", "4", "--game", title,
                                      "--player", player, "--jobs", "2"],
                                     capture_output=True, text=True, timeout=300,
                                     env=dict(os.environ, XDG_DATA_HOME=home))
                print(out.stdout, end="")
                if out.returncode != 0 or "ended by itself 100.0 %" not in out.stdout:
                    failures.append("%s: %s with the %s bot:\n%s%s" % (path, title, player, out.stdout, out.stderr))
    if os.path.exists(os.path.join(home, "Tolvar", "BestScores.dict")):
        failures.append("a bot wrote the best scores")

for failure in failures:
    print("FAIL:", failure)
sys.exit(1 if failures else 0)
