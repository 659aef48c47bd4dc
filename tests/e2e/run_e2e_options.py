#!/usr/bin/env python3
"""The board size and colours chosen in the main window reach the board: Vexamor chosen 6 x 5 in 3 colours is
dealt so, the choice is remembered for the next run, Default gives the rules' board back, and the rules file
stays as it was.
run_e2e_options.py --program build/bin/tolvar --test sizes"""

import os
import plistlib
import sys

sys.path.insert(0, os.path.dirname(os.path.abspath(__file__)))
from tolvar_driver import (COLOURS, FONT_PX, FRAME_H, ITEM_SPACING_Y, MAIN_H, MAIN_PAD_X, MAIN_PAD_Y,  # noqa: E402
                           MAIN_W, Layout, check, classify, full, key, run_test_script)

OPTIONS_X = 80 + 12  # the width's number, right of the labels' column (as the game pop-up)
CHOSEN = (6, 5, 3)   # columns, rows, colours


def options_row_y(t, continue_line=False):  # under the description, above the buttons' row and its 8-pixel gap
    _mx, my = t.geometry(t.main)                # and the line naming the game Continue goes on with, when shown
    line = FONT_PX + ITEM_SPACING_Y if continue_line else 0
    return my + MAIN_H - MAIN_PAD_Y - 2 * FRAME_H - ITEM_SPACING_Y - 8 - line + FRAME_H / 2


def choose(t, numbers):  # types into the width, then Tab to the height and the colours; Return ends the typing
    mx, _my = t.geometry(t.main)
    t.click(mx + OPTIONS_X, options_row_y(t))
    keys = []
    for i, n in enumerate(numbers):
        keys += (["Tab"] if i else []) + ["ctrl+a"] + list(str(n))
    t.xdo("windowfocus", "--sync", t.main, "key", "--delay", 60, *keys, "Return")


def settings(t):
    path = os.path.join(t.folder, "Settings.dict")
    if not os.path.exists(path):
        return {}
    with open(path, "rb") as f:
        return plistlib.load(f).get("Games", {})


def colour_near(shot, sx, sy):  # the piece colour most pixels round a screen point have, or None
    votes = [classify(shot.pixel(px, py)) for px in range(int(sx) - 6, int(sx) + 6, 2)
             for py in range(int(sy) - 6, int(sy) + 6, 2)]
    best = max(COLOURS, key=votes.count)
    return best if votes.count(best) * 2 >= len(votes) else None


def dealt(t, columns, rows, colours):  # waits for a board of that size, each piece of the first colours
    lay = Layout(columns, rows, t.geometry(t.game))

    def whole(shot):  # each cell one piece: the same colour at its centre and near its four sides
        cells = lay.colours(shot)
        return full(cells) and all(
            colour_near(shot, *lay.to_screen(X + W * fx, Y + H * fy)) == cells[x][y]
            for x, y in lay.cells() for X, Y, W, H in [lay.cell_rect(x, y)]
            for fx, fy in ((0.2, 0.5), (0.8, 0.5), (0.5, 0.2), (0.5, 0.8)))

    shot = t.wait_shot(whole, "a %d x %d board, one piece in each cell" % (columns, rows))
    seen = {c for column in lay.colours(shot) for c in column}
    check(seen <= set(COLOURS[:colours]), "only the first %d colours dealt: %s" % (colours, seen))


def test_sizes(t):
    rules_before = open(os.path.join(t.folder, "RulesDict.dict"), "rb").read()
    t.choose_game(1)  # Vexamor: 8 x 8 in 4 colours by its rules
    choose(t, CHOSEN)
    t.wait_for(lambda: settings(t).get("Vexamor") == dict(zip(("BoardWidth", "BoardHeight", "NumColors"), CHOSEN)),
               10, "the choice remembered in the settings file")
    t.press_start()
    dealt(t, *CHOSEN)
    check(open(os.path.join(t.folder, "RulesDict.dict"), "rb").read() == rules_before, "the rules file unchanged")
    key(t, "ctrl+q")  # from the game window
    t.ended()
    t.launch()  # the next run remembers the choice
    t.choose_game(1)
    t.press_start()
    dealt(t, *CHOSEN)
    t.back_to_main("ctrl+w")  # Default, at the row's right end, gives the rules' board back
    mx, _my = t.geometry(t.main)
    t.click(mx + MAIN_W - MAIN_PAD_X - 40, options_row_y(t, continue_line=True))
    t.wait_for(lambda: "Vexamor" not in settings(t), 10, "the choice forgotten")
    t.press_start()
    dealt(t, 8, 8, 4)


if __name__ == "__main__":
    run_test_script({"sizes": test_sizes})
