#!/usr/bin/env python3
"""Remakes the pictures of docs/desktop.md that show the desktop around the game: the preview under the pointer,
the help window, a hint, the keyboard cursor on a selection, and the game window made smaller, taken from the real
program under Xvfb.

    desktop_screenshots.py --program build/bin/tolvar --out docs
"""

import os
import sys
import time

# The program is driven by the end-to-end tests' driver and their keyboard helpers.
sys.path.insert(0, os.path.join(os.path.dirname(os.path.abspath(__file__)), "..", "..", "tests", "e2e"))
from run_e2e_desktop import VEXAMOR, ask_hint, cursor_to, game_size, key  # noqa: E402
from run_e2e_preview import lit_share, region_at  # noqa: E402
from take_screenshots import save, take_pictures  # noqa: E402
from tolvar_driver import HELP_H, HELP_W, WIN_H, WIN_W, near  # noqa: E402


def take_desktop_pictures(t, out):
    """The preview of a region under the pointer, the hint, the keyboard cursor, the help window and the game
    window made smaller."""
    lay = t.start(*VEXAMOR)
    gx, gy = t.geometry(t.game)
    before = t.shot()
    colours = lay.colours(before)
    region = max((region_at(colours, lay, c) for c in lay.cells() if c[1] < lay.board_h - 1), key=len)
    t.xdo("mousemove", *map(int, lay.centre(*min(region, key=lambda c: c[1]))))
    t.wait_shot(lambda s: all(lit_share(before, s, lay, c) > 0.3 for c in region), "the region lit")
    save(t, os.path.join(out, "hover-preview.png"), gx, gy, WIN_W, WIN_H)
    t.xdo("mousemove", gx + 20, gy + WIN_H // 2)  # off the board: the light goes
    t.wait_shot(lambda s: all(lit_share(before, s, lay, c) < 0.05 for c in lay.cells()), "the light gone")
    region = ask_hint(t, lay, 2)
    save(t, os.path.join(out, "window-hint.png"), gx, gy, WIN_W, WIN_H)
    cursor_to(t, lay, region[0])
    key(t, "Return")
    time.sleep(0.8)
    save(t, os.path.join(out, "window-cursor.png"), gx, gy, WIN_W, WIN_H)
    key(t, "F1")
    helpw = t.wait_for(lambda: next((wid for wid, _n, w, h in t.windows() if (w, h) == (HELP_W, HELP_H)
                                     and t.mapped(wid)), None), 10, "the help window")
    hx, hy = t.geometry(helpw)
    t.wait_shot(lambda s: near(s.pixel(hx + 4, hy + HELP_H - 4), (240, 240, 242), 12), "the help drawn")
    time.sleep(0.5)
    save(t, os.path.join(out, "window-help.png"), hx, hy, HELP_W, HELP_H)
    t.xdo("windowfocus", "--sync", helpw, "key", "Escape")
    t.wait_for(lambda: not t.mapped(helpw), 10, "the help to close")
    size = (900, 560)
    t.xdo("windowsize", "--sync", t.game, *size)
    t.wait_for(lambda: game_size(t) == size, 10, "the smaller window")
    time.sleep(1.5)
    save(t, os.path.join(out, "window-scaled.png"), gx, gy, *size)
    t.finish()


def main():
    take_pictures("desktop-pictures", take_desktop_pictures)


if __name__ == "__main__":
    main()
