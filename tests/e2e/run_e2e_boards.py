#!/usr/bin/env python3
"""Board numbers in the window: Game > Play Board Number... in the main window, with a typed number, deals the
board that `tolvar --game NAME --board N` deals, whatever the run's seed; a text that is no number is refused
with a line in the dialog, which stays for another try.
run_e2e_boards.py --program build/bin/tolvar --test play_number"""

import os
import sys

sys.path.insert(0, os.path.dirname(os.path.abspath(__file__)))
from tolvar_driver import MAIN_W, MENU_BAR_H, Layout, Tolvar, check, full, ink_runs, key, run_test_script  # noqa: E402

BOARD = "123456"


def board_colours(t):
    lay = Layout(8, 8, t.geometry(t.game))
    return lay.colours(t.wait_shot(lambda s: full(lay.colours(s)), "a piece in every cell"))


def choose_play_board_number(t):
    """Game > Play Board Number...: the menu bar's title before Help, then the last item that can be chosen
    (with no game, Copy Board Number below it is grey, as are Undo, Redo and Hint)."""
    mx, my = t.geometry(t.main)

    def dark(p):
        return max(p) < 90

    def titles(s):
        return ink_runs([x for x in range(mx, mx + MAIN_W) if any(dark(s.pixel(x, y))
                                                                   for y in range(my + 2, my + MENU_BAR_H))], 10)
    game = titles(t.wait_shot(lambda s: len(titles(s)) >= 3, "the menu bar: Tolvar, Game and Help"))[-2]
    t.click((game[0] + game[1]) / 2, my + MENU_BAR_H / 2)

    def items(s):
        return ink_runs([y for y in range(my + MENU_BAR_H + 4, my + 420)
                         if any(dark(s.pixel(x, y)) for x in range(game[0], game[0] + 150))], 4)
    item = items(t.wait_shot(lambda s: len(items(s)) > 1, "the Game menu's items"))[-1]
    t.click(game[0] + 40, (item[0] + item[1]) / 2)


def test_play_number(t):
    # A run started on the board from the command line, then another run, seeded otherwise, that asks for it.
    t.wait_for(lambda: t.mapped(t.game), 20, "the game started from the command line")
    from_command_line = board_colours(t)
    key(t, "ctrl+q")
    t.ended()
    t.args = []
    t.env["TOLVAR_SEED"] = "99"
    t.launch()
    t.choose_game(1)  # Vexamor
    mx, my = t.geometry(t.main)

    def refusal(s):  # the dialog's line in dark red, in the middle of the main window
        return s.count(mx + 40, my + 150, mx + MAIN_W - 40, my + 400, lambda p: p[0] > 150 and p[1] < 40 and p[2] < 40)
    before = refusal(t.shot())
    choose_play_board_number(t)
    t.xdo("windowfocus", "--sync", t.main, "type", "--delay", 60, "12x")
    t.xdo("windowfocus", "--sync", t.main, "key", "Return")
    t.wait_shot(lambda s: refusal(s) > before + 100, "the line refusing \"12x\"")
    check(not t.mapped(t.game), "no game started on a text that is no number")
    t.xdo("windowfocus", "--sync", t.main, "key", "--delay", 60, "BackSpace", "BackSpace", "BackSpace")
    t.xdo("windowfocus", "--sync", t.main, "type", "--delay", 60, BOARD)
    t.xdo("windowfocus", "--sync", t.main, "key", "Return")
    t.wait_for(lambda: t.mapped(t.game), 10, "the game window to show")
    asked = board_colours(t)
    check(asked == from_command_line, "board %s from the menu: %s, from the command line: %s"
          % (BOARD, asked, from_command_line))


if __name__ == "__main__":
    run_test_script({"play_number": test_play_number},
                    make=lambda program, name: Tolvar(program, name, args=["--game", "Vexamor", "--board", BOARD]))
