#!/usr/bin/env python3
"""Plays each built-in game to its end with seeded random moves in the headless runner, then
checks undo, redo and a game saved part way and continued in a new process:
- undoing every move gives back the starting board and score;
- redoing them all gives the final board, score and the very same transcript;
- saving after move k and continuing in another process gives the uninterrupted transcript, and
  undo and redo there give what they give without the quit;
- the same game played from the keyboard alone (arrows and Enter) gives the same transcript.

    run_undo_save.py TOLVAR_SIM"""
import os, plistlib, random, re, subprocess, sys, tempfile  # noqa: E401

SIM = sys.argv[1]
NO_MOVES = "alert: No more moves!"
GAMES = [("Vexamor", 3), ("Trindle", 5), ("Glimmet", 11)]  # the runner's seed for each
HEAD = ["start", "tick"]
failures = []


def check(condition, what):
    if not condition:
        failures.append(what)
        print("FAIL:", what)


def sim(lines, seed, home, options=()):
    run = subprocess.run([SIM, "--seed", str(seed), *options], input="\n".join(lines) + "\n",
                         capture_output=True, text=True, timeout=120, check=False,
                         env=dict(os.environ, XDG_DATA_HOME=home))
    check(run.returncode == 0, f"runner status {run.returncode}: {run.stderr.strip()}")
    return run.stdout


def fresh(lines, seed):
    """The transcript of a script in a data folder of its own."""
    with tempfile.TemporaryDirectory() as home:
        return sim(lines, seed, home)


def board_of(out):
    """(column, row) -> colour of the last dump; empty cells are left out."""
    cells = {}
    for m in re.finditer(r"^cell (\d+) (\d+) id=(\d+) color=(\d+)", out, re.M):
        x, y, pid, colour = map(int, m.groups())
        cells.pop((x, y), None)
        if pid:
            cells[(x, y)] = colour
    return cells


def centre(size, x, y):
    """The window point of a cell's centre: square cells, the board centred, 10 points of margin."""
    side = 748.0 / size[1]
    left = (1024.0 - side * size[0]) / 2.0
    return f"{left + (x + 0.5) * side:.3f} {10 + (y + 0.5) * side:.3f}"


def region(cells, start):
    seen, todo = {start}, [start]
    while todo:
        x, y = todo.pop()
        for n in ((x - 1, y), (x + 1, y), (x, y - 1), (x, y + 1)):
            if n not in seen and cells.get(n) == cells[start]:
                seen.add(n)
                todo.append(n)
    return seen


def longest_run(cells, at):
    best = 1
    for dx, dy in ((1, 0), (0, 1)):
        n, p = 1, (at[0] + dx, at[1] + dy)
        while cells.get(p) == cells[at]:
            n, p = n + 1, (p[0] + dx, p[1] + dy)
        p = (at[0] - dx, at[1] - dy)
        while cells.get(p) == cells[at]:
            n, p = n + 1, (p[0] - dx, p[1] - dy)
        best = max(best, n)
    return best


def moves(name, cells, size):
    """Every move a player could make now: (its input lines, how many undoable moves it is, the
    cells it clicks)."""
    found, others = [], []
    if name == "Vexamor":
        for c in sorted(cells):
            if len(region(cells, c)) >= 2:
                found.append(([f"click {centre(size, *c)}", "key space"], 2, [c]))
        return found
    for a in sorted(cells):
        for b in ((a[0] + 1, a[1]), (a[0], a[1] + 1)):
            if b not in cells or cells[a] == cells[b]:
                continue
            swapped = dict(cells)
            swapped[a], swapped[b] = cells[b], cells[a]
            joins = (len(region(swapped, a)) >= 2 or len(region(swapped, b)) >= 2
                     if name == "Trindle" else
                     longest_run(swapped, a) >= 3 or longest_run(swapped, b) >= 3)
            drag = ([f"drag {centre(size, *a)} {centre(size, *b)}"], 1, [a, b])
            if joins:
                found.append(drag)
            elif name == "Trindle":
                others.append(drag)
    # A Trindle swap that joins nothing still moves the pieces on.
    return found or others


def play_to_end(name, seed, size):
    """Seeded random moves until the game ends: the steps, each (lines, undoable moves)."""
    rng = random.Random(seed)
    steps = []
    while len(steps) < 400:
        script = [f"select {name}"] + HEAD + [l for s in steps for l in s[0] + ["tick"]]
        out = fresh(script + ["dump"], seed)
        if NO_MOVES in out:
            return steps
        choices = moves(name, board_of(out), size)
        check(choices, f"{name}: no move found on a board the game still plays")
        if not choices:
            return steps
        steps.append(rng.choice(choices))
    check(False, f"{name}: no end after 400 moves")
    return steps


def keyboard(steps, size):
    """The steps played with the cursor: arrows to each cell the mouse would click and Enter; a
    drag is Enter on its first cell and Enter on its neighbour. Other keys stay as they are."""
    at = [size[0] // 2, size[1] // 2]
    lines = ["key up"]  # the first arrow shows the cursor in the middle
    for step in steps:
        for cell in step[2]:
            for axis, more, less in ((0, "right", "left"), (1, "up", "down")):
                while at[axis] != cell[axis]:
                    forward = cell[axis] > at[axis]
                    lines.append("key " + (more if forward else less))
                    at[axis] += 1 if forward else -1
            lines.append("key enter")
        lines += [line for line in step[0] if line.startswith("key ")] + ["tick"]
    return lines


SIZES = {"Vexamor": (8, 8), "Trindle": (12, 12), "Glimmet": (8, 8)}
for name, seed in GAMES:
    steps = play_to_end(name, seed, SIZES[name])
    show = ["board", "state"]
    played = [l for s in steps for l in s[0] + ["tick"]]
    head = [f"select {name}"] + HEAD
    whole = fresh(head + played + show, seed)
    start = fresh(head, seed)
    check(whole.startswith(start) and NO_MOVES in whole, f"{name}: the game did not end")
    starting = fresh(head + show, seed)[len(start):]

    # Undo everything before the last move's consequences run (the best-score check ends undo).
    last_input = played[:-1]
    before_end = fresh(head + last_input, seed)
    count = sum(s[1] for s in steps)
    redo = [l for s in steps for l in ["redo"] * s[1] + ["tick"]]
    undone = fresh(head + last_input + ["undo"] * (count + 2) + show + redo + show, seed)
    want = before_end + "nothing to undo\n" * 2 + starting + whole[len(start):]
    check(undone == want, f"{name}: undo all and redo all ({len(steps)} steps, {count} moves) "
          "do not give the starting board and then the same transcript")
    print(f"{name}: {len(steps)} steps, {count} moves undone and redone")

    keys = fresh(head + keyboard(steps, SIZES[name]) + show, seed)
    check(keys == whole, f"{name}: the game played from the keyboard gives another transcript")

    # Saved after move k, continued by another process with another seed.
    with tempfile.TemporaryDirectory() as keep:
        saved = os.path.join(keep, "saved.dict")
        k = len(steps) // 2
        before = fresh(head + [l for s in steps[:k] for l in s[0] + ["tick"]] + [f"save {saved}"], seed)
        opening = fresh([f"continue {saved}"], seed + 1)
        rest = fresh([f"continue {saved}"] + [l for s in steps[k:] for l in s[0] + ["tick"]] + show,
                     seed + 1)
        check(rest.startswith(opening) and before + rest[len(opening):] == whole,
              f"{name}: saved after move {k} and continued, the transcript differs")
        # Undo and redo go on after Continue as they would have without the quit.
        played_k = head + [l for s in steps[:k] for l in s[0] + ["tick"]]
        back = ["undo", "board", "state", "undo", "board", "redo", "redo", "board", "state"]
        unquit = fresh(played_k + back, seed)[len(fresh(played_k, seed)):]
        after = fresh([f"continue {saved}"] + back, seed + 1)[len(opening):]
        check(after == unquit and "nothing to" not in after,
              f"{name}: undo and redo after Continue differ from without the quit")

        # Changed rules are refused with the reason, and nothing is played.
        with tempfile.TemporaryDirectory() as home:
            sim(["select None"], seed, home)
            with open(os.path.join(home, "Tolvar", "RulesDict.dict"), "rb") as f:
                rules = plistlib.load(f)
            rules[name]["GameDescription"] += " Changed."
            changed = os.path.join(keep, "changed.dict")
            with open(changed, "wb") as f:
                plistlib.dump(rules, f)
            refused = sim([f"continue {saved}", "state"], seed, home, ["--rules", changed])
        check(f'cannot continue: The saved game of "{name}" cannot be continued: the game\'s rules '
              "have changed since it was saved.\nstate score=0 multiplier=0 started=0 paused=1 board=0\n"
              in refused, f"{name}: a saved game with changed rules was not refused:\n{refused}")
    print(f"{name}: saved after {k} of {len(steps)} steps and continued to the same end")

if failures:
    sys.exit(f"{len(failures)} check(s) failed")
print("all checks passed")
