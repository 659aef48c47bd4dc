#!/usr/bin/env python3
"""Plays the built-in games to their end in the headless runner and checks the transcript,
the score charged and the best-score file.

    run_scenarios.py TOLVAR_SIM SCENARIO_DIR [--update]

--update rewrites the expected transcripts (*.out) from the runner."""
import os
import plistlib
import re
import subprocess
import sys
import tempfile

SIM, DIR = sys.argv[1], sys.argv[2]
UPDATE = "--update" in sys.argv[3:]
NO_MOVES = "alert: No more moves!  Press the 'esc' key to play again after clicking 'OK'. [OK]"
SWEET = "alert: You got one of the best scores! [Sweet!]"
GAMES = {
    "vexamor": ("Vexamor", "vexamor-4x4.dict", True),
    "trindle": ("Trindle", "trindle-4x4.dict", True),
    "glimmet": ("Glimmet", "glimmet-5x5.dict", False),
}
failures = []


def check(condition, what):
    if not condition:
        failures.append(what)
        print("FAIL:", what)


def sim(home, args, script):
    return subprocess.run([SIM] + args, input=script, capture_output=True, text=True,
                          env=dict(os.environ, XDG_DATA_HOME=home), timeout=120, check=False)


def read(name):
    with open(os.path.join(DIR, name)) as f:
        return f.read()


def play(key, home):
    name, rules, _ = GAMES[key]
    seed = read(key + ".seed").strip()
    return sim(home, ["--seed", seed, "--rules", os.path.join(DIR, rules)], read(key + ".script"))


def scores_file(home):
    with open(os.path.join(home, "Tolvar", "BestScores.dict"), "rb") as f:
        return plistlib.load(f)


def final_score(out):
    return int(re.findall(r"^state score=(\d+)", out, re.M)[-1])


def final_cells(out):
    return [l for l in out.splitlines() if l.startswith("cell ")]


def whole_games():
    for key, (name, _, lower) in GAMES.items():
        with tempfile.TemporaryDirectory() as home:
            first = play(key, home)
            check(first.returncode == 0, key + ": exit status " + str(first.returncode))
            out = first.stdout
            golden = os.path.join(DIR, key + ".out")
            if UPDATE:
                with open(golden, "w") as f:
                    f.write(out)
            check(out == read(key + ".out"), key + ": transcript differs from " + key + ".out")
            check(out.count(NO_MOVES) == 1, key + ": the no-moves alert once")
            score = final_score(out)
            check(("scores highlight=0: %d\n" % score) in out, key + ": the scores line")
            check(SWEET in out, key + ": congratulated")
            removals = out.count("processing event 2\n")
            cells = final_cells(out)
            remaining = sum(1 for c in cells if " id=0 " not in c)
            if lower:
                # One point per removal, then ten per remaining piece.
                check("multiplier=10" in out, key + ": multiplier raised to 10")
                check(score == removals + 10 * remaining,
                      "%s: score %d != %d removals + 10 x %d left" % (key, score, removals, remaining))
            else:
                check(score == removals, "%s: score %d != %d clears" % (key, score, removals))
                check(remaining == len(cells) and "action 7\n" in out, key + ": the board refilled")
            table = scores_file(home)[name]
            check([e["Score"] for e in table] == [score], key + ": one best score stored")
            # The same seed and script give the same transcript, byte for byte.
            with tempfile.TemporaryDirectory() as other:
                again = play(key, other)
                check(again.stdout == out, key + ": a second run differs")

            # A second game with the same score goes after the equal one.
            second = play(key, home)
            check("scores highlight=1: %d %d\n" % (score, score) in second.stdout,
                  key + ": second equal score at index 1")
            check([e["Score"] for e in scores_file(home)[name]] == [score, score],
                  key + ": two scores stored")


def insertion_order():
    for key, (name, _, lower) in GAMES.items():
        with tempfile.TemporaryDirectory() as home:
            score = final_score(read(key + ".out"))
            stored = [score - 1, score + 5] if lower else [score + 3, score - 1]
            os.makedirs(os.path.join(home, "Tolvar"))
            with open(os.path.join(home, "Tolvar", "BestScores.dict"), "wb") as f:
                plistlib.dump({name: [{"Score": s, "Date": __import__("datetime").datetime(2025, 1, 1)}
                                      for s in stored], "Other": []}, f)
            out = play(key, home).stdout
            check("scores highlight=1:" in out, key + ": inserted at index 1")
            if not lower:
                check("got on list at index 1, score %d\n" % score in out, key + ": got on list line")
            got = [e["Score"] for e in scores_file(home)[name]]
            check(got == sorted(got, reverse=not lower), key + ": table ordered " + str(got))
            check(len(got) == 3 and got[1] == score, key + ": new score at index 1 " + str(got))
            check("Other" in scores_file(home), key + ": other games kept")


def full_table():
    key = "trindle"
    name = GAMES[key][0]
    with tempfile.TemporaryDirectory() as home:
        score = final_score(read(key + ".out"))
        os.makedirs(os.path.join(home, "Tolvar"))
        path = os.path.join(home, "Tolvar", "BestScores.dict")
        with open(path, "wb") as f:
            plistlib.dump({name: [{"Score": score - 1, "Date": __import__("datetime").datetime(2025, 1, 1)}] * 20}, f)
        before = open(path, "rb").read()
        out = play(key, home).stdout
        check(("scores highlight=-1:" + (" %d" % (score - 1)) * 20 + "\n") in out,
              "full table: refused, twenty shown")
        check(SWEET not in out, "full table: no congratulation")
        check(open(path, "rb").read() == before, "full table: file untouched")


def broken_table():
    key = "vexamor"
    with tempfile.TemporaryDirectory() as home:
        os.makedirs(os.path.join(home, "Tolvar"))
        path = os.path.join(home, "Tolvar", "BestScores.dict")
        junk = bytes(range(256)) * 3
        with open(path, "wb") as f:
            f.write(junk)
        run = play(key, home)
        check(run.returncode == 0, "broken table: exit status")
        check(".unreadable" in run.stderr and "BestScores.dict" in run.stderr,
              "broken table: a line on standard error: " + run.stderr)
        check(open(path + ".unreadable", "rb").read() == junk, "broken table: kept aside intact")
        check(len(scores_file(home)["Vexamor"]) == 1, "broken table: a new table written")


def refusals_and_errors():
    with tempfile.TemporaryDirectory() as home:
        rules = os.path.join(home, "bad.dict")
        with open(os.path.join(DIR, "vexamor-4x4.dict"), "rb") as f:
            game = plistlib.load(f)
        game["Vexamor"]["BoardWidth"] = 0
        with open(rules, "wb") as f:
            plistlib.dump(game, f)
        run = sim(home, ["--seed", "3", "--rules", rules],
                  "select Vexamor\nstart\ntick 5\nclick 500 300\nkey space\nstate\nboard\ndump\n")
        check(run.returncode == 0, "unplayable: exit status")
        check('alert: The game "Vexamor" cannot be played: "BoardWidth" is 0. [OK]\n' in run.stdout,
              "unplayable: the alert names the rule: " + run.stdout[-300:])
        check(run.stdout.endswith("state score=0 multiplier=0 started=0 paused=1\n"),
              "unplayable: nothing started")

        cases = [
            ("select Vexamor\nstart\nfly 1 2\n", "line 3: "),
            ("select Nowhere\n", "line 1: "),
            ("# a comment\n\nmenu 9\n", "line 3: "),
            ("down 1 x\n", "line 1: "),
            ("key spacebar\n", "line 1: "),
            ("tick -1\n", "line 1: "),
        ]
        for script, where in cases:
            run = sim(home, ["--seed", "1", "--rules", os.path.join(DIR, "vexamor-4x4.dict")], script)
            check(run.returncode == 2, "error status for " + repr(script))
            check(run.stderr.startswith("tolvar-sim: " + where), "error line for %r: %r" % (script, run.stderr))
        missing = sim(home, ["--rules", os.path.join(home, "none.dict")], "")
        check(missing.returncode == 2 and "none.dict" in missing.stderr, "unreadable rules file")


whole_games()
insertion_order()
full_table()
broken_table()
refusals_and_errors()
print("%d failure(s)" % len(failures))
sys.exit(1 if failures else 0)
