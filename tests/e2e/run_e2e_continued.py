#!/usr/bin/env python3
"""A saved game continued in a new run, with no game chosen: the main window names it beside Continue and
after, and F1 gives its help.
run_e2e_continued.py --program build/bin/tolvar --test help"""

import os
import sys

sys.path.insert(0, os.path.dirname(os.path.abspath(__file__)))
from tolvar_driver import HELP_H, HELP_W, check, key, run_test_script  # noqa: E402


def test_help(t):
    t.start(1, 8, 8)  # Vexamor
    key(t, "ctrl+q")
    t.ended()
    t.launch()  # "None" chosen: Continue goes on with the game saved last
    check(t.find_window(640, 540, True), "the main window")
    t.press_continue()
    t.wait_for(lambda: t.mapped(t.game), 10, "the saved game to show")
    t.wait_for(lambda: ("Vexamor - Tolvar" in t.xwininfo("-id", t.main)), 10, "the main window naming the game")
    key(t, "F1")
    t.wait_for(lambda: next((name for wid, name, w, h in t.windows() if (w, h) == (HELP_W, HELP_H)
                             and t.mapped(wid)), None) == "Vexamor - Tolvar Help", 10, "the help of the game played")


if __name__ == "__main__":
    run_test_script({"help": test_help})
