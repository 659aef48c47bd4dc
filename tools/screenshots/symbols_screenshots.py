#!/usr/bin/env python3
"""Remakes the pictures of docs/desktop.md that show the best scores and the symbols on the pieces: the
best-score window, and the three built-in games side by side with symbols on, in colour and turned grey
(every colour must still be told apart), taken from the real program under Xvfb.

    symbols_screenshots.py --program build/bin/tolvar --out docs
"""

import os
import subprocess
import sys
import tempfile
import time

# The program is driven by the end-to-end tests' driver.
sys.path.insert(0, os.path.join(os.path.dirname(os.path.abspath(__file__)), "..", "..", "tests", "e2e"))
from run_e2e_scores import SCORES_H, SCORES_W, choose_from_main_menu, scores_window, write_scores  # noqa: E402
from take_screenshots import landed, save, take_pictures  # noqa: E402
from tolvar_driver import WIN_H, WIN_W  # noqa: E402

GAMES = ((1, "vexamor"), (2, "trindle"), (3, "glimmet"))


def take_symbol_pictures(t, out):
    write_scores(t, {"Vexamor": [412, 380, 251, 190], "Vexamor 12 \u00d7 10, 5 colours": [655, 610],
                     "Trindle": [96, 88, 41]})
    choose_from_main_menu(t)
    wid = scores_window(t)
    time.sleep(1.0)
    sx, sy = t.geometry(wid)
    save(t, os.path.join(out, "window-best-scores.png"), sx, sy, SCORES_W, SCORES_H)
    t.xdo("windowfocus", "--sync", wid, "key", "Escape")
    t.wait_for(lambda: not t.mapped(wid), 10, "the best scores to close")

    with tempfile.TemporaryDirectory() as work:
        shots = []
        for index, name in GAMES:
            t.choose_game(index)
            t.press_start()
            gx, gy = t.geometry(t.game)
            if index == 1:
                t.xdo("windowfocus", "--sync", t.game, "key", "ctrl+m")  # remembered for the other games
            landed(t)
            shots.append(os.path.join(work, name + ".png"))
            save(t, shots[-1], gx, gy, WIN_W, WIN_H)
            t.xdo("windowfocus", "--sync", t.game, "key", "ctrl+w")
            t.wait_for(lambda: t.mapped(t.main), 10, "the main window")
        colour, grey = os.path.join(out, "symbols-colour.png"), os.path.join(out, "symbols-grey.png")
        subprocess.run(["convert"] + shots + ["-resize", "50%", "+append", colour], check=True)
        subprocess.run(["convert", colour, "-colorspace", "Gray", grey], check=True)
        print("wrote", colour, "and", grey)
    t.quit()


def main():
    take_pictures("symbols-pictures", take_symbol_pictures)


if __name__ == "__main__":
    main()
