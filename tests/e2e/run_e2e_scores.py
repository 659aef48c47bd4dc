#!/usr/bin/env python3
"""The best scores at any time, played under its own Xvfb: the window opens from the main window's Game menu
and from the game window's right-click menu, lists the tables the file holds and reads the file again when it
changes while open; Escape closes it.
run_e2e_scores.py --program build/bin/tolvar --test menus"""

import datetime
import os
import plistlib
import sys

sys.path.insert(0, os.path.dirname(os.path.abspath(__file__)))
from run_e2e_desktop import VEXAMOR, popup_item  # noqa: E402
from tolvar_driver import MAIN_W, MENU_BAR_H, POPUP_ACTIONS, check, ink_runs, run_test_script  # noqa: E402

SCORES_W, SCORES_H = 600, 560
BEST_SCORES_ITEM = 4  # in the Game menu: New Game, Undo, Redo, Hint, Best Scores..., Symbols on Pieces


def write_scores(t, tables):  # {table: [score, ...]} as the game writes them, dated a minute apart
    start = datetime.datetime(2024, 3, 1, 12, 0)
    games = {name: [{"Score": s, "Date": start + datetime.timedelta(minutes=i)} for i, s in enumerate(scores)]
             for name, scores in tables.items()}
    path = os.path.join(t.folder, "BestScores.dict")
    with open(path + ".new", "wb") as f:
        plistlib.dump(games, f)
    os.replace(path + ".new", path)


def scores_window(t):
    return t.wait_for(lambda: t.find_window(SCORES_W, SCORES_H, True, "Best Scores - Tolvar"), 10,
                      "the best-score window")


def text_lines(t, wid):
    """The lines of text in the window (black, or blue for the newest), above its Close button."""
    wx, wy = t.geometry(wid)
    shot = t.shot()
    return ink_runs([y for y in range(wy, wy + SCORES_H - 60)
                     if any(min(shot.pixel(x, y)) < 120 for x in range(wx + 16, wx + 300, 2))], 3)


def choose_from_main_menu(t):
    """Game > Best Scores... in the main window: the menu bar's title before Help, then the item's line."""
    mx, my = t.geometry(t.main)

    def titles(s):  # the menu bar's titles that can be chosen (drawn dark)
        return ink_runs([x for x in range(mx, mx + MAIN_W) if any(max(s.pixel(x, y)) < 90
                                                                   for y in range(my + 2, my + MENU_BAR_H))], 10)
    game = titles(t.wait_shot(lambda s: len(titles(s)) >= 3, "the menu bar: Tolvar, Game and Help"))[-2]
    t.click((game[0] + game[1]) / 2, my + MENU_BAR_H / 2)

    def items(s):  # the menu's lines, grey or dark, on its white ground
        return ink_runs([y for y in range(my + MENU_BAR_H + 4, my + 260)
                         if any(max(s.pixel(x, y)) < 200 for x in range(game[0], game[0] + 120))], 4)
    lines = items(t.wait_shot(lambda s: len(items(s)) >= 6, "the Game menu's six items"))
    t.click(game[0] + 40, sum(lines[BEST_SCORES_ITEM]) / 2)


def test_menus(t):
    write_scores(t, {"Vexamor": [120, 80, 40]})
    choose_from_main_menu(t)
    wid = scores_window(t)
    one = t.wait_for(lambda: (lambda n: n if len(n) >= 5 else None)(text_lines(t, wid)), 10,
                     "a heading, the columns' names and three rows")
    # Another size's table and another game's come in while the window is open.
    write_scores(t, {"Vexamor": [120, 80, 40], "Vexamor 12 \u00d7 10, 5 colours": [300], "Trindle": [9, 7]})
    t.wait_for(lambda: len(text_lines(t, wid)) >= len(one) + 6, 10, "the tables written while the window is open")
    t.xdo("windowfocus", "--sync", wid, "key", "Escape")
    t.wait_for(lambda: not t.mapped(wid), 10, "Escape to close the window")

    lay = t.start(*VEXAMOR)
    popup_item(t, lay.centre(0, 0), POPUP_ACTIONS + BEST_SCORES_ITEM)
    wid = scores_window(t)
    t.wait_for(lambda: len(text_lines(t, wid)) >= len(one) + 6, 10, "the tables, from the game window")
    t.xdo("windowfocus", "--sync", wid, "key", "Escape")
    t.wait_for(lambda: not t.mapped(wid), 10, "Escape to close the window over the game")
    check(t.mapped(t.game), "the game window stays up")


if __name__ == "__main__":
    run_test_script({"menus": test_menus})
