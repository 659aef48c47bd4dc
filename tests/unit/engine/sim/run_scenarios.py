#!/usr/bin/env python3
"""Plays the built-in games to their end in the headless runner and checks the transcript,
the score charged and the best-score file.

    run_scenarios.py TOLVAR_SIM SCENARIO_DIR [--update]    (--update rewrites the *.out)"""
import datetime, os, pathlib, plistlib, re, subprocess, sys, tempfile  # noqa: E401

SIM, DIR = sys.argv[1], sys.argv[2]
NO_MOVES = "alert: No more moves!  Press the 'esc' key to play again after clicking 'OK'. [OK]"
SWEET = "alert: You got one of the best scores! [Sweet!]"
GAMES = {"vexamor": ("Vexamor", True), "trindle": ("Trindle", True), "glimmet": ("Glimmet", False)}
RULES = {key: key + ("-5x5" if key == "glimmet" else "-4x4") + ".dict" for key in GAMES}
DAY = datetime.datetime(2025, 1, 1)
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
                      rules or os.path.join(DIR, RULES[key])], read(key + ".script"))


def scores_path(home, plant=None):
    path = os.path.join(home, "Tolvar", "BestScores.dict")
    if plant is not None:
        os.makedirs(os.path.dirname(path))
        pathlib.Path(path).write_bytes(plant if isinstance(plant, bytes) else plistlib.dumps(plant))
    return path


def stored(home, name):
    with open(scores_path(home), "rb") as f:
        return [e["Score"] for e in plistlib.load(f)[name]]


def final_score(out):
    return int(re.findall(r"^state score=(\d+)", out, re.M)[-1])


for key, (name, lower) in GAMES.items():
    with tempfile.TemporaryDirectory() as home, tempfile.TemporaryDirectory() as other:
        run = play(key, home)
        out = run.stdout
        if "--update" in sys.argv[3:]:
            pathlib.Path(DIR, key + ".out").write_text(out)
        check(run.returncode == 0 and out == read(key + ".out"), key + ": transcript differs")
        check(play(key, other).stdout == out, key + ": a second run differs")
        score = final_score(out)
        scores = "scores highlight=0: %d\n" % score
        check(out.count(NO_MOVES) == 1 and SWEET in out and scores in out, key + ": alerts, scores")
        removals = out.count("processing event 2\n")
        cells = [l for l in out.splitlines() if l.startswith("cell ")]
        left = sum(1 for c in cells if " id=0 " not in c)
        if lower:  # one point per removal, then ten per remaining piece
            check("multiplier=10" in out and score == removals + 10 * left,
                  "%s: score %d != %d removals + 10 x %d left" % (key, score, removals, left))
        else:  # one point per clear, and the board refilled
            check(score == removals and left == len(cells) and "action 7\n" in out,
                  key + ": score and refills")
        check(stored(home, name) == [score], key + ": one best score stored")
        second = play(key, home).stdout  # an equal score goes after the first
        check("scores highlight=1: %d %d\n" % (score, score) in second, key + ": second at 1")
        check(stored(home, name) == [score, score], key + ": two scores stored")

    with tempfile.TemporaryDirectory() as home:  # a better and a worse score already stored
        old = [score - 1, score + 5] if lower else [score + 3, score - 1]
        scores_path(home, {name: [{"Score": s, "Date": DAY} for s in old], "Other": []})
        out = play(key, home).stdout
        check("scores highlight=1:" in out, key + ": inserted at index 1")
        check(lower or "got on list at index 1, score %d\n" % score in out, key + ": got on list")
        got = stored(home, name)
        check(got == sorted(got, reverse=not lower) and got[1] == score, key + ": order %s" % got)
        check(len(got) == 3 and stored(home, "Other") == [], key + ": three stored, others kept")

with tempfile.TemporaryDirectory() as home:  # twenty better scores refuse a worse one
    score = final_score(read("trindle.out"))
    path = scores_path(home, {"Trindle": [{"Score": score - 1, "Date": DAY}] * 20})
    before = open(path, "rb").read()
    out = play("trindle", home).stdout
    check("scores highlight=-1:" + " %d" % (score - 1) * 20 + "\n" in out, "full: refused")
    check(SWEET not in out and open(path, "rb").read() == before, "full table: file untouched")

with tempfile.TemporaryDirectory() as home:  # junk is kept aside and a new table written
    path = scores_path(home, bytes(range(256)) * 3)
    run = play("vexamor", home)
    check(run.returncode == 0 and ".unreadable" in run.stderr and "BestScores.dict" in run.stderr,
          "broken table: a line on standard error: " + run.stderr)
    check(open(path + ".unreadable", "rb").read() == bytes(range(256)) * 3, "broken: kept intact")
    check(len(stored(home, "Vexamor")) == 1, "broken table: a new table written")

with tempfile.TemporaryDirectory() as home:  # rules whose events queue each other without end
    for rules, name, event in [("loop-events.dict", "Vexamor", "event 3 (type 11)"),
                               ("loop-refill.dict", "Glimmet", "event 2 (type 12)")]:
        run = sim(home, ["--seed", "1", "--rules", os.path.join(DIR, rules)],
                  "select %s\nstart\ntick\nstate\ntick\n" % name)
        stopped = [l for l in run.stdout.splitlines() if l.startswith("stopped: ")]
        check(run.returncode == 0 and stopped == ["stopped: %s keeps queueing events, 1000 in a row" % event]
              and run.stdout.count("processing event") == 1000, rules + ": stopped once at the bound")
        check('alert: The game "%s" was stopped: its %s keeps queueing events without end. Press the '
              "'esc' key to play again. [OK]\nstate score=" % (name, event) in run.stdout
              and re.search(r"paused=1 board=\d+\n$", run.stdout), rules + ": alert and the game ended")

with tempfile.TemporaryDirectory() as home:  # unplayable rules and a broken script
    game = plistlib.loads(read("vexamor-4x4.dict", "rb"))
    game["Vexamor"]["BoardWidth"] = 0
    rules = os.path.join(home, "bad.dict")
    pathlib.Path(rules).write_bytes(plistlib.dumps(game))
    run = sim(home, ["--seed", "3", "--rules", rules],
              "select Vexamor\nstart\ntick 5\nclick 500 300\nkey space\nstate\n")
    check(run.returncode == 0 and 'alert: The game "Vexamor" cannot be played: "BoardWidth" is 0. '
          "[OK]\nstate score=0 multiplier=0 started=0 paused=1 board=0\n" in run.stdout, "unplayable")
    for script, line in [("select Vexamor\nstart\nfly 1 2\n", 3), ("# a comment\n\nmenu 9\n", 3),
                         ("select Nowhere\n", 1), ("down 1 x\n", 1), ("tick -1\n", 1)]:
        run = sim(home, ["--rules", os.path.join(DIR, RULES["vexamor"])], script)
        check(run.returncode == 2 and run.stderr.startswith("tolvar-sim: line %d: " % line),
              "error for %r: %d %r" % (script, run.returncode, run.stderr))

def fresh(args, script):
    """The run of a script in a data folder of its own (the folder's set-up lines in every run)."""
    with tempfile.TemporaryDirectory() as home:
        return sim(home, args, script)


with tempfile.TemporaryDirectory() as home:  # board numbers
    rules = os.path.join(DIR, RULES["glimmet"])
    # A board number deals its board whatever the seed; the seed only picks the numbers of starts.
    play_on = "select Glimmet\n%s\ntick\nclick 400 300\ntick 3\nclick 600 500\ntick 3\nstate\ndump\n"
    numbered = [fresh(["--seed", seed, "--rules", rules], play_on % "board 4242").stdout
                for seed in ("1", "2", "77777")]
    check(numbered[0] == numbered[1] == numbered[2] and "cell 0 0" in numbered[0],
          "board 4242: the same transcript under --seed 1, 2 and 77777")
    started = [fresh(["--seed", seed, "--rules", rules], play_on % "start\nstate").stdout
               for seed in ("1", "1", "2")]
    picked = [int(re.search(r"^state .* board=(\d+)$", out, re.M).group(1)) for out in started]
    check(started[0] == started[1] and picked[0] != picked[2] and all(1 <= n <= 999999999 for n in picked),
          "start: the same --seed picks the same board, another seed another one: %s" % picked)
    again = fresh(["--seed", "2", "--rules", rules], play_on % ("board %d\nstate" % picked[0])).stdout
    check(again == started[0], "board N plays the board start picked as N")
    # Escape deals a new board with a number of its own, the next of the seed's picks.
    escaped = sim(home, ["--seed", "1", "--rules", rules], "select Glimmet\nstart\ntick\nkey esc\nstate\n").stdout
    check(int(re.findall(r"board=(\d+)", escaped)[-1]) not in (0, picked[0]), "Escape: a new number")
    for word in ("0", "1000000000", "12x", "-5"):
        run = sim(home, ["--rules", rules], "select Glimmet\nboard %s\n" % word)
        check(run.returncode == 2 and "is no board number: a board number is a whole number from 1 to 999999999"
              in run.stderr, "board %s refused: %r" % (word, run.stderr))

print("%d failure(s)" % len(failures))
sys.exit(1 if failures else 0)
