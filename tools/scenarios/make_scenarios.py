#!/usr/bin/env python3
"""Writes the runner scenarios: small rules files made from the built-in games, and scripts
that play each game to its end (found by playing the runner move by move), with the
transcripts they give.

    make_scenarios.py TOLVAR_SIM [OUT_DIR]

OUT_DIR defaults to tests/unit/engine/sim. Run it again only when the engine's transcript
changes on purpose; tests/unit/engine/sim/run_scenarios.py checks that the runner still plays
every script to the same end."""
import argparse
import os
import plistlib
import random
import subprocess
import sys
import tempfile

sys.path.insert(0, os.path.join(os.path.dirname(os.path.abspath(__file__)), ".."))
from tool_version import add_version_option  # noqa: E402

SIM = OUT = None  # the runner and the folder written, from the command line

NO_MOVES = "alert: No more moves!  Press the 'esc' key to play again after clicking 'OK'. [OK]"


def run(script, seed, rules=None, home=None):
    with tempfile.TemporaryDirectory() as tmp:
        env = dict(os.environ, XDG_DATA_HOME=home or tmp)
        args = [SIM, "--seed", str(seed)]
        if rules:
            args += ["--rules", rules]
        p = subprocess.run(args, input="\n".join(script) + "\n", capture_output=True, text=True,
                           env=env, check=False)
        return p.stdout


def builtin_rules():
    with tempfile.TemporaryDirectory() as tmp:
        subprocess.run([SIM, "--seed", "1"], input="", capture_output=True, text=True,
                       env=dict(os.environ, XDG_DATA_HOME=tmp), check=True)
        with open(os.path.join(tmp, "Tolvar", "RulesDict.dict"), "rb") as f:
            return plistlib.load(f)


def small_rules(name, path, **changes):
    rules = builtin_rules()
    game = rules[name]
    game.update(changes)
    with open(path, "wb") as f:
        plistlib.dump({name: game}, f)


def board_of(out, w, h):
    cells = [l for l in out.splitlines() if l.startswith("cell ")][-w * h:]
    board = {}
    for line in cells:
        parts = line.split()
        x, y = int(parts[1]), int(parts[2])
        fields = dict(p.split("=") for p in parts[3:])
        board[(x, y)] = (int(fields["id"]), int(fields["color"]))
    return board


def centre(w, h, x, y):
    side = 748.0 / h
    left = (1024.0 - side * w) / 2.0
    return "%g %g" % (left + (x + 0.5) * side, 10.0 + (y + 0.5) * side)


def neighbours(w, h, x, y):
    for dx, dy in ((-1, 0), (1, 0), (0, -1), (0, 1)):
        if 0 <= x + dx < w and 0 <= y + dy < h:
            yield x + dx, y + dy


def region(board, w, h, start):
    colour = board[start][1]
    seen, todo = {start}, [start]
    while todo:
        c = todo.pop()
        for n in neighbours(w, h, *c):
            if n not in seen and board[n][0] and board[n][1] == colour:
                seen.add(n)
                todo.append(n)
    return seen


def run_length(board, w, h, cell):
    colour = board[cell][1]
    best = 1
    for dx, dy in ((1, 0), (0, 1)):
        n = 1
        for s in (1, -1):
            x, y = cell[0] + s * dx, cell[1] + s * dy
            while 0 <= x < w and 0 <= y < h and board[(x, y)][0] and board[(x, y)][1] == colour:
                n += 1
                x, y = x + s * dx, y + s * dy
        best = max(best, n)
    return best


def swapped(board, p, q):
    b = dict(board)
    b[p], b[q] = (b[p][0], board[q][1]), (b[q][0], board[p][1])
    return b


def play(name, seed, rules, w, h, choose, limit=120):
    script = ["select " + name, "start", "tick"]
    for _ in range(limit):
        out = run(script + ["dump"], seed, rules)
        if NO_MOVES in out:
            return script
        move = choose(board_of(out, w, h), w, h)
        if move is None:
            return None
        script += move + ["tick"]
    return None


def choose_region(board, w, h):
    best = None
    for cell, (pid, _) in sorted(board.items()):
        if pid:
            r = region(board, w, h, cell)
            if len(r) >= 2 and (best is None or len(r) > len(best[1])):
                best = (cell, r)
    if best is None:
        return None
    return ["click " + centre(w, h, *best[0]), "key space"]


def choose_group_swap(rng):
    def choose(board, w, h):
        pairs = [(p, q) for p in sorted(board) for q in neighbours(w, h, *p)
                 if board[p][0] and board[q][0] and board[p][1] != board[q][1]]
        good = [(p, q) for p, q in pairs
                if len(region(swapped(board, p, q), w, h, q)) >= 2
                or len(region(swapped(board, p, q), w, h, p)) >= 2]
        pick = good[0] if good else (rng.choice(pairs) if pairs else None)
        if pick is None:
            return None
        (px, py), (qx, qy) = pick
        return ["drag " + centre(w, h, px, py) + " " + centre(w, h, qx, qy)]
    return choose


def choose_line_swap(board, w, h):
    for p in sorted(board):
        for q in neighbours(w, h, *p):
            if board[p][1] == board[q][1] or not board[p][0] or not board[q][0]:
                continue
            b = swapped(board, p, q)
            if run_length(b, w, h, q) >= 3 or run_length(b, w, h, p) >= 3:
                return ["drag " + centre(w, h, *p) + " " + centre(w, h, *q)]
    return None


def write(name, lines):
    with open(os.path.join(OUT, name), "w") as f:
        f.write("\n".join(lines) + "\n")


def main():
    small_rules("Vexamor", os.path.join(OUT, "vexamor-4x4.dict"), BoardWidth=4, BoardHeight=4)
    small_rules("Trindle", os.path.join(OUT, "trindle-4x4.dict"), BoardWidth=4, BoardHeight=4)
    small_rules("Glimmet", os.path.join(OUT, "glimmet-5x5.dict"), BoardWidth=5, BoardHeight=5,
                NumColors=6)
    games = [
        ("vexamor", "Vexamor", "vexamor-4x4.dict", 4, 4, lambda s: choose_region),
        ("trindle", "Trindle", "trindle-4x4.dict", 4, 4,
         lambda s: choose_group_swap(random.Random(s))),
        ("glimmet", "Glimmet", "glimmet-5x5.dict", 5, 5, lambda s: choose_line_swap),
    ]
    for key, name, rules, w, h, chooser in games:
        for seed in range(1, 200):
            script = play(name, seed, os.path.join(OUT, rules), w, h, chooser(seed))
            if script and len(script) > 6:
                write(key + ".script", ["# " + name + " played to its end"] + script +
                      ["state", "board", "dump"])
                write(key + ".seed", [str(seed)])
                print(key, "seed", seed, "moves", (len(script) - 3))
                break
        else:
            sys.exit("no seed ends " + name)


def command_line():
    parser = argparse.ArgumentParser(description="Write the runner scenarios: small rules files, scripts that "
                                     "play each game to its end, and their transcripts.")
    parser.add_argument("tolvar_sim", help="the runner program, build/bin/tolvar-sim")
    parser.add_argument("out_dir", nargs="?", help="the folder written (default: tests/unit/engine/sim)",
                        default=os.path.join(os.path.dirname(os.path.abspath(__file__)), "..", "..", "tests",
                                             "unit", "engine", "sim"))
    add_version_option(parser)
    return parser.parse_args()


if __name__ == "__main__":
    ARGUMENTS = command_line()
    SIM, OUT = ARGUMENTS.tolvar_sim, ARGUMENTS.out_dir
    main()
