#!/usr/bin/env python3
"""Plays the built-in games to their end in the headless runner and checks the transcript,
the score charged and the best-score file.

    run_scenarios.py TOLVAR_SIM SCENARIO_DIR [--update]

--update rewrites the expected transcripts (*.out) from the runner."""
import datetime
import os
import plistlib
import re
import subprocess
import sys
import tempfile

SIM, DIR = sys.argv[1], sys.argv[2]
NO_MOVES = "alert: No more moves!  Press the 'esc' key to play again after clicking 'OK'. [OK]"
SWEET = "alert: You got one of the best scores! [Sweet!]"
# key: (game, rules file, lower is better)
GAMES = {"vexamor": ("Vexamor", "vexamor-4x4.dict", True),
         "trindle": ("Trindle", "trindle-4x4.dict", True),
         "glimmet": ("Glimmet", "glimmet-5x5.dict", False)}
failures = []


def check(condition, what):
    if not condition:
        failures.append(what)
        print("FAIL:", what)


def read(name, mode="r"):
    with open(os.path.join(DIR, name), mode) as f:
        return f.read()


def sim(home, args, script):
    return subprocess.run([SIM] + args, input=script, capture_output=True, text=True,
                          env=dict(os.environ, XDG_DATA_HOME=home), timeout=120, check=False)


def play(key, home, rules=None):
    return sim(home, ["--seed", read(key + ".seed").strip(), "--rules",
                      rules or os.path.join(DIR, GAMES[key][1])], read(key + ".script"))


def scores_path(home):
    return os.path.join(home, "Tolvar", "BestScores.dict")


def stored(home, name):
    with open(scores_path(home), "rb") as f:
        return [e["Score"] for e in plistlib.load(f)[name]]


def plant(home, table):
    os.makedirs(os.path.join(home, "Tolvar"))
    with open(scores_path(home), "wb") as f:
        plistlib.dump(table, f)


def final_score(out):
    return int(re.findall(r"^state score=(\d+)", out, re.M)[-1])


def whole_games():
    for key, (name, _, lower) in GAMES.items():
        with tempfile.TemporaryDirectory() as home, tempfile.TemporaryDirectory() as other:
            run = play(key, home)
            out = run.stdout
            check(run.returncode == 0, "%s: exit status %d" % (key, run.returncode))
            if "--update" in sys.argv[3:]:
                with open(os.path.join(DIR, key + ".out"), "w") as f:
                    f.write(out)
            check(out == read(key + ".out"), key + ": transcript differs from " + key + ".out")
            check(play(key, other).stdout == out, key + ": a second run differs")
            check(out.count(NO_MOVES) == 1, key + ": the no-moves alert once")
            score = final_score(out)
            check("scores highlight=0: %d\n" % score in out, key + ": the scores line")
            check(SWEET in out, key + ": congratulated")
            removals = out.count("processing event 2\n")
            cells = [l for l in out.splitlines() if l.startswith("cell ")]
            left = sum(1 for c in cells if " id=0 " not in c)
            if lower:  # one point per removal, then ten per remaining piece
                check("multiplier=10" in out, key + ": multiplier raised to 10")
                check(score == removals + 10 * left,
                      "%s: score %d != %d removals + 10 x %d left" % (key, score, removals, left))
            else:
                check(score == removals, "%s: score %d != %d clears" % (key, score, removals))
                check(left == len(cells) and "action 7\n" in out, key + ": the board refilled")
            check(stored(home, name) == [score], key + ": one best score stored")
            second = play(key, home).stdout  # an equal score goes after the first
            check("scores highlight=1: %d %d\n" % (score, score) in second, key + ": second at 1")
            check(stored(home, name) == [score, score], key + ": two scores stored")


def insertion_order():
    for key, (name, _, lower) in GAMES.items():
        with tempfile.TemporaryDirectory() as home:
            score = final_score(read(key + ".out"))
            day = datetime.datetime(2025, 1, 1)
            old = [score - 1, score + 5] if lower else [score + 3, score - 1]
            plant(home, {name: [{"Score": s, "Date": day} for s in old], "Other": []})
            out = play(key, home).stdout
            check("scores highlight=1:" in out, key + ": inserted at index 1")
            if not lower:
                check("got on list at index 1, score %d\n" % score in out, key + ": got on list")
            got = stored(home, name)
            check(got == sorted(got, reverse=not lower), key + ": table ordered " + str(got))
            check(len(got) == 3 and got[1] == score, key + ": new score at index 1 " + str(got))
            check(stored(home, "Other") == [], key + ": other games kept")


def full_and_broken_tables():
    with tempfile.TemporaryDirectory() as home:
        score = final_score(read("trindle.out"))
        plant(home, {"Trindle": [{"Score": score - 1, "Date": datetime.datetime(2025, 1, 1)}] * 20})
        before = open(scores_path(home), "rb").read()
        out = play("trindle", home).stdout
        check("scores highlight=-1:" + " %d" % (score - 1) * 20 + "\n" in out, "full: refused")
        check(SWEET not in out, "full table: no congratulation")
        check(open(scores_path(home), "rb").read() == before, "full table: file untouched")
    with tempfile.TemporaryDirectory() as home:
        os.makedirs(os.path.join(home, "Tolvar"))
        junk = bytes(range(256)) * 3
        with open(scores_path(home), "wb") as f:
            f.write(junk)
        run = play("vexamor", home)
        check(run.returncode == 0, "broken table: exit status")
        check(".unreadable" in run.stderr and "BestScores.dict" in run.stderr,
              "broken table: a line on standard error: " + run.stderr)
        check(open(scores_path(home) + ".unreadable", "rb").read() == junk, "broken: kept intact")
        check(len(stored(home, "Vexamor")) == 1, "broken table: a new table written")


def refusals_and_errors():
    with tempfile.TemporaryDirectory() as home:
        game = plistlib.loads(read("vexamor-4x4.dict", "rb"))
        game["Vexamor"]["BoardWidth"] = 0
        rules = os.path.join(home, "bad.dict")
        with open(rules, "wb") as f:
            plistlib.dump(game, f)
        run = sim(home, ["--seed", "3", "--rules", rules],
                  "select Vexamor\nstart\ntick 5\nclick 500 300\nkey space\nstate\nboard\ndump\n")
        check(run.returncode == 0, "unplayable: exit status")
        check('alert: The game "Vexamor" cannot be played: "BoardWidth" is 0. [OK]\n' in run.stdout,
              "unplayable: the alert names the rule: " + run.stdout[-300:])
        check(run.stdout.endswith("state score=0 multiplier=0 started=0 paused=1\n"),
              "unplayable: nothing started")
        for script, line in [("select Vexamor\nstart\nfly 1 2\n", 3), ("select Nowhere\n", 1),
                             ("# a comment\n\nmenu 9\n", 3), ("down 1 x\n", 1),
                             ("key spacebar\n", 1), ("tick -1\n", 1)]:
            run = sim(home, ["--seed", "1", "--rules", os.path.join(DIR, "vexamor-4x4.dict")], script)
            check(run.returncode == 2 and run.stderr.startswith("tolvar-sim: line %d: " % line),
                  "error for %r: %d %r" % (script, run.returncode, run.stderr))
        missing = sim(home, ["--rules", os.path.join(home, "none.dict")], "")
        check(missing.returncode == 2 and "none.dict" in missing.stderr, "unreadable rules file")


whole_games()
insertion_order()
full_and_broken_tables()
refusals_and_errors()
print("%d failure(s)" % len(failures))
sys.exit(1 if failures else 0)
