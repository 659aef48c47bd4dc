#!/usr/bin/env python3
"""The desktop around the game, played under its own Xvfb: the keyboard, undo and redo, the game window resized
and full screen, and the pages of help.
run_e2e_desktop.py --program build/bin/tolvar --test keyboard|window|pages"""

import os
import shutil
import signal
import sys

sys.path.insert(0, os.path.dirname(os.path.abspath(__file__)))
from tolvar_driver import (HELP_H, HELP_W, MAIN_W, MENU_BAR_H, ink_runs, POPUP_ACTIONS, POPUP_H, POPUP_PAD, POPUP_ROW,  # noqa: E402
                           POPUP_W, SCREEN_H, SCREEN_W, SELECTED, Layout, check, full, key, removes, run_test_script,
                           select_region, touches)

HINT, CURSOR = (0, 229, 255), (255, 255, 255)  # the hint's outline round its cells, the cursor's inside its cell
VEXAMOR = (1, 8, 8)  # the game pop-up's index, board width and height


def sides(shot, lay, x, y, colour, inset):
    """How many sides of the square `inset` pixels inside cell (x, y) (negative: outside it) are drawn in a
    colour, along most of their length."""
    X, Y, W, H = lay.cell_rect(x, y)
    along = range(6, int(W) - 6, 3)
    lines = ([(X + i, Y + inset) for i in along], [(X + i, Y + H - inset) for i in along],
             [(X + inset, Y + i) for i in along], [(X + W - inset, Y + i) for i in along])
    return sum(sum(touches(shot, lay.to_screen(*p), colour) for p in line) > 0.7 * len(line) for line in lines)


def hint_cells(shot, lay, colour=HINT):  # the cells outlined all round in the colour
    return [c for c in lay.cells() if sides(shot, lay, *c, colour, -1) == 4]


def cursor_cell(shot, lay):
    found = [c for c in lay.cells() if sides(shot, lay, *c, CURSOR, 5) == 4]
    return found[0] if len(found) == 1 else None


def cursor_to(t, lay, target):
    """The arrows alone: shows the cursor when hidden, walks it to target and sees it there."""
    at = cursor_cell(t.shot(), lay)
    if at is None:
        key(t, "Up")
        at = t.wait_for(lambda: cursor_cell(t.shot(), lay), 10, "the keyboard cursor to show")
    dx, dy = target[0] - at[0], target[1] - at[1]
    steps = ["Right" if dx > 0 else "Left"] * abs(dx) + ["Up" if dy > 0 else "Down"] * abs(dy)
    if steps:
        key(t, *steps)
    t.wait_for(lambda: cursor_cell(t.shot(), lay) == tuple(target), 10, "the cursor on %s" % (target,))


def ask_hint(t, lay, size):
    key(t, "h")
    shot = t.wait_shot(lambda s: len(hint_cells(s, lay)) >= size, "a hint of %d cells or more" % size)
    return hint_cells(shot, lay)


def popup_item(t, at, row):
    """Chooses row `row` of the game window's right-click menu (the bound actions, then New Game, Undo, Redo,
    Hint)."""
    px, py = t.open_menu(at)
    y = py + POPUP_PAD + row * POPUP_ROW + (9 if row >= POPUP_ACTIONS else 0) + POPUP_ROW / 2
    t.click(px + 60, y)
    t.wait_for(lambda: not t.find_window(POPUP_W, POPUP_H, True), 10, "the menu to close")


def test_keyboard(t):
    """Vexamor from the keyboard: the hint shows a region, the arrows take the cursor there, Return selects it
    and the space bar removes it. Ctrl+Z and the menu's Undo put the selected region back, Ctrl+Shift+Z and
    the menu's Redo remove it again, printing the removal's lines again."""
    lay = t.start(*VEXAMOR)
    region = ask_hint(t, lay, 2)
    cursor_to(t, lay, region[0])
    key(t, "Return")
    shot = t.wait_shot(lambda s: all(lay.outline_pixels(s, *c) > 20 for c in region), "the hinted region selected")
    check(hint_cells(shot, lay) == [], "the hint stays after the next input")
    selected, centre = lay.colours(shot), lay.centre(*region[0])
    removes(t, lay, len(region), lambda: key(t, "space"))
    after, out = lay.colours(t.shot()), t.stdout()
    removal = out[out.rfind("processing event 2"):]

    def same_but_region(now):  # the selected pieces spin, so their colours are not compared
        return all(now[x][y] == selected[x][y] for x, y in lay.cells() if (x, y) not in region)

    undo_row, redo_row = POPUP_ACTIONS + 1, POPUP_ACTIONS + 2  # after New Game
    for undo, redo in ((lambda: key(t, "ctrl+z"), lambda: key(t, "ctrl+shift+z")),
                       (lambda: popup_item(t, centre, undo_row), lambda: popup_item(t, centre, redo_row))):
        undo()
        t.wait_for(lambda: same_but_region(lay.colours(t.shot())), 10, "the board before the removal")
        t.wait_shot(lambda s: len(hint_cells(s, lay, SELECTED)) == len(region), "the selection back")
        since = len(t.stdout())
        redo()
        t.wait_tick(since, "the redone removal")
        t.wait_right(lambda: lay.colours(t.shot()), lambda now: None if now == after else
                     "the redone removal ended differently: %s" % now)
        check(t.stdout().endswith(removal), "the redo printed other lines:\n" + t.stdout()[len(out):])


def game_size(t):
    return next((w, h) for wid, _n, w, h in t.windows() if wid == t.game)


def test_window(t):
    """The game window resized, then full screen with F11 and back: the picture scaled, and a click selects the
    piece under it."""
    t.start(*VEXAMOR)
    left = 64
    for size, resize in (((800, 800), lambda: t.xdo("windowsize", "--sync", t.game, 800, 800)),
                         ((SCREEN_W, SCREEN_H), lambda: key(t, "F11"))):
        resize()
        t.wait_for(lambda: game_size(t) == size, 10, "the window at %dx%d" % size)
        lay = Layout(8, 8, t.geometry(t.game), size)
        t.wait_shot(lambda s: sum(bool(c) for col in lay.colours(s) for c in col) == left,
                    "the board of %d pieces at %dx%d" % (left, *size))
        left = removes(t, lay, select_region(t, lay)[0], lambda: key(t, "space"), left)
    check(t.geometry(t.game) == (0, 0), "full screen from %s, not the top left corner" % (t.geometry(t.game),))
    key(t, "F11")
    t.wait_for(lambda: game_size(t) == (800, 800), 10, "the window as it was")


def choose_writing_games(t):
    """Help > Writing Games in the main window: the menu bar's last title, then the second line of its menu."""
    mx, my = t.geometry(t.main)

    def dark(p):
        return max(p) < 90

    def titles(s):  # the menu bar's titles that can be chosen (drawn dark)
        return ink_runs([x for x in range(mx, mx + MAIN_W) if any(dark(s.pixel(x, y))
                                                                   for y in range(my + 2, my + MENU_BAR_H))], 10)
    last = titles(t.wait_shot(lambda s: len(titles(s)) >= 3, "the menu bar: Tolvar, Game and Help"))[-1]
    t.click((last[0] + last[1]) / 2, my + MENU_BAR_H / 2)

    def items(s):  # the menu's lines of text under its title, then the description's first line
        return ink_runs([y for y in range(my + MENU_BAR_H + 4, my + 200)
                         if any(dark(s.pixel(x, y)) for x in range(last[0], last[0] + 180))], 4)
    second = items(t.wait_shot(lambda s: len(items(s)) >= 3, "the Help menu's three items"))[1]
    t.click(last[0] + 40, (second[0] + second[1]) / 2)


def test_pages(t):
    """F1 shows the game's help from the game window, once the unfinished game is saved, and from the main
    window. Help > Writing Games gives the rules author's page to xdg-open, which the game leaves open when it
    quits; when xdg-open fails or is missing, a window tells where the page is."""
    lay = t.start(*VEXAMOR)
    saved = os.path.join(t.folder, "SavedGame.dict")
    key(t, "F1")
    helpw = t.help_window("Vexamor - Tolvar Help")  # named after the game it helps with
    check(os.path.exists(saved), "the unfinished game is not saved when help shows")
    hx, hy = t.geometry(helpw)
    t.wait_shot(lambda s: s.count(hx, hy, hx + HELP_W, hy + HELP_H, lambda p: max(p) < 90, 2) > 2000, "help's text")
    t.close_help(helpw)
    t.wait_shot(lambda s: full(lay.colours(s)), "the board whole again")
    t.back_to_main("ctrl+w")
    t.xdo("windowfocus", "--sync", t.main, "key", "F1")
    t.wait_for(lambda: t.mapped(helpw), 10, "the help from the main window")

    page = os.path.realpath(os.path.join(os.path.dirname(os.path.abspath(__file__)), "..", "..", "docs",
                                         "writing-games.md"))
    viewer, alone = os.path.join(t.work, "viewer"), os.path.join(t.work, "no-viewer")
    record, status, staying = (os.path.join(t.work, n) for n in ("opened.txt", "viewer-status.txt", "viewer-pid.txt"))
    os.makedirs(viewer)
    os.makedirs(alone)
    # The viewer records what it is given and ends with the status asked, or stays open ("stay").
    with open(os.path.join(viewer, "xdg-open"), "w") as f:
        f.write('#!/bin/sh\nprintf "%%s\\n" "$1" >> "%s"\nread s < "%s"\n'
                'if [ "$s" = stay ]; then echo $$ > "%s"; exec sleep 600; fi\nexit "$s"\n' % (record, status, staying))
    os.chmod(os.path.join(viewer, "xdg-open"), 0o755)
    for tool in ("xdotool", "xwininfo"):  # the test's own tools, and no xdg-open
        os.symlink(shutil.which(tool), os.path.join(alone, tool))

    def pages():
        return open(record).read().splitlines() if os.path.exists(record) else []

    def opened(answer):  # the viewer, which answers so, is given the page once more
        with open(status, "w") as f:
            f.write(answer + "\n")
        given = len(pages()) + 1
        choose_writing_games(t)
        t.wait_for(lambda: len(pages()) == given, 10, "xdg-open to be given a page")
        check(pages() == [page] * given, "xdg-open is given %s, not %s" % (pages(), page))

    def told(why):  # the window titled "Writing Games", and the reason on standard error
        t.close_help(t.help_window("Writing Games"))
        t.wait_for(lambda: why in t.stdout(t.err_path), 10, "the reason: " + why)
        return t.stdout(t.err_path).count("the page for rules authors")

    t.quit()
    t.env["PATH"] = viewer + os.pathsep + os.environ["PATH"]
    t.launch()
    opened("0")
    opened("3")
    check(told("xdg-open ended with status 3. It is %s" % page) == 1, "a page the viewer opened is told of")
    opened("stay")
    t.wait_for(lambda: os.path.exists(staying) and open(staying).read().strip(), 10, "the viewer to stay open")
    viewer_pid = int(open(staying).read())
    t.quit()
    try:
        os.kill(viewer_pid, signal.SIGTERM)
    except ProcessLookupError:
        check(False, "quitting the game closed the viewer")

    t.env["PATH"] = alone
    t.launch()
    choose_writing_games(t)
    told("xdg-open is not installed. It is %s" % page)


def main():
    run_test_script({"keyboard": test_keyboard, "window": test_window, "pages": test_pages})


if __name__ == "__main__":
    main()
