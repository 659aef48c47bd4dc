#!/usr/bin/env python3
"""The desktop around the game, played under its own Xvfb: keys that must not move, keyboard-only play with
the cursor and the hint, undo and redo, Continue (also of two copies' games), the help window, and the game
window resized and full screen.
run_e2e_desktop.py --program build/bin/tolvar --test keys|keyboard|undo|continue|two_copies|window|help"""

import os
import plistlib
import sys

sys.path.insert(0, os.path.dirname(os.path.abspath(__file__)))
from tolvar_driver import (HELP_H, POPUP_H, POPUP_PAD, POPUP_ROW, POPUP_W, SCREEN_H, SCREEN_W, SELECTED,  # noqa: E402
                           WIN_H, Layout, Tolvar, check, full, ink_rows, key, near, removes, run_test_script,
                           select_region, touches)

HINT, CURSOR = (0, 229, 255), (255, 255, 255)  # the hint's outline round its cells, the cursor's inside its cell
VEXAMOR, GLIMMET = (1, 8, 8), (3, 8, 8)  # the game pop-up's index, board width and height


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


def selected_cells(shot, lay):
    return hint_cells(shot, lay, SELECTED)


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


def diagnostics(t):
    return t.stdout().count("processing event")


def test_keys(t):
    """Shift, Ctrl, Alt, Caps Lock, arrows and function keys on a board with a selection: no move, no output,
    the selection stays; nor does Ctrl+X type an "x"."""
    lay = t.start(*VEXAMOR)
    size, _ = select_region(t, lay)
    shot = t.shot()
    selected = selected_cells(shot, lay)
    check(len(selected) == size, "the region of %d is outlined: %s" % (size, selected))
    check(cursor_cell(shot, lay) is None, "the keyboard cursor shows before any arrow")
    out = t.stdout()
    for k in ("shift", "ctrl", "alt", "Caps_Lock", "Caps_Lock", "F3", "F5", "F12", "Home", "End", "Delete", "ctrl+x",
              "alt+x", "super", "Left"):
        key(t, k)
    # The keys are taken in turn: once the last one, Left, shows the cursor, all have been.
    shot = t.wait_shot(lambda s: cursor_cell(s, lay) is not None, "the arrow to show the keyboard cursor")
    check(t.stdout() == out, "the keys made the game act:\n" + t.stdout()[len(out):])
    still = selected_cells(shot, lay)
    check(still == selected, "the selection changed: %s, was %s" % (still, selected))
    # Shift held with a click is still a click; Escape is still the game's.
    key(t, "Escape")
    t.wait_shot(lambda s: not selected_cells(s, lay), "a new board after Escape")


def test_keyboard(t):
    """Vexamor and Glimmet from the keyboard alone: the hint shows a move, the arrows take the cursor there,
    Return presses it, the space bar removes a selection."""
    lay = t.start(*VEXAMOR)
    left = 64
    for _ in range(3):
        region = ask_hint(t, lay, 2)
        cursor_to(t, lay, region[0])
        key(t, "Return")
        shot = t.wait_shot(lambda s: all(lay.outline_pixels(s, *c) > 20 for c in region), "the hinted region selected")
        check(hint_cells(shot, lay) == [], "the hint stays after the next input")
        left = removes(t, lay, len(region), lambda: key(t, "space"), left)

    t.back_to_main("ctrl+w")  # then Glimmet
    lay, since = start_glimmet(t), 0  # the board dealt is the last event yet
    for _ in range(3):
        t.wait_tick(since, "the board at rest")
        pair = ask_hint(t, lay, 2)
        check(len(pair) == 2 and abs(pair[0][0] - pair[1][0]) + abs(pair[0][1] - pair[1][1]) == 1,
              "the hint is two neighbours: %s" % pair)
        before, since = diagnostics(t), len(t.stdout())
        cursor_to(t, lay, pair[0])
        key(t, "Return")
        cursor_to(t, lay, pair[1])
        key(t, "Return")
        t.wait_for(lambda: diagnostics(t) > before, 10, "the swap to make a line that goes")
    check("Removing piece" in t.stdout() or diagnostics(t) >= 4, "no pieces went:\n" + t.stdout()[-800:])


def popup_item(t, at, row):
    """Chooses row `row` of the game window's right-click menu (0-7 actions, then New Game, Undo, Redo, Hint)."""
    px, py = t.open_menu(at)
    y = py + POPUP_PAD + row * POPUP_ROW + (9 if row >= 8 else 0) + POPUP_ROW / 2
    t.click(px + 60, y)
    t.wait_for(lambda: not t.find_window(POPUP_W, POPUP_H, True), 10, "the menu to close")


def test_undo(t):
    """A removal undone and redone with the keys and with the menu: the same boards and score each way."""
    lay = t.start(*VEXAMOR)
    start = lay.colours(t.shot())
    size, centre = select_region(t, lay)
    shot = t.shot()
    selected, region = lay.colours(shot), selected_cells(shot, lay)
    removes(t, lay, size, lambda: key(t, "space"))
    after = lay.colours(t.shot())
    out = t.stdout()
    removal = out[out.rfind("processing event 2"):]  # the removal's diagnostics

    def board_is(colours, what):  # the selected pieces spin, so their colours are not compared
        def same():
            now = lay.colours(t.shot())
            return all(now[x][y] == colours[x][y] for x, y in lay.cells() if (x, y) not in region)
        t.wait_for(same, 10, what)

    for undo, redo in ((lambda: key(t, "ctrl+z"), lambda: key(t, "ctrl+shift+z")),
                       (lambda: key(t, "ctrl+z"), lambda: key(t, "ctrl+y")),
                       (lambda: popup_item(t, centre, 9), lambda: popup_item(t, centre, 10))):
        undo()
        board_is(selected, "the board before the removal")
        t.wait_shot(lambda s: len(selected_cells(s, lay)) == size, "the selection back")
        since = len(t.stdout())
        redo()
        t.wait_tick(since, "the redone removal")
        t.wait_right(lambda: lay.colours(t.shot()), lambda now: None if now == after else
                     "the redone removal ended differently: %s" % now)
        check(t.stdout().endswith(removal), "the redo printed other lines:\n" + t.stdout()[len(out):])
    # Redoing printed the same diagnostics as the removal itself, each time.
    check(t.stdout().count("processing event 2") == 4, "three redos print the removal's event again:\n"
          + t.stdout()[-600:])
    # Undo back to the start, then nothing more to undo.
    key(t, "ctrl+z", "ctrl+z")
    t.wait_for(lambda: lay.colours(t.shot()) == start, 10, "two undos to reach the starting board")


def game_size(t):
    return next((w, h) for wid, _n, w, h in t.windows() if wid == t.game)


def play_scaled(t, lay, size, left):
    """The board redrawn at the new size with `left` pieces, and clicks landing on the right cells: a region
    selected by a click is outlined, and only it, and goes with the space bar. Returns the pieces left."""
    check(game_size(t) == size, "the game window is %s, not %s" % (game_size(t), size))
    shot = t.wait_shot(lambda s: lay.pieces(s) == left, "the board of %d pieces at %dx%d" % (left, *size))
    if lay.bar[1] > 2:
        top, bottom = lay.to_screen(0, WIN_H), lay.to_screen(0, 0)
        check(all(max(shot.pixel(lay.origin[0] + size[0] // 2, y)) < 10 for y in (top[1] - 3, bottom[1] + 2)),
              "black bars above and below the picture")
    if lay.bar[0] > 2:
        left_bar = lay.to_screen(0, WIN_H / 2)
        check(max(shot.pixel(left_bar[0] - 3, left_bar[1])) < 10, "a black bar beside the picture")
    return removes(t, lay, select_region(t, lay)[0], lambda: key(t, "space"), left)


def test_window(t):
    """The window resized and full screen: the picture scaled between bars, every click on its cell."""
    t.start(*VEXAMOR)
    left = 64
    for size in ((800, 800), (1100, 640)):
        t.xdo("windowsize", "--sync", t.game, *size)
        t.wait_for(lambda: game_size(t) == size, 10, "the window at %dx%d" % size)
        left = play_scaled(t, Layout(8, 8, t.geometry(t.game), size), size, left)
    key(t, "F11")
    t.wait_for(lambda: game_size(t) == (SCREEN_W, SCREEN_H), 10, "the full screen")
    check(t.geometry(t.game) == (0, 0), "full screen from the top left corner")
    left = play_scaled(t, Layout(8, 8, (0, 0), (SCREEN_W, SCREEN_H)), (SCREEN_W, SCREEN_H), left)
    key(t, "F11")
    t.wait_for(lambda: game_size(t) == (1100, 640), 10, "the window as it was")


def test_continue(t):
    """Continue shows the kept game after Return, and the saved one after a restart; a saved game whose
    rules changed is refused, and the main window says why."""
    lay = t.start(*VEXAMOR)
    removes(t, lay, select_region(t, lay)[0], lambda: key(t, "space"))
    board = lay.colours(t.shot())
    t.back_to_main("ctrl+w")
    t.press_continue()
    t.wait_for(lambda: t.mapped(t.game), 10, "the kept game to show")
    t.wait_for(lambda: lay.colours(t.shot()) == board, 10, "the kept board")
    saved = os.path.join(t.folder, "SavedGame.dict")
    key(t, "ctrl+q")  # from the game window
    t.ended()
    check(os.path.exists(saved), "the unfinished game is saved on quit")
    t.launch()
    t.press_continue()
    t.wait_for(lambda: t.mapped(t.game), 10, "the saved game to show")
    lay = Layout(8, 8, t.geometry(t.game))
    t.wait_for(lambda: lay.colours(t.shot()) == board, 10, "the saved board")
    key(t, "ctrl+q")  # from the game window
    t.ended()
    # The rules changed since: refused, with the reason under the description.
    rules_path = os.path.join(t.folder, "RulesDict.dict")
    with open(rules_path, "rb") as f:
        rules = plistlib.load(f)
    rules["Vexamor"]["NumColors"] = 3
    with open(rules_path, "wb") as f:
        plistlib.dump(rules, f, sort_keys=False)
    t.launch()
    t.press_continue()
    reds = t.error_ink()
    t.wait_shot(lambda s: reds(s) > 50, "the reason in red")
    check(not t.mapped(t.game), "a refused game does not start")



def shades(shot, lay):
    """Each cell's mean colour round its centre, coarsely: tells boards of any colours apart (Glimmet has more
    colours than the pieces' names here), the same board drawn at the same place giving the same shades."""
    r = int(lay.pw * 0.2)

    def mean(cx, cy):
        pixels = [shot.pixel(x, y) for y in range(int(cy) - r, int(cy) + r, 2) for x in range(int(cx) - r, int(cx) + r, 2)]
        return tuple(sum(p[i] for p in pixels) // len(pixels) // 32 for i in range(3))
    return [[mean(*lay.centre(x, y)) for y in range(lay.board_h)] for x in range(lay.board_w)]


def start_glimmet(t):
    """Glimmet started (its board deals without a line, so it rests after the start); its layout."""
    t.choose_game(GLIMMET[0])
    since = len(t.stdout())
    t.press_start()
    t.wait_for(lambda: not t.mapped(t.main), 10, "the main window to hide")
    lay = Layout(GLIMMET[1], GLIMMET[2], t.geometry(t.game))
    t.wait_tick(since, "the board dealt")
    return lay


def test_two_copies(t):
    """Two copies share one data folder: one quits in Vexamor, the other in Glimmet, both unfinished; a later
    launch continues each of the two, on the very board it was left with."""
    lay = t.start(*VEXAMOR)
    removes(t, lay, select_region(t, lay)[0], lambda: key(t, "space"))
    left = {VEXAMOR: shades(t.shot(), lay)}
    other = Tolvar(t.program, "desktop-two-copies-b", seed=11, folder=t.folder)
    try:
        # Dealt from another seed than the later launch's, so only continuing shows this board.
        glay = start_glimmet(other)
        left[GLIMMET] = shades(other.shot(), glay)
        key(t, "ctrl+q")  # A quits first, then B: B read the file before A wrote it
        t.ended()
        key(other, "ctrl+q")
        other.ended()
    finally:
        other.close()
    with open(os.path.join(t.folder, "SavedGame.dict"), "rb") as f:
        saved = plistlib.load(f)
    check(sorted(saved) == ["Glimmet", "Vexamor"], "both games are saved: %s" % sorted(saved))

    t.launch()
    for (index, w, h), board in left.items():
        t.choose_game(index)  # Continue offers the chosen game's own
        t.press_continue()
        t.wait_for(lambda: t.mapped(t.game), 10, "the saved game to show")
        lay = Layout(w, h, t.geometry(t.game))
        t.wait_right(lambda: shades(t.shot(), lay), lambda seen: None if seen == board else "another board in %s: %d cells differ" % (index, sum(a != b for ca, cb in zip(seen, board) for a, b in zip(ca, cb))))
        t.back_to_main("ctrl+w")
    t.quit()

    # A saved-games file that cannot be read is said on standard error, with its name and why.
    with open(os.path.join(t.folder, "SavedGame.dict"), "wb") as f:
        f.write(b"<plist><dict><key>Vexamor</key>")
    t.launch()
    t.wait_for(lambda: "SavedGame.dict: cannot be read (" in t.stdout(t.err_path), 10, "the reason on standard error")


def test_help(t):
    """F1 shows the chosen game's help from the game window; the Help menu of the main window too."""
    lay = t.start(*VEXAMOR)
    key(t, "F1")
    helpw = t.help_window()
    check(("Tolvar Help" in t.xwininfo("-id", helpw)), "the help window's title")
    hx, hy = t.geometry(helpw)

    def rows(shot):  # rows of dark text on the page's light ground: name, description, inputs, keys
        if not near(shot.pixel(hx + 4, hy + HELP_H - 4), (240, 240, 242), 12):
            return 0
        return ink_rows(shot, hx + 16, hy, hx + 300, hy + HELP_H - 60)
    t.wait_shot(lambda s: rows(s) >= 18, "the help's text (name, description, inputs, keys)")
    t.close_help(helpw)
    t.wait_shot(lambda s: full(lay.colours(s)), "the board whole again")
    t.back_to_main("ctrl+w")
    t.xdo("windowfocus", "--sync", t.main, "key", "F1")
    t.wait_for(lambda: t.mapped(helpw), 10, "the help from the main window")


def main():
    run_test_script({"keys": test_keys, "keyboard": test_keyboard, "undo": test_undo, "continue": test_continue,
                     "two_copies": test_two_copies, "window": test_window, "help": test_help}, "desktop-")


if __name__ == "__main__":
    main()
