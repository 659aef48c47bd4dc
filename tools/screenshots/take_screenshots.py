#!/usr/bin/env python3
"""Remakes the pictures of the desktop game in docs/: the main window, each built-in game, the
"Actions" menu and the score screen, taken from the real program under Xvfb.

    take_screenshots.py --program build/bin/tolvar --out docs
"""

import argparse
import os
import plistlib
import subprocess
import sys
import time

# The program is driven by the end-to-end tests' driver.
sys.path.insert(0, os.path.join(os.path.dirname(os.path.abspath(__file__)), "..", "..", "tests", "e2e"))
from tolvar_driver import MAIN_H, MAIN_W, MENU_BAR_H, WIN_H, WIN_W, Layout, Tolvar  # noqa: E402

sys.path.insert(0, os.path.join(os.path.dirname(os.path.abspath(__file__)), ".."))
from tool_version import add_version_option  # noqa: E402


def take_pictures(data_folder_name, take):
    """Reads --program and --out, starts the program with a data folder of its own and hands it, with
    the folder the pictures go to, to take; the program is closed whatever happens."""
    parser = argparse.ArgumentParser()
    parser.add_argument("--program", required=True)
    parser.add_argument("--out", required=True)
    add_version_option(parser)
    args = parser.parse_args()
    t = Tolvar(os.path.abspath(args.program), data_folder_name)
    try:
        take(t, os.path.abspath(args.out))
    finally:
        t.close()


def save(t, path, x, y, w, h, shot=None):
    """Writes the rectangle of the screen (or of a shot taken earlier) to path."""
    shot = t.shot() if shot is None else shot
    subprocess.run(["convert", "-size", "1280x1024", "-depth", "8", "bgra:-", "-alpha", "off", "-crop",
                    "%dx%d+%d+%d" % (w, h, x, y), "+repage", path], input=shot.raw, check=True)
    print("wrote", path)


def landed(t, pause=0.4):
    """The screen once it has stopped changing: the falling pieces are down (a picture for the docs, not a
    test, so it may look for a still screen)."""
    last = t.shot().raw
    while True:
        time.sleep(pause)
        now = t.shot().raw
        if now == last:
            return now
        last = now


def save_fall(t, path, gx, gy):
    """Removes the selected region and keeps a picture taken while the pieces above it fall: the
    screen as it was neither before the removal nor once the pieces have landed."""
    before = t.shot().raw
    t.xdo("key", "space")
    shots, deadline = [], time.monotonic() + 2.0
    while time.monotonic() < deadline:
        shots.append(t.shot())
    after = landed(t)
    between = [s for s in shots if s.raw not in (before, after)]
    if between:
        save(t, path, gx, gy, WIN_W, WIN_H, between[len(between) // 2])
    else:
        print("no picture of a fall was caught; %s not written" % path)


def take_game_pictures(t, out):
    """The main window, each built-in game with its fall, the "Actions" menu and the score screen."""
    t.choose_game(1)
    mx, my = t.geometry(t.main)
    save(t, os.path.join(out, "main-window.png"), mx, my, MAIN_W, MAIN_H)
    for index, name in ((1, "vexamor"), (2, "trindle"), (3, "glimmet")):
        if index != 1:
            t.choose_game(index)
        t.press_start()
        time.sleep(1.0)
        gx, gy = t.geometry(t.game)
        if name == "vexamor":
            # A region selected, to show its outline.
            t.click(*Layout(8, 8, (gx, gy)).centre(3, 3))
            time.sleep(0.5)
        save(t, os.path.join(out, "window-%s.png" % name), gx, gy, WIN_W, WIN_H)
        if name == "vexamor":
            save_fall(t, os.path.join(out, "window-falling.png"), gx, gy)
        t.xdo("key", "ctrl+w")
        t.wait_for(lambda: t.mapped(t.main), 10, "the main window")
        time.sleep(0.3)
    # The "Actions" menu of the main window, bound by the first game.
    t.click(mx + 95, my + MENU_BAR_H / 2)
    time.sleep(0.5)
    save(t, os.path.join(out, "window-main-actions.png"), mx, my, MAIN_W, MAIN_H)
    t.quit()

    # The score screen, after a game that ends in one move.
    rules_path = os.path.join(t.folder, "RulesDict.dict")
    with open(rules_path, "rb") as f:
        rules = plistlib.load(f)
    rules["Vexamor"] = dict(rules["Vexamor"], BoardWidth=2, BoardHeight=1, NumColors=1)
    with open(rules_path, "wb") as f:
        plistlib.dump(rules, f, sort_keys=False)
    t.launch()
    t.choose_game(1)
    t.press_start()
    time.sleep(0.5)
    gx, gy = t.geometry(t.game)
    t.click(*Layout(2, 1, (gx, gy)).centre(0, 0))
    time.sleep(0.3)
    t.xdo("key", "space")
    deadline = time.monotonic() + 10
    while time.monotonic() < deadline and not os.path.exists(os.path.join(t.folder, "BestScores.dict")):
        if t.alerts():
            t.dismiss_alert()
        time.sleep(0.1)
    time.sleep(1.0)
    save(t, os.path.join(out, "window-scores.png"), gx, gy, WIN_W, WIN_H)


def main():
    take_pictures("pictures", take_game_pictures)
    return 0


if __name__ == "__main__":
    sys.exit(main())
