#!/usr/bin/env python3
"""The main window in the player's language: started under de_DE.UTF-8 it draws its Start button as "Starten",
wider than "Start" in the C locale, the same button in the same place; its help window is named "Tolvar-Hilfe".
run_e2e_languages.py --program build/bin/tolvar --test german"""

import os
import sys

sys.path.insert(0, os.path.dirname(os.path.abspath(__file__)))
from tolvar_driver import FRAME_H, MAIN_H, MAIN_PAD_X, MAIN_PAD_Y, MAIN_W, Tolvar, check, run_test_script  # noqa

BUTTON_W = 120  # the main window's buttons, at a display scale of 1


def start_ink(t):
    """The horizontal extent of the Start button's dark text, found once the button is drawn."""
    mx, my = t.geometry(t.main)
    right, bottom = mx + MAIN_W - MAIN_PAD_X, my + MAIN_H - MAIN_PAD_Y
    box = (right - BUTTON_W + 2, bottom - FRAME_H + 3, right - 2, bottom - 3)

    def columns(shot):
        return [x for x in range(box[0], box[2])
                if any(max(shot.pixel(x, y)) < 90 for y in range(box[1], box[3]))]
    ink = columns(t.wait_shot(lambda s: len(columns(s)) > 10, "the Start button's text"))
    return ink[-1] - ink[0] + 1


def test_german(t):
    english = start_ink(t)
    t.quit()
    t.env["LC_ALL"] = "de_DE.UTF-8"
    t.launch()
    german = start_ink(t)
    # "Starten" has two letters more than "Start", in the same font: a fifth wider at the least.
    check(german * 5 >= english * 6, "the Start button's text is %d pixels wide under de_DE.UTF-8 and %d under C: "
          "not the German \"Starten\" (is the locale de_DE.UTF-8 made? scripts/setup-deps makes it)"
          % (german, english))
    t.xdo("windowfocus", "--sync", t.main, "key", "F1")
    t.help_window("Tolvar-Hilfe")


if __name__ == "__main__":
    run_test_script({"german": test_german})
