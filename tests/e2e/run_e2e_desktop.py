#!/usr/bin/env python3
"""The desktop around the game, played under its own Xvfb: keys that must not move, keyboard-only play with
the cursor and the hint, undo and redo, Continue (also of two copies' games), the help window, and the game
window resized and full screen.
run_e2e_desktop.py --program build/bin/tolvar --test keys|keyboard|undo|continue|two_copies|window|help"""

import os
import plistlib
import sys

sys.path.insert(0, os.path.dirname(os.path.abspath(__file__)))
from run_e2e import SELECTED, full, outline_pixels, removes, select_region, touches  # noqa: E402
from tolvar_driver import (COLOURS, HELP_H, HELP_W, MAIN_H, MAIN_PAD_X, MAIN_W, POPUP_H, POPUP_PAD, POPUP_ROW, POPUP_W, SCREEN_H, SCREEN_W,  # noqa: E402
                           WIN_H, WIN_W, Layout, Tolvar, check, classify, near, run_test_script)

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


def cells(lay):
    return [(x, y) for x in range(lay.board_w) for y in range(lay.board_h)]


def hint_cells(shot, lay):
    return [c for c in cells(lay) if sides(shot, lay, *c, HINT, -1) == 4]


def selected_cells(shot, lay):
    return [c for c in cells(lay) if sides(shot, lay, *c, SELECTED, -1) == 4]


def cursor_cell(shot, lay):
    found = [c for c in cells(lay) if sides(shot, lay, *c, CURSOR, 5) == 4]
    return found[0] if len(found) == 1 else None


def key(t, *keys):
    t.xdo("windowfocus", "--sync", t.game, "key", "--delay", 60, *keys)


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


def pieces(shot, lay):
    return sum(1 for col in lay.colours(shot) for c in col if c)


def removes_more(t, lay, before, removed, act):
    """Like `removes`, on a board of `before` pieces that may have holes already (a selected piece spins, so
    it is not counted from the screen). Returns the pieces left."""
    since = len(t.stdout())
    act()
    t.wait_tick(since, "the pieces-removed event and the falls after it")
    return t.wait_right(lambda: pieces(t.shot(), lay), lambda left: None if left == before - removed else
                        "%d pieces went, not %d" % (before - left, removed))


def select_on(t, lay):
    """Clicks a region of two or more pieces on a board that may have holes; waits for its outline and
    returns its size."""
    colours, n, m = lay.colours(t.shot()), lay.board_w, lay.board_h
    region = [next(((x, y) for x in range(n) for y in range(m) for nx, ny in ((x + 1, y), (x, y + 1))
                    if nx < n and ny < m and colours[x][y] and colours[x][y] == colours[nx][ny]), None)]
    check(region[0], "no region of two on the board")
    for x, y in region:
        region += [q for q in ((x + 1, y), (x - 1, y), (x, y + 1), (x, y - 1)) if q not in region and 0 <= q[0] < n
                   and 0 <= q[1] < m and colours[q[0]][q[1]] == colours[x][y]]
    t.click(*lay.centre(*region[0]))
    t.wait_shot(lambda s: all(outline_pixels(s, lay, *c) > 20 for c in region), "the outline of %s" % region)
    return len(region)


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
        shot = t.wait_shot(lambda s: all(outline_pixels(s, lay, *c) > 20 for c in region), "the hinted region selected")
        check(hint_cells(shot, lay) == [], "the hint stays after the next input")
        left = removes_more(t, lay, left, len(region), lambda: key(t, "space"))

    key(t, "ctrl+w")  # back to the main window, then Glimmet
    t.wait_for(lambda: t.mapped(t.main), 10, "the main window")
    t.choose_game(GLIMMET[0])
    since = len(t.stdout())
    t.press_start()
    t.wait_for(lambda: not t.mapped(t.main), 10, "the main window to hide")
    lay = Layout(GLIMMET[1], GLIMMET[2], t.geometry(t.game))
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
            return all(now[x][y] == colours[x][y] for x, y in cells(lay) if (x, y) not in region)
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


class ScaledLayout(Layout):
    """The board in a game window of any size: the 1024 x 768 picture scaled to fit, between bars."""
    def __init__(self, board_w, board_h, origin, size):
        super().__init__(board_w, board_h, origin)
        self.scale = min(size[0] / WIN_W, size[1] / WIN_H)
        self.bar = ((size[0] - round(WIN_W * self.scale)) // 2, (size[1] - round(WIN_H * self.scale)) // 2)

    def to_screen(self, X, Y):
        return (self.origin[0] + self.bar[0] + X * self.scale,
                self.origin[1] + self.bar[1] + (WIN_H - Y) * self.scale)

    def colours(self, screen):  # the vote round each centre shrinks or grows with the picture
        def vote(cx, cy, r=max(4, int(self.pw * 0.3 * self.scale))):
            votes = [classify(screen.pixel(px, py)) for py in range(int(cy - r), int(cy + r), max(2, r // 12))
                     for px in range(int(cx - r), int(cx + r), max(2, r // 12))]
            best = max(COLOURS, key=votes.count)
            return best if votes.count(best) >= len(votes) * 0.25 else None
        return [[vote(*self.centre(x, y)) for y in range(self.board_h)] for x in range(self.board_w)]


def game_size(t):
    return next((w, h) for wid, _n, w, h in t.windows() if wid == t.game)


def play_scaled(t, lay, size, left):
    """The board redrawn at the new size with `left` pieces, and clicks landing on the right cells: a region
    selected by a click is outlined, and only it, and goes with the space bar. Returns the pieces left."""
    check(game_size(t) == size, "the game window is %s, not %s" % (game_size(t), size))
    shot = t.wait_shot(lambda s: pieces(s, lay) == left, "the board of %d pieces at %dx%d" % (left, *size))
    if lay.bar[1] > 2:
        top, bottom = lay.to_screen(0, WIN_H), lay.to_screen(0, 0)
        check(all(max(shot.pixel(lay.origin[0] + size[0] // 2, y)) < 10 for y in (top[1] - 3, bottom[1] + 2)),
              "black bars above and below the picture")
    if lay.bar[0] > 2:
        left_bar = lay.to_screen(0, WIN_H / 2)
        check(max(shot.pixel(left_bar[0] - 3, left_bar[1])) < 10, "a black bar beside the picture")
    removed = select_on(t, lay)
    return removes_more(t, lay, left, removed, lambda: key(t, "space"))


def test_window(t):
    """The window resized and full screen: the picture scaled between bars, every click on its cell."""
    t.start(*VEXAMOR)
    left = 64
    for size in ((800, 800), (1100, 640)):
        t.xdo("windowsize", "--sync", t.game, *size)
        t.wait_for(lambda: game_size(t) == size, 10, "the window at %dx%d" % size)
        left = play_scaled(t, ScaledLayout(8, 8, t.geometry(t.game), size), size, left)
    key(t, "F11")
    t.wait_for(lambda: game_size(t) == (SCREEN_W, SCREEN_H), 10, "the full screen")
    check(t.geometry(t.game) == (0, 0), "full screen from the top left corner")
    left = play_scaled(t, ScaledLayout(8, 8, (0, 0), (SCREEN_W, SCREEN_H)), (SCREEN_W, SCREEN_H), left)
    key(t, "F11")
    t.wait_for(lambda: game_size(t) == (1100, 640), 10, "the window as it was")


def press_continue(t):  # the button left of Return and Start, at the main window's bottom right
    mx, my = t.geometry(t.main)
    t.click(mx + MAIN_W - MAIN_PAD_X - 2 * 130 - 60, my + MAIN_H - 14 - 29 / 2)


def test_continue(t):
    """Continue shows the kept game after Return, and the saved one after a restart; a saved game whose
    rules changed is refused, and the main window says why."""
    lay = t.start(*VEXAMOR)
    removes(t, lay, select_region(t, lay)[0], lambda: key(t, "space"))
    board = lay.colours(t.shot())
    key(t, "ctrl+w")
    t.wait_for(lambda: t.mapped(t.main), 10, "the main window")
    press_continue(t)
    t.wait_for(lambda: t.mapped(t.game), 10, "the kept game to show")
    t.wait_for(lambda: lay.colours(t.shot()) == board, 10, "the kept board")
    saved = os.path.join(t.folder, "SavedGame.dict")
    key(t, "ctrl+q")  # from the game window
    t.ended()
    check(os.path.exists(saved), "the unfinished game is saved on quit")
    t.launch()
    press_continue(t)
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
    press_continue(t)
    mx, my = t.geometry(t.main)
    t.wait_shot(lambda s: s.count(mx + 20, my + 120, mx + MAIN_W - 20, my + MAIN_H - 60,
                                  lambda p: p[0] > 150 and p[1] < 60 and p[2] < 60) > 50, "the reason in red")
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
        press_continue(t)
        t.wait_for(lambda: t.mapped(t.game), 10, "the saved game to show")
        lay = Layout(w, h, t.geometry(t.game))
        t.wait_right(lambda: shades(t.shot(), lay), lambda seen: None if seen == board else "another board in %s: %d cells differ" % (index, sum(a != b for ca, cb in zip(seen, board) for a, b in zip(ca, cb))))
        key(t, "ctrl+w")
        t.wait_for(lambda: t.mapped(t.main), 10, "the main window")
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
    helpw = help_window(t)
    check(("Tolvar Help" in t.xwininfo("-id", helpw)), "the help window's title")
    hx, hy = t.geometry(helpw)

    def rows(shot):  # rows of dark text on the page's light ground: name, description, inputs, keys
        if not near(shot.pixel(hx + 4, hy + HELP_H - 4), (240, 240, 242), 12):
            return 0
        return dark_rows(shot, hx + 16, hy, hx + 300, hy + HELP_H - 60)
    t.wait_shot(lambda s: rows(s) >= 18, "the help's text (name, description, inputs, keys)")
    t.xdo("windowfocus", "--sync", helpw, "key", "Escape")
    t.wait_for(lambda: not t.mapped(helpw), 10, "the help to close")
    t.wait_shot(lambda s: full(lay.colours(s)), "the board whole again")
    key(t, "ctrl+w")
    t.wait_for(lambda: t.mapped(t.main), 10, "the main window")
    t.xdo("windowfocus", "--sync", t.main, "key", "F1")
    t.wait_for(lambda: t.mapped(helpw), 10, "the help from the main window")


def help_window(t):
    return t.wait_for(lambda: next((wid for wid, name, w, h in t.windows() if (w, h) == (HELP_W, HELP_H)
                                    and t.mapped(wid)), None), 10, "the help window")


def dark_rows(shot, x0, y0, x1, y1):  # rows of dark text between y0 and y1: starts of ink after a blank row
    ink = [0] + [shot.count(x0, y, x1, y + 1, lambda p: max(p) < 90) > 0 for y in range(y0, y1)]
    return sum(1 for a, b in zip(ink, ink[1:]) if b and not a)


def main():
    run_test_script({"keys": test_keys, "keyboard": test_keyboard, "undo": test_undo, "continue": test_continue,
                     "two_copies": test_two_copies, "window": test_window, "help": test_help}, "desktop-")


if __name__ == "__main__":
    main()
