#!/usr/bin/env python3
"""Remakes the pictures of the game window's texts in docs/: the labelled score at 800 x 600, in full screen
on a 3840 x 2160 screen (kept at half size), and the score screen, taken from the real program under Xvfb.

    text_screenshots.py --program build/bin/tolvar --out docs
"""

import argparse
import os
import subprocess
import sys
import time

sys.path.insert(0, os.path.join(os.path.dirname(os.path.abspath(__file__)), "..", "..", "tests", "e2e"))
import tolvar_driver as driver  # noqa: E402
from run_e2e_desktop import VEXAMOR, game_size, key  # noqa: E402

sys.path.insert(0, os.path.join(os.path.dirname(os.path.abspath(__file__)), ".."))
from tool_version import add_version_option  # noqa: E402

FULL_W, FULL_H = 3840, 2160


def save(t, path, x, y, w, h, resize=None):
    """Writes the rectangle of the screen to path, made resize ("50%") smaller if given."""
    shot = t.shot()
    args = ["convert", "-size", "%dx%d" % (driver.SCREEN_W, driver.SCREEN_H), "-depth", "8", "bgra:-", "-alpha",
            "off", "-crop", "%dx%d+%d+%d" % (w, h, x, y), "+repage"]
    subprocess.run(args + (["-resize", resize] if resize else []) + [path], input=shot.raw, check=True)
    print("wrote", path)


def resting(t, pause=0.5):
    """Once the screen stops changing (a picture for the docs, not a test)."""
    last = t.shot().raw
    while True:
        time.sleep(pause)
        now = t.shot().raw
        if now == last:
            return
        last = now


def score_at_800x600(t, out):
    lay = t.start(*VEXAMOR)
    driver.select_region(t, lay)  # a region removed, for a score
    key(t, "space")
    resting(t)
    gx, gy = t.geometry(t.game)
    t.xdo("windowsize", "--sync", t.game, 800, 600)
    t.wait_for(lambda: game_size(t) == (800, 600), 10, "the smaller window")
    resting(t)
    save(t, os.path.join(out, "score-800x600.png"), gx, gy, 800, 600)


def score_screen(t, out):
    t.relaunch_with_one_move_game()
    lay = t.start(1, 2, 1)
    gx, gy = t.geometry(t.game)
    t.click(*lay.centre(0, 0))
    time.sleep(0.3)
    key(t, "space")
    t.dismiss_alert()  # no more moves
    t.wait_for(lambda: os.path.exists(os.path.join(t.folder, "BestScores.dict")), 10, "the best scores")
    t.dismiss_alert()  # one of the best scores
    time.sleep(1.5)  # the pieces well on their way out
    save(t, os.path.join(out, "score-screen.png"), gx, gy, driver.WIN_W, driver.WIN_H)


def score_in_full_screen(t, out):
    t.start(*VEXAMOR)
    key(t, "F11")
    t.wait_for(lambda: game_size(t) == (FULL_W, FULL_H), 10, "the full screen")
    resting(t)
    save(t, os.path.join(out, "score-3840x2160-fullscreen.png"), 0, 0, FULL_W, FULL_H, "50%")


def run(program, name, take, out):
    t = driver.Tolvar(program, name)
    try:
        take(t, out)
    finally:
        t.close()


def main():
    parser = argparse.ArgumentParser()
    parser.add_argument("--program", required=True)
    parser.add_argument("--out", required=True)
    add_version_option(parser)
    args = parser.parse_args()
    program, out = os.path.abspath(args.program), os.path.abspath(args.out)
    for name, take in (("text-800x600", score_at_800x600), ("text-scores", score_screen)):
        run(program, name, take, out)
    # A 4K screen of its own; the main window keeps the size the driver knows it by.
    driver.SCREEN_W, driver.SCREEN_H = FULL_W, FULL_H
    os.environ["TOLVAR_DISPLAY_SCALE"] = "1"
    run(program, "text-4k", score_in_full_screen, out)
    return 0


if __name__ == "__main__":
    sys.exit(main())
