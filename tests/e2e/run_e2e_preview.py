#!/usr/bin/env python3
"""What a move would bring, shown under the pointer, and the hint's plain word when there is no move, played
under its own Xvfb:
run_e2e_preview.py --program build/bin/tolvar --test hover|no_move"""

import os
import sys

sys.path.insert(0, os.path.dirname(os.path.abspath(__file__)))
from tolvar_driver import WIN_H, WIN_W, check, key, removes, run_test_script  # noqa: E402

VEXAMOR = (1, 8, 8)  # the game pop-up's index, board width and height


def brighter(before, now):  # a lit cell's wash: clearly lighter than the piece it lies over
    return sum(now) > sum(before) + 60


def lit_share(before, now, lay, cell):
    """The share of the samples over the cell's piece that are lighter than before."""
    X, Y, W, H = lay.cell_rect(*cell)
    points = [lay.to_screen(X + W * i / 8, Y + H * j / 8) for i in range(1, 8) for j in range(1, 8)]
    return sum(brighter(before.pixel(*p), now.pixel(*p)) for p in points) / len(points)


def region_at(colours, lay, start):
    region = [start]
    for x, y in region:  # grows as the region's neighbours of its colour are found
        region += [q for q in ((x + 1, y), (x - 1, y), (x, y + 1), (x, y - 1)) if q not in region
                   and 0 <= q[0] < lay.board_w and 0 <= q[1] < lay.board_h and colours[q[0]][q[1]] == colours[x][y]]
    return region


def changed(before, now, box):
    """Samples of the box (screen x0, y0, x1, y1, every other pixel) that differ clearly from before."""
    return sum(1 for y in range(int(box[1]), int(box[3]), 2) for x in range(int(box[0]), int(box[2]), 2)
               if sum(abs(a - b) for a, b in zip(before.pixel(x, y), now.pixel(x, y))) > 90)


def labelled(before, now, box, least):
    """A label stands in the box: much of it changed, and its white text lights pixels that were not."""
    def light(shot):
        return shot.count(*box, lambda p: min(p) > 180, 2)
    return changed(before, now, box) > least and light(now) > light(before) + least // 8


def above(lay, cell):
    """The band just above the cell, where the label by it stands."""
    X, Y, W, H = lay.cell_rect(*cell)
    x0, y1 = lay.to_screen(X + W / 2 - 70, Y + H + 10)
    x1, y0 = lay.to_screen(X + W / 2 + 70, Y + H + 34)
    return x0, y0, x1, y1


def test_hover(t):
    """The pointer over a piece of a region lights the region and puts its points and pieces by it; over a
    piece alone nothing is lit; off the board the light and the label go and the game is as it was."""
    lay = t.start(*VEXAMOR)
    before = t.shot()
    colours = lay.colours(before)
    regions = [region_at(colours, lay, c) for c in lay.cells()]
    # The lowest piece of a region of two or more, below the top row so that its label stands above it.
    region = next(r for r in regions if len(r) >= 2 and min(r, key=lambda c: c[1])[1] < lay.board_h - 1)
    cell = min(region, key=lambda c: c[1])
    alone = next((r[0] for r in regions if len(r) == 1), None)
    out = len(t.stdout())

    t.xdo("mousemove", *map(int, lay.centre(*cell)))
    shot = t.wait_shot(lambda s: all(lit_share(before, s, lay, c) > 0.3 for c in region),
                       "the region of %s lit" % (region,))
    others = [c for c in lay.cells() if c not in region and lit_share(before, shot, lay, c) > 0.05]
    check(not others, "cells outside the region are lit: %s" % others)
    band = above(lay, cell)  # 70 x 12 samples
    t.wait_shot(lambda s: labelled(before, s, band, 200), "the label above the pointer's cell")
    t.check_idle("a board at rest under the pointer")

    if alone:  # a piece with no neighbour of its colour takes no click: nothing is lit
        t.xdo("mousemove", *map(int, lay.centre(*alone)))
        t.wait_shot(lambda s: all(lit_share(before, s, lay, c) < 0.05 for c in lay.cells()), "no cell lit")

    gx, gy = t.geometry(t.game)
    t.xdo("mousemove", gx + 20, gy + WIN_H // 2)  # in the window, left of the board
    t.wait_shot(lambda s: all(lit_share(before, s, lay, c) < 0.05 for c in lay.cells()) and
                changed(before, s, band) == 0, "the light and the label gone")
    check(lay.colours(t.shot()) == colours, "the board changed under the preview")
    check("processing event 2" not in t.stdout()[out:], "a preview removed pieces:\n" + t.stdout()[out:])

    # Back over the region and out of the window: the light goes with the pointer.
    t.xdo("mousemove", *map(int, lay.centre(*cell)))
    t.wait_shot(lambda s: all(lit_share(before, s, lay, c) > 0.3 for c in region), "the region lit again")
    t.xdo("mousemove", gx + WIN_W + 40, gy + 40)
    t.wait_shot(lambda s: all(lit_share(before, s, lay, c) < 0.05 for c in lay.cells()), "no light off the window")


def test_no_move(t):
    """Vexamor on two pieces of one colour, its end test taken out so the game goes on over an empty board:
    the hint says plainly that no move is left, over the board, until the next key."""
    vexamor = t.rules()["Vexamor"]
    events = [dict(e, ActionList=[a for a in e.get("ActionList", []) if a["ActionType"] != 21])
              for e in vexamor["SupportedEvents"]]
    t.relaunch_with_rules({"Bare": dict(vexamor, GameName="Bare", BoardWidth=2, BoardHeight=1, NumColors=1,
                                        SupportedEvents=events)})
    lay = t.start(1, 2, 1)
    t.click(*lay.centre(0, 0))
    removes(t, lay, 2, lambda: key(t, "space"))
    gx, gy = t.geometry(t.game)
    middle = (gx + WIN_W / 2 - 60, gy + WIN_H / 2 - 8, gx + WIN_W / 2 + 60, gy + WIN_H / 2 + 8)
    empty = t.shot()
    key(t, "h")
    t.wait_for(lambda: "tolvar: hint: No move left" in t.stdout(t.err_path), 10, "the hint to find no move")
    t.wait_shot(lambda s: labelled(empty, s, middle, 120), "No move left over the board")
    key(t, "x")
    t.wait_shot(lambda s: changed(empty, s, middle) == 0, "the line gone with the next key")


if __name__ == "__main__":
    run_test_script({"hover": test_hover, "no_move": test_no_move})
