#!/usr/bin/env python3
"""The board size and colours chosen for a game in the headless runner: the board dealt has them, a saved
game keeps them, its best score goes to the table named after them, values the game does not take are
refused naming what it takes, and the rules file is neither written nor touched.

    run_options.py TOLVAR_SIM SCENARIO_DIR [--update]    (--update rewrites options.out)"""
import os, pathlib, plistlib, re, shutil, subprocess, sys, tempfile  # noqa: E401

SIM, DIR = sys.argv[1], sys.argv[2]
failures = []


def check(condition, what):
    if not condition:
        failures.append(what)
        print("FAIL:", what)


def sim(work, rules, script, seed="1"):
    return subprocess.run([SIM, "--seed", seed, "--rules", rules], input=script, capture_output=True, text=True,
                          cwd=work, env=dict(os.environ, XDG_DATA_HOME=work), timeout=120, check=False)


def boards(out):  # each board "show" printed: its rows, top first, as lists of colour numbers
    found, rows = [], []
    for line in out.splitlines() + [""]:
        if re.fullmatch(r"( *\d+)+", line):
            rows.append([int(n) for n in line.split()])
        elif rows:
            found, rows = found + [rows], []
    return found


with tempfile.TemporaryDirectory() as work:
    rules = os.path.join(work, "rules.dict")
    shutil.copyfile(os.path.join(DIR, "vexamor-4x4.dict"), rules)
    os.utime(rules, ns=(1_000_000_000, 1_000_000_000))
    before = pathlib.Path(rules).read_bytes()
    run = sim(work, rules, pathlib.Path(DIR, "options.script").read_text())
    if "--update" in sys.argv[3:]:
        pathlib.Path(DIR, "options.out").write_text(run.stdout)
    check(run.returncode == 0 and run.stdout == pathlib.Path(DIR, "options.out").read_text(),
          "transcript differs: " + run.stderr)
    check(pathlib.Path(rules).read_bytes() == before and os.stat(rules).st_mtime_ns == 1_000_000_000,
          "the rules file was written or touched")
    chosen, default, continued, tiny = (boards(run.stdout) + [[]] * 4)[:4]
    check(len(chosen) == 5 and all(len(r) == 6 for r in chosen), "6 x 5 dealt: %s" % chosen)
    check({n for r in chosen for n in r} == {1, 2, 3}, "three colours dealt: %s" % chosen)
    check(len(default) == 4 and all(len(r) == 4 for r in default) and {n for r in default for n in r} == {1, 2, 3, 4},
          "the rules' 4 x 4 in four colours after default: %s" % default)
    check(continued == chosen, "the saved 6 x 5 game continued as it was")
    with open(os.path.join(work, "Tolvar", "BestScores.dict"), "rb") as f:
        tables = plistlib.load(f)
    check(list(tables) == ["Vexamor 2 \u00d7 2, 1 colour"] and tables["Vexamor 2 \u00d7 2, 1 colour"][0]["Score"] == 1,
          "the score in the table of its size: %s" % list(tables))

    # Values the game does not take stop the script, naming what it takes; the rules stay as they were.
    glimmet = os.path.abspath(os.path.join(DIR, "glimmet-5x5.dict"))
    for game, script, said in [
            (rules, "select Vexamor\nsize 7 5\n", "line 2: the width is 1 to 6 at a height of 5"),
            (rules, "select Vexamor\nsize 4 0\n", "line 2: the height is 1 to 255"),
            (rules, "select Vexamor\nsize 300 4\n", "line 2: the width is 1 to 5 at a height of 4"),
            (rules, "select Vexamor\ncolors 11\n", "line 2: the number of colours is 1 to 10"),
            (glimmet, "select Glimmet\ncolors 1\n", "line 2: the number of colours is 2 to 10"),
            (rules, "select Vexamor\nsize 4\n", "line 2: wrong number of arguments to size"),
            (rules, "select Vexamor\ncolors many\n", 'line 2: bad number of colours "many"'),
            (rules, "colors 3\n", "line 1: no game chosen")]:
        run = sim(work, game, script)
        check(run.returncode == 2 and run.stderr == "tolvar-sim: %s\n" % said, "%r: %r" % (script, run.stderr))
    check(pathlib.Path(rules).read_bytes() == before, "the rules file is the same after the refusals")

print("%d failure(s)" % len(failures))
sys.exit(1 if failures else 0)
