#!/usr/bin/env python3
"""Pages of text in the desktop, played under its own Xvfb: the rules author's page from the Help menu (given to
xdg-open, or its place shown when that fails), and a game whose description runs to 100,000 characters in the
main window and in help.
run_e2e_pages.py --program build/bin/tolvar --test writing_games|long_text"""

import os
import plistlib
import shutil
import signal
import sys

sys.path.insert(0, os.path.dirname(os.path.abspath(__file__)))
from tolvar_driver import (HELP_H, HELP_W, MAIN_H, MAIN_PAD_X, MAIN_W, MENU_BAR_H, Layout, check, full,  # noqa: E402
                           ink_rows, key, run_test_script)


def ink_runs(positions, gap):
    """[first, last] of each run of positions no more than gap apart."""
    runs = []
    for p in positions:
        if runs and p - runs[-1][1] <= gap:
            runs[-1][1] = p
        else:
            runs.append([p, p])
    return runs


def choose_writing_games(t):
    """Help > Writing Games in the main window: the menu bar's last title, then the second line of its menu."""
    mx, my = t.geometry(t.main)
    dark = lambda p: max(p) < 90  # noqa: E731

    def title_runs(s):  # the menu bar's titles that can be chosen (drawn dark)
        return ink_runs([x for x in range(mx, mx + MAIN_W)
                         if any(dark(s.pixel(x, y)) for y in range(my + 2, my + MENU_BAR_H))], 10)
    titles = title_runs(t.wait_shot(lambda s: len(title_runs(s)) >= 3, "the menu bar: Tolvar, Game and Help"))
    left = titles[-1][0]
    t.click((titles[-1][0] + titles[-1][1]) / 2, my + MENU_BAR_H / 2)

    def items(s):  # the menu's lines of text, under its title
        return ink_runs([y for y in range(my + MENU_BAR_H + 4, my + 200)
                         if any(dark(s.pixel(x, y)) for x in range(left, left + 180))], 4)
    _first, second, _about = items(t.wait_shot(lambda s: len(items(s)) == 3, "the Help menu's three items"))
    t.click(left + 40, (second[0] + second[1]) / 2)


def test_writing_games(t):
    """Help > Writing Games gives the rules author's page to xdg-open; when xdg-open fails or is missing, the
    help window tells where the page is."""
    page = os.path.realpath(os.path.join(os.path.dirname(os.path.abspath(__file__)), "..", "..", "docs",
                                         "writing-games.md"))
    viewer, alone = os.path.join(t.work, "viewer"), os.path.join(t.work, "no-viewer")
    record, status = os.path.join(t.work, "opened.txt"), os.path.join(t.work, "viewer-status.txt")
    os.makedirs(viewer)
    os.makedirs(alone)
    staying = os.path.join(t.work, "viewer-pid.txt")
    # The viewer records what it is given and ends with the status asked, or stays open ("stay").
    with open(os.path.join(viewer, "xdg-open"), "w") as f:
        f.write('#!/bin/sh\nprintf "%%s\\n" "$1" >> "%s"\nread s < "%s"\n'
                'if [ "$s" = stay ]; then echo $$ > "%s"; exec sleep 600; fi\nexit "$s"\n' % (record, status, staying))
    os.chmod(os.path.join(viewer, "xdg-open"), 0o755)
    for tool in ("xdotool", "xwininfo"):  # the test's own tools, and no xdg-open
        os.symlink(shutil.which(tool), os.path.join(alone, tool))

    def opened():
        return open(record).read().splitlines() if os.path.exists(record) else []

    def told(why):  # the help window titled "Writing Games", and the reason on standard error
        t.wait_for(lambda: t.find_window(HELP_W, HELP_H, True, "Writing Games"), 10, "the page's place shown")
        t.wait_for(lambda: why in t.stdout(t.err_path), 10, "the reason: " + why)
        return t.stdout(t.err_path).count("the page for rules authors")

    t.quit()
    t.env["PATH"] = viewer + os.pathsep + os.environ["PATH"]
    t.launch()
    with open(status, "w") as f:
        f.write("0\n")
    choose_writing_games(t)
    t.wait_for(lambda: opened() == [page], 10, "xdg-open given " + page)
    with open(status, "w") as f:
        f.write("3\n")
    choose_writing_games(t)
    check(told("xdg-open ended with status 3. It is %s" % page) == 1, "a page the viewer opened is not told of")
    check(opened() == [page, page], "xdg-open given the page twice: %s" % opened())
    # The page's place is closed again before the menu is used once more.
    t.close_help(t.find_window(HELP_W, HELP_H, True, "Writing Games"))
    # A viewer still open when the game quits: the game ends at once and leaves it open.
    with open(status, "w") as f:
        f.write("stay\n")
    choose_writing_games(t)
    t.wait_for(lambda: os.path.exists(staying) and open(staying).read().strip(), 10, "the viewer to stay open")
    viewer_pid = int(open(staying).read())
    t.quit()
    try:
        os.kill(viewer_pid, 0)
    except ProcessLookupError:
        check(False, "quitting the game closed the viewer")
    os.kill(viewer_pid, signal.SIGTERM)

    t.env["PATH"] = alone
    t.launch()
    choose_writing_games(t)
    told("xdg-open is not installed. It is %s" % page)


def test_long_text(t):
    """A game whose description runs to 100,000 characters: the main window shows its start and keeps
    answering, the game starts, F1 shows it in help, and quitting still saves the unfinished game."""
    with open(os.path.join(t.folder, "RulesDict.dict"), "rb") as f:
        vexamor = plistlib.load(f)["Vexamor"]
    t.relaunch_with_rules({"Vexamor": dict(vexamor, GameDescription="word " * 20000)})
    t.choose_game(1)
    mx, my = t.geometry(t.main)
    t.wait_shot(lambda s: ink_rows(s, mx + MAIN_PAD_X + 4, my + 150, mx + MAIN_W - 40, my + MAIN_H - 60) >= 8,
                "lines of the description in the main window")
    t.choose_game(1)  # the window still answers: its pop-up opens and closes
    t.press_start()
    lay = Layout(8, 8, t.geometry(t.game))
    t.wait_shot(lambda s: full(lay.colours(s)), "Vexamor's board")
    saved = os.path.join(t.folder, "SavedGame.dict")
    check(not os.path.exists(saved), "no saved game before help")
    key(t, "F1")
    helpw = t.help_window()
    check(os.path.exists(saved), "the unfinished game is saved before help shows")
    hx, hy = t.geometry(helpw)
    t.wait_shot(lambda s: ink_rows(s, hx + 16, hy + 40, hx + HELP_W - 40, hy + HELP_H - 60) >= 10,
                "lines of the description in help")
    t.close_help(helpw)
    os.remove(saved)
    key(t, "ctrl+q")
    t.ended()
    check(os.path.exists(saved), "the unfinished game is saved on quit")
    t.launch()


def main():
    run_test_script({"writing_games": test_writing_games, "long_text": test_long_text}, "desktop-")


if __name__ == "__main__":
    main()
