#!/usr/bin/env python3
"""End-to-end tests of the game: the real program under its own Xvfb, driven with xdotool.

    run_e2e.py --program build/bin/tolvar --test vexamor_play
"""

import argparse
import copy
import os
import plistlib
import sys
import time

sys.path.insert(0, os.path.dirname(os.path.abspath(__file__)))
from tolvar_driver import (COLOURS, POPUP_ITEMS, POPUP_PAD, POPUP_ROW, POPUP_SEP, WIN_H, WIN_W, Failure,  # noqa: E402
                           Layout, Screen, Tolvar, board_colours, cell_colour, check, near)

FRAME_COLOUR = (127, 63, 0)     # the frame round the board
SELECT_COLOUR = (127, 25, 25)   # the outline of a selected piece
TEXT_COLOUR = (127, 0, 127)     # score, name and score rows
HIGHLIGHT_COLOUR = (191, 0, 191)


def start_game(t, index, board_w, board_h):
    t.choose_game(index)
    t.press_start()
    t.wait_for(lambda: t.mapped(t.game), 10, "the game window to show")
    t.wait_for(lambda: not t.mapped(t.main), 10, "the main window to hide")
    time.sleep(0.5)
    return Layout(board_w, board_h), t.game_origin()


def check_frame(screen, layout, origin):
    """The frame lies 6 pixels outside the board at left, right and top and 3 below it."""
    left_x = layout.left - 6
    right_x = WIN_W - layout.left + 6
    top_y = WIN_H - layout.m + 6
    bottom_y = layout.m - 3
    hits = 0
    probes = 0
    for frac in (0.2, 0.4, 0.6, 0.8):
        y = bottom_y + frac * (top_y - bottom_y)
        x = left_x + frac * (right_x - left_x)
        for (X, Y) in ((left_x, y), (right_x, y), (x, top_y), (x, bottom_y)):
            probes += 1
            sx, sy = layout.to_screen(origin, X, Y)
            # The line is 3 pixels wide: one of the pixels across it has the frame's colour.
            if any(near(screen.pixel(sx + dx, sy + dy), FRAME_COLOUR, 30) for dx in (-1, 0, 1) for dy in (-1, 0, 1)):
                hits += 1
    check(hits == probes, "frame found at %d of %d probes" % (hits, probes))


def find_pair(colours):
    """A cell with a neighbour of its own colour (a region of 2 or more)."""
    w, h = len(colours), len(colours[0])
    for x in range(w):
        for y in range(h):
            c = colours[x][y]
            if c is None:
                continue
            for dx, dy in ((1, 0), (0, 1)):
                if x + dx < w and y + dy < h and colours[x + dx][y + dy] == c:
                    return x, y
    return None


def region_of(colours, x, y):
    c = colours[x][y]
    todo, seen = [(x, y)], set()
    while todo:
        p = todo.pop()
        if p in seen:
            continue
        seen.add(p)
        px, py = p
        for nx, ny in ((px + 1, py), (px - 1, py), (px, py + 1), (px, py - 1)):
            if 0 <= nx < len(colours) and 0 <= ny < len(colours[0]) and colours[nx][ny] == c:
                todo.append((nx, ny))
    return seen


def outline_pixels(screen, layout, origin, x, y):
    """Pixels of the selection colour on the outline round cell (x, y)."""
    X, Y, W, H = layout.cell_rect(x, y)
    count = 0
    for i in range(2, int(W) - 2, 3):
        for (PX, PY) in ((X + i, Y - 1), (X + i, Y + H + 1)):
            sx, sy = layout.to_screen(origin, PX, PY)
            if any(near(screen.pixel(sx, sy + d), SELECT_COLOUR, 30) for d in (-1, 0, 1)):
                count += 1
    for j in range(2, int(H) - 2, 3):
        for (PX, PY) in ((X - 1, Y + j), (X + W + 1, Y + j)):
            sx, sy = layout.to_screen(origin, PX, PY)
            if any(near(screen.pixel(sx + d, sy), SELECT_COLOUR, 30) for d in (-1, 0, 1)):
                count += 1
    return count


# ---------------------------------------------------------------------- the tests

def test_first_launch(program):
    t = Tolvar(program, "first_launch")
    try:
        rules_path = os.path.join(t.folder, "RulesDict.dict")
        t.wait_for(lambda: os.path.exists(rules_path), 10, "RulesDict.dict")
        with open(rules_path, "rb") as f:
            rules = plistlib.load(f)
        check(list(rules.keys()) == ["Vexamor", "Trindle", "Glimmet"], "games in the file: %s" % list(rules))
        check(t.stdout().startswith("code: 0"), "the folder's creation is reported: %r" % t.stdout()[:40])
        check(t.mapped(t.main), "the main window is shown")
        check(not t.mapped(t.game), "the game window is hidden at launch")
        print("time from exec to the main window: %.2f s" % t.startup_seconds)

        # Waiting for the player costs nothing: the loop sleeps until an event comes.
        time.sleep(0.5)
        idle = t.cpu_percent(3.0)
        print("processor use at the main window, no input: %.1f %% of one core" % idle)
        check(idle < 2.0, "the idle program uses %.1f %% of a core" % idle)

        # The game pop-up lists "None" and the three games: four rows of text under the control.
        shot = t.shot("main")
        cx, cy = t.combo_center()
        t.click(cx, cy)
        time.sleep(0.4)
        shot = t.shot("menu")
        mx, my = t.main_origin()
        rows = 0
        in_text = False
        for y in range(int(cy + 16), int(cy + 200)):
            dark = shot.count(mx + 90, y, mx + 300, y + 1, lambda p: max(p) < 110)
            if dark and not in_text:
                rows += 1
            in_text = dark > 0
        check(rows == 4, "the open game pop-up shows %d rows of text, expected None + 3 games" % rows)
        t.click(mx + 30, my + 300)  # a click beside the list closes it
        time.sleep(0.3)

        # Choosing "Vexamor" puts its description in the text view.
        before = t.shot()
        box = t.description_box()
        dark_before = before.count(*box, lambda p: max(p) < 100, step=2)
        t.choose_game(1)
        after = t.shot("vexamor-description")
        dark_after = after.count(*box, lambda p: max(p) < 100, step=2)
        check(dark_before == 0, "the description is empty before a choice (%d dark pixels)" % dark_before)
        check(dark_after > 300, "the description shows text after choosing (%d dark pixels)" % dark_after)

        # Choosing "None" keeps the text.
        t.choose_game(0)
        kept = t.shot()
        check(abs(kept.count(*box, lambda p: max(p) < 100, step=2) - dark_after) < 50,
              "choosing None leaves the description as it was")
        t.finish()
    finally:
        t.close()


def test_vexamor_play(program):
    t = Tolvar(program, "vexamor_play")
    try:
        layout, origin = start_game(t, 1, 8, 8)
        shot = t.shot("board")
        check_frame(shot, layout, origin)
        colours = board_colours(shot, layout, origin)
        missing = [(x, y) for x in range(8) for y in range(8) if colours[x][y] not in COLOURS]
        check(not missing, "cells without a piece of the four colours: %s" % missing)
        check(len({c for col in colours for c in col}) == 4, "all four colours on the board")

        # A click on a piece of a region of 2 or more outlines the region.
        pair = find_pair(colours)
        check(pair is not None, "no region of two on the board")
        region = region_of(colours, *pair)
        cx, cy = layout.cell_center_screen(origin, *pair)
        t.click(cx, cy)
        time.sleep(0.4)
        selected = t.shot("selected")
        for (x, y) in region:
            n = outline_pixels(selected, layout, origin, x, y)
            check(n > 20, "cell %s of the region has %d outline pixels" % ((x, y), n))
        def touches(x, y):
            return any(abs(x - rx) + abs(y - ry) <= 2 for (rx, ry) in region)
        lone = [(x, y) for x in range(8) for y in range(8) if not touches(x, y)]
        quiet = sum(outline_pixels(selected, layout, origin, x, y) for (x, y) in lone[:10])
        check(quiet < 10, "cells outside the region are not outlined (%d pixels)" % quiet)

        # The space bar removes the region and the pieces above fall.
        ticks_before = t.stdout().count("processing event")
        t.key("space")
        # The emptied cells queue the pieces-removed event, which the next tick runs.
        t.wait_for(lambda: t.stdout().count("processing event") > ticks_before, 10,
                   "the pieces-removed event to run")
        t.settle()
        after = t.shot("after-removal")
        remaining = board_colours(after, layout, origin)
        pieces = sum(1 for col in remaining for c in col if c in COLOURS)
        check(pieces == 64 - len(region), "%d pieces left after removing %d" % (pieces, len(region)))
        for x in range(8):
            column = remaining[x]
            filled = [c in COLOURS for c in column]
            # Pieces fell: no column has a hole under a piece.
            check(filled == sorted(filled, reverse=True), "column %d has a hole under a piece: %s" % (x, column))

        # Escape starts the game again: a full board.
        t.key("Escape")
        time.sleep(1.0)
        again = board_colours(t.shot("restart"), layout, origin)
        check(all(c in COLOURS for col in again for c in col), "after Escape every cell holds a piece")

        # Return leaves the game for the main window.
        t.key("Return")
        t.wait_for(lambda: t.mapped(t.main), 10, "the main window to show again")
        check(not t.mapped(t.game), "the game window is hidden after Return")
        t.finish()
    finally:
        t.close()


def test_game_end_scores(program):
    t = Tolvar(program, "game_end_scores")
    try:
        # A game that ends in one move: "Vexamor" on a 2 x 1 board of one colour.
        rules_path = os.path.join(t.folder, "RulesDict.dict")
        t.wait_for(lambda: os.path.exists(rules_path), 10, "the rules file")
        t.quit()
        with open(rules_path, "rb") as f:
            rules = plistlib.load(f)
        tiny = copy.deepcopy(rules["Vexamor"])
        tiny["GameName"] = "Tiny"
        tiny["BoardWidth"] = 2
        tiny["BoardHeight"] = 1
        tiny["NumColors"] = 1
        with open(rules_path, "wb") as f:
            plistlib.dump({"Tiny": tiny}, f, sort_keys=False)
        t.launch()
        layout, origin = start_game(t, 1, 2, 1)
        shot = t.shot("tiny")
        colours = board_colours(shot, layout, origin)
        check(colours[0][0] in COLOURS and colours[0][0] == colours[1][0], "two pieces of one colour: %s" % colours)
        cx, cy = layout.cell_center_screen(origin, 0, 0)
        t.click(cx, cy)
        time.sleep(0.3)
        t.key("space")
        # "No more moves!" and then the new best score: each alert is dismissed as it comes, until
        # the score is in the table.
        dismissed = t.dismiss_alerts(expect=1)
        best_path = os.path.join(t.folder, "BestScores.dict")
        deadline = time.monotonic() + 15
        while not os.path.exists(best_path) or t.alert_windows():
            check(time.monotonic() < deadline, "BestScores.dict was not written")
            if t.alert_windows():
                dismissed += t.dismiss_alerts(expect=1)
            time.sleep(0.1)
        check(dismissed >= 1, "the end of the game is announced")
        check(dismissed == 2, "two alerts: no more moves, then the new best score (%d)" % dismissed)
        check(all(name == " " for name in t.alert_names), "alerts are titled \" \": %r" % t.alert_names)
        with open(os.path.join(t.folder, "BestScores.dict"), "rb") as f:
            best = plistlib.load(f)
        check("Tiny" in best and len(best["Tiny"]) == 1, "the score entered the table: %s" % best)
        entry = best["Tiny"][0]
        check(isinstance(entry["Score"], int) and "Date" in entry, "an entry has a Score and a Date: %s" % entry)
        check(entry["Score"] == 1, "one removal, nothing left: score 1, got %s" % entry["Score"])

        # The score screen: its first row at (392, 698) in the window, highlighted.
        time.sleep(0.5)
        scores = t.shot("scores")
        x0, y0 = layout.to_screen(origin, 392, 698 + 16)
        row = scores.count(x0, y0, x0 + 300, y0 + 20,
                           lambda p: near(p, HIGHLIGHT_COLOUR, 40) or near(p, TEXT_COLOUR, 40))
        check(row > 40, "the first score row has text (%d pixels)" % row)
        hx, hy = layout.to_screen(origin, 392, 678 - 20 + 16)
        hint = scores.count(hx, hy, hx + 260, hy + 20, lambda p: min(p) > 200)
        check(hint > 30, "the hint to press 'esc' is shown (%d white pixels)" % hint)

        # The models move until the space bar stops them.
        a = t.shot().raw
        time.sleep(0.3)
        b = t.shot().raw
        check(a != b, "the score screen is animated")
        t.key("space")
        time.sleep(0.5)
        c = t.shot().raw
        time.sleep(0.4)
        d = t.shot().raw
        check(c == d, "the space bar stops the animation")

        # A menu opened over the stopped screen leaves it whole when it goes away.
        t.click(origin[0] + 300, origin[1] + 300, button=3)
        t.wait_for(lambda: t.find_window(260, 2 * POPUP_PAD + (POPUP_ITEMS + 1) * POPUP_ROW + POPUP_SEP,
                                         mapped=True), 10, "the Actions menu")
        t.wait_for(lambda: t.shot().raw != d, 10, "the menu to show over the score screen")
        t.click(origin[0] + 700, origin[1] + 600)  # beside the menu: it closes
        time.sleep(0.6)
        check(t.shot().raw == d, "the score screen is whole again after the menu closed")

        # Escape plays again.
        t.key("Escape")
        time.sleep(1.0)
        again = board_colours(t.shot(), layout, origin)
        check(all(c in COLOURS for col in again for c in col), "Escape shows a new board: %s" % again)
        t.finish()
    finally:
        t.close()


def test_actions_popup(program):
    t = Tolvar(program, "actions_popup")
    try:
        layout, origin = start_game(t, 1, 8, 8)
        colours = board_colours(t.shot(), layout, origin)
        pair = find_pair(colours)
        check(pair is not None, "no region of two on the board")
        region = region_of(colours, *pair)
        cx, cy = layout.cell_center_screen(origin, *pair)
        t.click(cx, cy)
        time.sleep(0.3)
        # The right button opens the "Actions" menu at the mouse.
        t.click(cx, cy, button=3)
        popup = t.wait_for(lambda: t.find_window(260, 2 * POPUP_PAD + (POPUP_ITEMS + 1) * POPUP_ROW + POPUP_SEP,
                                                 mapped=True), 10, "the Actions menu")
        px, py = t.geometry(popup)
        check(abs(px - cx) <= 2 and abs(py - cy) <= 2, "the menu opens at the mouse")
        time.sleep(0.4)
        shot = t.shot("actions-menu")
        # Item 1 is bound to the space bar: its title is "Remove Selection", which is as wide
        # as those words in the interface font; the unbound items keep "Action N", in grey.
        def ink_width(row):
            y0 = py + POPUP_PAD + row * POPUP_ROW
            xs = [x for x in range(px + 8, px + 200)
                  if any(max(shot.pixel(x, y)) < 200 for y in range(y0 + 4, y0 + POPUP_ROW - 4))]
            return (max(xs) - min(xs) + 1) if xs else 0
        first, second = ink_width(0), ink_width(1)
        check(110 <= first <= 160, "the first item's title is %d pixels wide, like 'Remove Selection'" % first)
        check(40 <= second <= 75, "an unbound item keeps its short title 'Action 2' (%d px)" % second)
        grey = shot.count(px + 10, py + POPUP_PAD + POPUP_ROW + 4, px + 120, py + POPUP_PAD + 2 * POPUP_ROW - 4,
                          lambda p: 120 <= max(p) <= 200 and max(p) - min(p) < 20)
        check(grey > 20, "unbound items are greyed (%d grey pixels)" % grey)
        # The space bar's key equivalent is shown beside the title.
        label = shot.count(px + 180, py + POPUP_PAD + 4, px + 255, py + POPUP_PAD + POPUP_ROW - 4,
                           lambda p: max(p) < 120)
        check(label > 20, "the key equivalent is shown beside the title")

        # Choosing it removes the selected region.
        ticks_before = t.stdout().count("processing event")
        t.click(px + 60, py + POPUP_PAD + POPUP_ROW / 2)
        t.wait_for(lambda: t.stdout().count("processing event") > ticks_before, 10,
                   "the region to be removed from the menu")
        t.wait_for(lambda: not t.mapped(popup), 5, "the menu to close")
        time.sleep(1.0)
        remaining = board_colours(t.shot("after-menu"), layout, origin)
        pieces = sum(1 for col in remaining for c in col if c in COLOURS)
        check(pieces == 64 - len(region), "%d pieces left after removing %d" % (pieces, len(region)))

        # "Return to Main Window" at the bottom of the same menu.
        t.click(cx, cy, button=3)
        t.wait_for(lambda: t.mapped(popup), 10, "the Actions menu again")
        px, py = t.geometry(popup)
        time.sleep(0.3)
        t.click(px + 60, py + POPUP_PAD + POPUP_ITEMS * POPUP_ROW + POPUP_SEP + POPUP_ROW / 2)
        t.wait_for(lambda: t.mapped(t.main), 10, "the main window")
        check(not t.mapped(t.game), "the game window is hidden")
        t.finish()
    finally:
        t.close()


def find_swap(colours):
    """Two neighbours of different colours whose swap puts a piece next to one of its colour."""
    w, h = len(colours), len(colours[0])

    def groups_after(a, b):
        (ax, ay), (bx, by) = a, b
        moved = {a: colours[bx][by], b: colours[ax][ay]}
        for (x, y), c in moved.items():
            for nx, ny in ((x + 1, y), (x - 1, y), (x, y + 1), (x, y - 1)):
                if (nx, ny) in moved or not (0 <= nx < w and 0 <= ny < h):
                    continue
                if colours[nx][ny] == c:
                    return True
        return False

    for x in range(w):
        for y in range(h):
            for dx, dy in ((1, 0), (0, 1)):
                a, b = (x, y), (x + dx, y + dy)
                if b[0] < w and b[1] < h and colours[x][y] != colours[b[0]][b[1]] and groups_after(a, b):
                    return a, b
    return None


def test_trindle_swap(program):
    t = Tolvar(program, "trindle_swap")
    try:
        layout, origin = start_game(t, 2, 12, 12)
        layout = Layout(12, 12)
        shot = t.shot("board")
        check_frame(shot, layout, origin)
        colours = board_colours(shot, layout, origin)
        check(all(c in ("red", "green", "blue") for col in colours for c in col),
              "every cell holds a piece of the three colours: %s" % colours)
        swap = find_swap(colours)
        check(swap is not None, "no swap makes a group on this board")
        (a, b) = swap
        # Drag from one piece to its neighbour and let go: they swap, and the groups of two go.
        ax, ay = layout.cell_center_screen(origin, *a)
        bx, by = layout.cell_center_screen(origin, *b)
        removed_before = t.stdout().count("Removing piece")
        t.xdo("mousemove", "--sync", int(ax), int(ay))
        t.xdo("mousedown", 1)
        time.sleep(0.1)
        t.xdo("mousemove", "--sync", int(bx), int(by))
        time.sleep(0.1)
        t.xdo("mouseup", 1)
        t.wait_for(lambda: t.stdout().count("Removing piece") >= removed_before + 2, 10, "'Removing piece' lines")
        t.settle()
        after = board_colours(t.shot("after-swap"), layout, origin)
        removed = t.stdout().count("Removing piece") - removed_before
        pieces = sum(1 for col in after for c in col if c in COLOURS)
        check(pieces == 144 - removed, "%d pieces left after %d were removed" % (pieces, removed))
        for x in range(12):
            filled = [c in COLOURS for c in after[x]]
            check(filled == sorted(filled, reverse=True), "column %d has a hole under a piece" % x)
        t.finish()
    finally:
        t.close()


TESTS = {
    "trindle_swap": test_trindle_swap,
    "first_launch": test_first_launch,
    "vexamor_play": test_vexamor_play,
    "game_end_scores": test_game_end_scores,
    "actions_popup": test_actions_popup,
}


def main():
    parser = argparse.ArgumentParser()
    parser.add_argument("--program", required=True)
    parser.add_argument("--test", required=True, choices=sorted(TESTS))
    args = parser.parse_args()
    start = time.monotonic()
    try:
        TESTS[args.test](os.path.abspath(args.program))
    except Failure as e:
        print("FAILED %s: %s" % (args.test, e))
        return 1
    print("passed %s in %.1f s" % (args.test, time.monotonic() - start))
    return 0


if __name__ == "__main__":
    sys.exit(main())
