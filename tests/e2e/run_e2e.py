#!/usr/bin/env python3
"""The real game played under its own Xvfb: run_e2e.py --program build/bin/tolvar --test play|game_end|reload|loops"""

import os
import plistlib
import sys
import time

sys.path.insert(0, os.path.dirname(os.path.abspath(__file__)))
from interface_font import FontMetrics, interface_font_file  # noqa: E402
from tolvar_driver import (FONT_PX, POPUP_H, POPUP_PAD, POPUP_ROW, POPUP_TEXT_INSET, POPUP_W, WIN_H, WIN_W,  # noqa: E402
                           Layout, check, full, ink_rows, near, removes, run_test_script, select_region, touches)

FRAME = (127, 63, 0)  # the frame round the board
SCORE_TEXT, SCORE_HIGHLIGHT = (127, 0, 127), (191, 0, 191)


def check_frame(shot, lay):
    """The 3-pixel frame lies 6 pixels outside the board at left, right and top and 3 below it."""
    left, right, top, bottom = lay.left - 6, WIN_W - lay.left + 6, WIN_H - lay.m + 6, lay.m - 3
    probes = [(X, bottom + f * (top - bottom)) for X in (left, right) for f in (0.2, 0.4, 0.6, 0.8)] + [
        (left + f * (right - left), Y) for Y in (top, bottom) for f in (0.2, 0.4, 0.6, 0.8)]
    missed = [p for p in probes if not touches(shot, lay.to_screen(*p), FRAME)]
    check(not missed, "no frame at %s" % missed)


def test_play(t):
    with open(os.path.join(t.folder, "RulesDict.dict"), "rb") as f:
        games = list(plistlib.load(f))
    check(games == ["Vexamor", "Trindle", "Glimmet"], "games in the new file: %s" % games)
    check(t.stdout().startswith("code: 0"), "the folder's creation is reported: %r" % t.stdout()[:40])
    check(not t.mapped(t.game), "the game window is hidden at launch")

    # The game pop-up lists "None" and the three games: four rows of text under the control.
    (cx, cy), (mx, my) = t.combo_centre(), t.geometry(t.main)

    is_open = t.open_game_list()
    t.wait_right(lambda: ink_rows(t.shot(), mx + 90, cy + 16, mx + 300, cy + 200, 110), lambda n: None if n == 4 else
                 "the open game pop-up shows %d rows of text, expected None + 3 games" % n)
    t.click(mx + 30, my + 300)  # beside the list: it closes
    t.wait_shot(lambda s: not is_open(s), "the game pop-up to close")

    # Choosing "Vexamor" shows its description.
    text = t.description_ink(100)
    check(text(t.shot()) == 0, "the description is empty before a choice")
    t.choose_game(1)
    t.wait_shot(lambda s: text(s) > 300, "the description after choosing")

    # Start: the frame, and a piece of one of the four colours in every cell (start waits for it).
    lay = t.start(1, 8, 8)
    shot = t.shot()
    check_frame(shot, lay)
    check(len({c for col in lay.colours(shot) for c in col}) == 4, "all four colours on the board")
    removes(t, lay, select_region(t, lay)[0], lambda: t.xdo("key", "space"))
    t.xdo("key", "Escape")
    t.wait_shot(lambda s: full(lay.colours(s)), "a full board after Escape")

    # The right button opens the "Actions" menu at the mouse. Its first item reads "Remove Selection" at
    # the left and "Space", its key, at the right, each as wide as it is in the interface font; unbound
    # items are greyed.
    removed, (cx, cy) = select_region(t, lay)
    px, py = t.open_menu((cx, cy))
    check(abs(px - cx) <= 2 and abs(py - cy) <= 2, "the menu opens at the mouse")
    row0, row1 = py + POPUP_PAD, py + POPUP_PAD + POPUP_ROW
    font, texts = interface_font_file(), ("Remove Selection", "Space")
    check(font, "fontconfig finds no TrueType or OpenType interface font")
    title_w, keys_w = (FontMetrics(font).ink_width(text, FONT_PX) for text in texts)
    slack = 4  # pixels of anti-aliasing and side bearing either side of a text
    title_end, keys_start = px + POPUP_TEXT_INSET + title_w + slack, px + POPUP_W - POPUP_TEXT_INSET - keys_w - slack
    check(title_end < keys_start, "%r and %r overlap in %s" % (*texts, font))

    def items(shot):  # the widths of the first item's title and keys, and the grey pixels of the second
        def width(x0, x1):
            ink = [x for x in range(int(x0), int(x1)) if any(max(shot.pixel(x, y)) < 200 for y in range(row0 + 4, row0 + 26))]
            return max(ink) - min(ink) + 1 if ink else 0
        grey = shot.count(px + 10, row1 + 4, px + 120, row1 + 26, lambda p: 120 <= max(p) <= 200 and max(p) - min(p) < 20)
        return width(px + 8, title_end), width(title_end, keys_start), width(keys_start, px + POPUP_W - 8), grey

    def wrong(measured):
        for text, expected, got in zip(texts, (title_w, keys_w), measured[::2]):
            if abs(got - expected) > 3 + 0.05 * expected:
                return "%r is %d pixels wide in the first item, not about %d as in %s" % (text, got, expected, font)
        return ("ink between the first item's title and keys (%d pixels)" % measured[1] if measured[1] else
                "unbound items are not greyed (%d grey pixels)" % measured[3] if measured[3] <= 20 else None)
    t.wait_right(lambda: items(t.shot()), wrong)
    removes(t, lay, removed, lambda: t.click(px + 60, row0 + POPUP_ROW / 2))
    check(not t.find_window(POPUP_W, POPUP_H, True), "the menu closed")

    # Return: the main window again, the game hidden and costing no processor time.
    t.xdo("key", "Return")
    t.wait_for(lambda: t.mapped(t.main), 10, "the main window to show again")
    check(not t.mapped(t.game), "the game window is hidden after Return")
    time.sleep(0.5)
    idle = t.cpu_percent(3.0)
    check(idle < 2.0, "the idle program uses %.1f %% of a core" % idle)


def test_game_end(t):
    # A game that ends in one move: "Vexamor" on a 2 x 1 board of one colour.
    best_path = os.path.join(t.folder, "BestScores.dict")
    t.relaunch_with_one_move_game()
    lay = t.start(1, 2, 1)
    colours = lay.colours(t.shot())
    check(colours[0][0] == colours[1][0], "two pieces of one colour: %s" % colours)
    t.click(*lay.centre(0, 0))
    t.wait_shot(lambda s: lay.outline_pixels(s, 0, 0) > 20, "the two pieces selected")
    t.xdo("key", "space")

    # "No more moves!", then the new best score: two alerts over the game, then the table.
    said = [t.dismiss_alert(), t.dismiss_alert()]
    check(said[1] == "You got one of the best scores! [Sweet!]", "the alerts: %r" % said)
    check(not t.alerts(), "an alert outside the game window")
    t.wait_for(lambda: os.path.exists(best_path), 10, "BestScores.dict")
    with open(best_path, "rb") as f:
        best = plistlib.load(f)
    check(list(best) == ["Tiny"] and len(best["Tiny"]) == 1, "the score entered the table: %s" % best)
    check(best["Tiny"][0]["Score"] == 1 and "Date" in best["Tiny"][0], "not score 1 with a date: %s" % best)

    # The score screen: the first row (at 392, 698 in the window) highlighted.
    x0, y0 = lay.to_screen(392, 698 + 16)
    t.wait_shot(lambda s: s.count(x0, y0, x0 + 300, y0 + 20, lambda p: near(p, SCORE_HIGHLIGHT, 40)
                                  or near(p, SCORE_TEXT, 40)) > 40, "the first score row")
    check(len(t.alerts_said()) == 2, "a third alert: %r" % t.alerts_said())

    # The models move until the space bar stops them.
    a = t.shot().raw
    t.wait_for(lambda: t.shot().raw != a, 10, "the score screen to move")
    t.xdo("key", "space")

    def still():  # two pictures 0.4 s apart are the same: what the stopped animation shows
        first, _, second = t.shot().raw, time.sleep(0.4), t.shot().raw
        return first == second and first
    stopped = t.wait_for(still, 10, "the space bar to stop the animation")

    # A menu opened over the stopped screen leaves it whole when it goes away.
    gx, gy = t.geometry(t.game)
    t.click(gx + 300, gy + 300, button=3)
    t.wait_for(lambda: t.find_window(POPUP_W, POPUP_H, True), 10, "the Actions menu")
    t.wait_for(lambda: t.shot().raw != stopped, 10, "the menu to show over the score screen")
    t.click(gx + 700, gy + 600)  # beside the menu: it closes
    t.wait_for(lambda: t.shot().raw == stopped, 5, "the score screen to be whole again")

    # Escape plays again.
    check(not full(lay.colours(t.shot())), "the score screen shows a board")
    t.xdo("key", "Escape")
    t.wait_shot(lambda s: full(lay.colours(s)), "a new board")


def test_reload(t):
    # The rules file is saved while the game runs: within a second the list and the problems change.
    rules_path = os.path.join(t.folder, "RulesDict.dict")
    mx, my = t.geometry(t.main)
    reds = t.error_ink()

    def save(games=None, text=None):  # as an editor saves: a new file renamed over the old one
        with open(rules_path + ".new", "wb") as f:
            f.write(text if text is not None else plistlib.dumps(games, sort_keys=False))
        os.replace(rules_path + ".new", rules_path)

    def changed(games, errors):
        line = "changed: %d games, %d errors" % (games, errors)
        t.wait_for(lambda: line in t.stdout(t.err_path), 20, "\"%s\" on standard error" % line)

    def choose_vexamor():
        t.choose_game(1)
        t.wait_shot(lambda s: t.description_ink(60)(s) > 150, "Vexamor's description")

    choose_vexamor()
    t.wait_shot(lambda s: reds(s) == 0, "Vexamor without problems")
    with open(rules_path, "rb") as f:
        games = plistlib.load(f)
    games["Vexamor"] = dict(games["Vexamor"], BoardWidth=300)
    games["Wide"] = dict(games["Vexamor"], GameName="Wide")
    save(games)
    changed(4, 2)
    t.wait_shot(lambda s: reds(s) > 30, "the chosen game's error in the main window")
    # Start is refused: the game window stays hidden (checked once the next reload has been seen).
    t.click_start()
    save(text=plistlib.dumps(games)[:200])
    changed(0, 1)
    t.wait_shot(lambda s: reds(s) > 30, "why the file cannot be read")
    check(not t.mapped(t.game), "a game with errors was started")
    games["Vexamor"]["BoardWidth"] = 8
    save(games)
    changed(4, 1)
    choose_vexamor()
    t.wait_shot(lambda s: reds(s) == 0, "Vexamor without problems again")
    t.press_start()  # Vexamor is chosen already
    lay = Layout(8, 8, t.geometry(t.game))
    t.wait_shot(lambda s: full(lay.colours(s)), "Vexamor's board after the fix")


def test_loops(t):
    """Rules whose events queue one another without end. A completion test that queues its own event
    again is refused before Start; a refill whose lines never run out is stopped at the bound, said on
    standard output and in an alert, and the game goes on answering."""
    here = os.path.dirname(os.path.abspath(__file__))

    def relaunch(rules):
        with open(os.path.join(here, "..", "unit", "engine", "sim", rules), "rb") as f:
            t.relaunch_with_rules(plistlib.load(f))
        t.choose_game(1)

    relaunch("loop-events.dict")
    reds = t.error_ink()
    t.wait_shot(lambda s: reds(s) > 30, "the loop's error in the main window")
    t.click_start()  # refused
    relaunch("loop-refill.dict")  # the quit waits for the click above to have been taken
    refused_run = t.stdout(os.path.join(t.work, "out-%d.txt" % (t.runs - 1)))
    check("processing event" not in refused_run, "the refused game ran events")

    began = time.monotonic()
    t.press_start()  # the game's start event begins the chain
    said = t.dismiss_alert(timeout=120)  # 12 events at the game's pace, then the rest unshown
    print("the alert was up %.2f s after Start" % (time.monotonic() - began))
    out = t.stdout()
    check("keeps queueing events without end" in said, "the alert says %r" % said)
    stopped = [line for line in out.splitlines() if line.startswith("stopped: ")]
    check(stopped == ["stopped: event 2 (type 12) keeps queueing events, 1000 in a row"], "stopped: %s" % stopped)
    check(out.count("processing event ") == 1000, "%d events ran" % out.count("processing event "))
    t.xdo("key", "Return")  # the game still answers: Return leaves it for the main window
    t.wait_for(lambda: t.mapped(t.main), 10, "the main window after the stopped game")


def main():
    run_test_script({"play": test_play, "game_end": test_game_end, "reload": test_reload, "loops": test_loops})


if __name__ == "__main__":
    main()
