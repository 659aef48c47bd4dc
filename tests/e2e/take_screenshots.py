#!/usr/bin/env python3
"""Remakes the pictures of the desktop game in docs/: the main window, each built-in game, the
"Actions" menu and the score screen, taken from the real program under Xvfb.

    take_screenshots.py --program build/bin/tolvar --out docs
"""

import argparse
import copy
import os
import plistlib
import subprocess
import sys
import time

sys.path.insert(0, os.path.dirname(os.path.abspath(__file__)))
from tolvar_driver import MAIN_H, MAIN_W, MENU_BAR_H, WIN_H, WIN_W, Layout, Tolvar  # noqa: E402


def save(t, path, x, y, w, h):
    raw = t.shot().raw
    subprocess.run(["convert", "-size", "1280x1024", "-depth", "8", "rgb:-", "-crop", "%dx%d+%d+%d" % (w, h, x, y),
                    "+repage", path], input=raw, check=True)
    print("wrote", path)


def main():
    parser = argparse.ArgumentParser()
    parser.add_argument("--program", required=True)
    parser.add_argument("--out", required=True)
    args = parser.parse_args()
    out = os.path.abspath(args.out)
    t = Tolvar(os.path.abspath(args.program), "pictures")
    try:
        t.choose_game(1)
        mx, my = t.main_origin()
        save(t, os.path.join(out, "main-window.png"), mx, my, MAIN_W, MAIN_H)
        for index, name in ((1, "vexamor"), (2, "trindle"), (3, "glimmet")):
            if index != 1:
                t.choose_game(index)
            t.press_start()
            t.wait_for(lambda: t.mapped(t.game), 10, "the game window")
            time.sleep(1.0)
            gx, gy = t.game_origin()
            if name == "vexamor":
                # A region selected, to show its outline.
                lay = Layout(8, 8)
                t.click(*lay.cell_center_screen((gx, gy), 3, 3))
                time.sleep(0.5)
            save(t, os.path.join(out, "window-%s.png" % name), gx, gy, WIN_W, WIN_H)
            t.key("ctrl+w")
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
        quick = copy.deepcopy(rules["Vexamor"])
        quick["BoardWidth"], quick["BoardHeight"], quick["NumColors"] = 2, 1, 1
        rules["Vexamor"] = quick
        with open(rules_path, "wb") as f:
            plistlib.dump(rules, f, sort_keys=False)
        t.launch()
        t.choose_game(1)
        t.press_start()
        t.wait_for(lambda: t.mapped(t.game), 10, "the game window")
        time.sleep(0.5)
        gx, gy = t.game_origin()
        lay = Layout(2, 1)
        t.click(*lay.cell_center_screen((gx, gy), 0, 0))
        time.sleep(0.3)
        t.key("space")
        t.dismiss_alerts(expect=1)
        deadline = time.monotonic() + 10
        while time.monotonic() < deadline and not os.path.exists(os.path.join(t.folder, "BestScores.dict")):
            if t.alert_windows():
                t.dismiss_alerts(expect=1)
            time.sleep(0.1)
        time.sleep(1.0)
        save(t, os.path.join(out, "window-scores.png"), gx, gy, WIN_W, WIN_H)
    finally:
        t.close()
    return 0


if __name__ == "__main__":
    sys.exit(main())
