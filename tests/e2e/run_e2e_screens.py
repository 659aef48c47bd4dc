#!/usr/bin/env python3
"""Every window on a small screen, and full screen under a window manager, played under an Xvfb of its own
of 1024 x 600, with openbox managing the windows or without a manager.
run_e2e_screens.py --program build/bin/tolvar --test small|small_managed|fullscreen_managed"""

import os
import re
import subprocess
import sys
import time

sys.path.insert(0, os.path.dirname(os.path.abspath(__file__)))
import tolvar_driver  # noqa: E402
from tolvar_driver import (FRAME_H, ITEM_SPACING_Y, MAIN_PAD_X, MAIN_PAD_Y, MENU_BAR_H, Tolvar,  # noqa: E402
                           check, run_test_script)

SMALL_W, SMALL_H = 1024, 600


class SmallScreen(Tolvar):
    """The program on a 1024 x 600 screen, under openbox when managed. Windows are found by their names,
    whatever size the screen gave them; under a manager they are children of its frames."""
    managed = False

    def launch(self):
        if self.managed and not getattr(self, "manager", None):
            self.manager = subprocess.Popen(["openbox", "--sm-disable"], env=self.env, stdout=subprocess.DEVNULL,
                                            stderr=subprocess.DEVNULL)
            deadline = time.monotonic() + 20
            while "_NET_SUPPORTING_WM_CHECK(WINDOW)" not in self.xprop("-root"):  # until it manages the screen
                check(self.manager.poll() is None and time.monotonic() < deadline, "openbox does not start")
                time.sleep(0.05)
        self.runs, self.over = self.runs + 1, False
        self.out_path, self.err_path = (os.path.join(self.work, "%s-%d.txt" % (s, self.runs)) for s in ("out", "err"))
        with open(self.out_path, "wb") as out, open(self.err_path, "wb") as err:
            self.proc = subprocess.Popen([self.program], env=self.env, cwd=self.work, stdout=out, stderr=err)
        self.main = self.wait_for(lambda: self.named("Tolvar", True), 60, "the main window")
        self.game = self.wait_for(lambda: self.named("Tolvar", False), 60, "the game window")

    def close(self):
        if getattr(self, "manager", None):
            self.manager.terminate()
            self.manager.wait(timeout=10)
        super().close()

    def windows(self):  # every window with a name, at any depth: (id, name, width, height)
        return [(m[1], m[2][1:-1], int(m[3]), int(m[4])) for m in re.finditer(
            r'(0x[0-9a-f]+) ("[^"\n]*").*?\s(\d+)x(\d+)\+', self.xwininfo("-root", "-tree"))]

    def named(self, name, mapped):
        return next((wid for wid, n, w, h in self.windows() if n == name and w > 1 and self.mapped(wid) == mapped),
                    None)

    def xprop(self, *args):
        return subprocess.run(["xprop", "-display", self.display] + list(args), stdout=subprocess.PIPE,
                              stderr=subprocess.DEVNULL, timeout=30).stdout.decode("utf-8", "replace")

    def rect(self, wid):  # the window's content: x, y, width, height on the screen
        info = self.xwininfo("-id", wid)
        return tuple(int(re.search(r"%s:\s+(-?\d+)" % k, info)[1])
                     for k in ("Absolute upper-left X", "Absolute upper-left Y", "Width", "Height"))

    def frame(self, wid):  # the manager's decorations round it: left, right, top, bottom
        found = re.search(r"_NET_FRAME_EXTENTS\(CARDINAL\) = (\d+), (\d+), (\d+), (\d+)", self.xprop("-id", wid))
        return tuple(int(n) for n in found.groups()) if found else (0, 0, 0, 0)

    def on_screen(self, wid):  # None, or what lies off the screen
        x, y, w, h = self.rect(wid)
        left, right, top, bottom = self.frame(wid)
        if self.managed and (left, right, top, bottom) == (0, 0, 0, 0):
            return "no frame yet"
        box = (x - left, y - top, x + w + right, y + h + bottom)
        inside = box[0] >= 0 and box[1] >= 0 and box[2] <= SMALL_W and box[3] <= SMALL_H
        return None if inside else "its frame spans %s on a %dx%d screen" % (box, SMALL_W, SMALL_H)

    def fullscreen(self, wid):
        return "_NET_WM_STATE_FULLSCREEN" in self.xprop("-id", wid, "_NET_WM_STATE")

    def focused(self):
        out = subprocess.run(["xdotool", "getwindowfocus"], env=self.env, stdout=subprocess.PIPE, timeout=20)
        return int(out.stdout.decode().strip() or "0")

    def start_first_game(self):  # Vexamor chosen, Start at the bottom right of the main window as it is now
        self.choose_game(1)
        self.wait_for(lambda: self.named("Vexamor - Tolvar", True), 10, "the main window named after the game")
        x, y, w, h = self.rect(self.main)
        self.click(x + w - MAIN_PAD_X - 60, y + h - MAIN_PAD_Y - FRAME_H / 2)
        self.wait_for(lambda: self.mapped(self.game), 10, "the game window to show")

    def combo_centre(self):  # the game pop-up, across the main window as wide as it is now
        mx, my, w, h = self.rect(self.main)
        return mx + w / 2 + 40, my + MENU_BAR_H + MAIN_PAD_Y + 2 + ITEM_SPACING_Y + FRAME_H / 2


def every_window_on_screen(t):
    """Main, game and help windows, each inside the screen with its frame; the Start button reached on the
    main window; help closed with Escape hands the keyboard back to the game window."""
    t.wait_right(lambda: t.on_screen(t.main), lambda problem: problem and "the main window: " + problem)
    t.start_first_game()
    t.wait_right(lambda: t.on_screen(t.game), lambda problem: problem and "the game window: " + problem)
    t.xdo("windowfocus", "--sync", t.game, "key", "F1")
    helpw = t.wait_for(lambda: t.named("Vexamor - Tolvar Help", True), 10, "the help window named after the game")
    t.wait_right(lambda: t.on_screen(helpw), lambda problem: problem and "the help window: " + problem)
    t.xdo("windowfocus", "--sync", helpw, "key", "Escape")
    t.wait_for(lambda: not t.mapped(helpw), 10, "the help to close")
    t.wait_for(lambda: t.focused() == int(t.game, 16), 10, "the keyboard back in the game window")


def test_small(t):
    every_window_on_screen(t)


def test_small_managed(t):
    every_window_on_screen(t)


def test_fullscreen_managed(t):
    """F11 asks openbox for its full-screen state and the window covers the screen; F11 again leaves it, and
    the window is back where it was, as large as it was."""
    t.start_first_game()
    t.wait_right(lambda: t.on_screen(t.game), lambda problem: problem and "the game window: " + problem)
    before = t.rect(t.game)
    t.xdo("windowfocus", "--sync", t.game, "key", "F11")
    t.wait_for(lambda: t.fullscreen(t.game), 10, "the manager's full-screen state")
    t.wait_for(lambda: t.rect(t.game) == (0, 0, SMALL_W, SMALL_H), 10, "the window over the whole screen")
    t.xdo("windowfocus", "--sync", t.game, "key", "F11")
    t.wait_for(lambda: not t.fullscreen(t.game), 10, "the full-screen state left")
    t.wait_for(lambda: t.rect(t.game) == before, 10, "the window back as it was, %s" % (before,))


def small_screen(program, name):  # the driver's server and screenshots at 1024 x 600
    SmallScreen.managed = name.endswith("_managed")
    tolvar_driver.SCREEN_W, tolvar_driver.SCREEN_H = SMALL_W, SMALL_H
    return SmallScreen(program, "screens-" + name)


def main():
    run_test_script({"small": test_small, "small_managed": test_small_managed,
                     "fullscreen_managed": test_fullscreen_managed}, small_screen)


if __name__ == "__main__":
    main()
