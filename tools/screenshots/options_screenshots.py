#!/usr/bin/env python3
"""Remakes the pictures of the board choices in docs/: the main window with Vexamor chosen 12 x 10 in 5
colours, and the board it deals, taken from the real program under Xvfb.

    options_screenshots.py --program build/bin/tolvar --out docs
"""

import os
import sys

# The program is driven by the end-to-end tests' driver and the board-choices test's helpers.
sys.path.insert(0, os.path.join(os.path.dirname(os.path.abspath(__file__)), "..", "..", "tests", "e2e"))
from run_e2e_options import choose, settings  # noqa: E402
from take_screenshots import landed, save, take_pictures  # noqa: E402
from tolvar_driver import MAIN_H, MAIN_W, WIN_H, WIN_W  # noqa: E402

CHOSEN = (12, 10, 5)


def take_options_pictures(t, out):
    t.choose_game(1)  # Vexamor
    choose(t, CHOSEN)
    t.wait_for(lambda: settings(t).get("Vexamor", {}).get("NumColors") == CHOSEN[2], 10, "the choice remembered")
    mx, my = t.geometry(t.main)
    landed(t)
    save(t, os.path.join(out, "game-options.png"), mx, my, MAIN_W, MAIN_H)
    t.press_start()
    gx, gy = t.geometry(t.game)
    landed(t)
    save(t, os.path.join(out, "game-options-board.png"), gx, gy, WIN_W, WIN_H)


if __name__ == "__main__":
    take_pictures("options", take_options_pictures)
