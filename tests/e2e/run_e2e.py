#!/usr/bin/env python3
"""The real game played under its own Xvfb, one scenario a start:
run_e2e.py --program build/bin/tolvar --test play|game_end|rules|flash|alerts"""

import os
import plistlib
import re
import sys
import time

sys.path.insert(0, os.path.dirname(os.path.abspath(__file__)))
from tolvar_driver import POPUP_H, POPUP_PAD, POPUP_ROW, POPUP_W, Layout, check, full, key, near, removes, \
    run_test_script, select_region  # noqa: E402

GREETING = "Welcome! Clear the board in as few moves as you can."
BUTTON = (199, 214, 242)  # an alert panel's button, light blue


def test_play(t):
    """First launch: a rules file of the three games, no game window before Start. Vexamor played with the
    mouse, Escape and the right-click menu, at rest without processor time on the board and in the main
    window; Continue shows the board left after Return and after a restart, and refuses it once its rules
    changed, saying why."""
    check(list(t.rules()) == ["Vexamor", "Trindle", "Glimmet"], "games in the new file: %s" % list(t.rules()))
    text = t.description_ink(100)
    check(text(t.shot()) == 0, "the description is empty before a choice")
    t.choose_game(1)
    t.wait_shot(lambda s: text(s) > 300, "the description after choosing")
    check(int(t.game, 16) not in t.maps(), "the game window was shown before Start")
    lay = t.start(1, 8, 8)
    t.check_idle("a board at rest")
    removes(t, lay, select_region(t, lay)[0], lambda: t.xdo("key", "space"))
    t.xdo("key", "Escape")
    t.wait_shot(lambda s: full(lay.colours(s)), "a full board after Escape")

    # The right button opens the "Actions" menu at the mouse; its first item removes the selection.
    removed, (cx, cy) = select_region(t, lay)
    px, py = t.open_menu((cx, cy))
    check(abs(px - cx) <= 2, "the menu opens %d pixels across from the mouse" % (px - cx))
    check(abs(py - cy) <= 2, "the menu opens %d pixels down from the mouse" % (py - cy))
    removes(t, lay, removed, lambda: t.click(px + 60, py + POPUP_PAD + POPUP_ROW / 2))
    check(not t.find_window(POPUP_W, POPUP_H, True), "the menu stays up")
    board = lay.colours(t.shot())

    t.back_to_main("Return")
    check(not t.mapped(t.game), "the game window is shown after Return")
    t.check_idle("the main window")
    t.press_continue()
    t.wait_for(lambda: lay.colours(t.shot()) == board, 10, "the kept board")
    key(t, "ctrl+q")
    t.ended()
    t.launch()
    t.press_continue()
    lay = Layout(8, 8, t.geometry(t.game))
    t.wait_for(lambda: lay.colours(t.shot()) == board, 10, "the saved board")
    key(t, "ctrl+q")
    t.ended()
    t.save_rules(dict(t.rules(), Vexamor=dict(t.rules()["Vexamor"], NumColors=3)))
    t.launch()
    t.click(*t.continue_button())
    t.wait_shot(lambda s: t.error_ink()(s) > 50, "why the saved game is refused, in red")
    check(not t.mapped(t.game), "a refused game starts")


def test_game_end(t):
    """A game that ends in one move ("Vexamor" on a 2 x 1 board of one colour): its two alerts over the game,
    the score in the best scores file, and Escape playing again."""
    t.relaunch_with_one_move_game()
    lay = t.start(1, 2, 1)
    t.click(*lay.centre(0, 0))
    t.wait_shot(lambda s: lay.outline_pixels(s, 0, 0) > 20, "the two pieces selected")
    t.xdo("key", "space")
    said = [t.dismiss_alert(), t.dismiss_alert()]
    check(said[1] == "You got one of the best scores! [Sweet!]", "the alerts: %r" % said)
    check(not t.alerts(), "an alert outside the game window: %s" % t.alerts())
    best_path = os.path.join(t.folder, "BestScores.dict")
    t.wait_for(lambda: os.path.exists(best_path), 10, "BestScores.dict")
    with open(best_path, "rb") as f:
        best = plistlib.load(f)
    check({g: [(e["Score"], "Date" in e) for e in table] for g, table in best.items()} == {"Tiny": [(1, True)]},
          "the best scores after one game of score 1: %s" % best)
    t.xdo("key", "Escape")
    t.wait_shot(lambda s: full(lay.colours(s)), "a new board")


def test_rules(t):
    """The rules file saved while the game runs: the main window shows the new problems within a second, a game
    with problems is refused, and a game whose refills never settle is stopped at the bound with an alert,
    and the game window goes on answering."""
    reds = t.error_ink()

    def changed(games, errors):
        line = "changed: %d games, %d errors" % (games, errors)
        t.wait_for(lambda: line in t.stdout(t.err_path), 20, "\"%s\" on standard error" % line)

    t.choose_game(1)
    t.wait_shot(lambda s: t.description_ink(60)(s) > 150, "Vexamor's description")
    t.wait_shot(lambda s: reds(s) == 0, "Vexamor without problems")
    games = t.rules()
    games["Vexamor"] = dict(games["Vexamor"], BoardWidth=300)
    games["Wide"] = dict(games["Vexamor"], GameName="Wide")
    t.save_rules(games)
    changed(4, 2)
    t.wait_shot(lambda s: reds(s) > 30, "the chosen game's error in the main window")
    t.click_start()  # refused: the game window stays hidden (checked once the next reload has been seen)
    t.save_rules(plistlib.dumps(games)[:200])
    changed(0, 1)
    t.wait_shot(lambda s: reds(s) > 30, "why the file cannot be read")
    check(not t.mapped(t.game), "a game with errors was started")

    with open(os.path.join(os.path.dirname(os.path.abspath(__file__)), "..", "unit", "engine", "sim",
                           "loop-refill.dict"), "rb") as f:
        t.save_rules(f.read())
    changed(1, 0)
    t.choose_game(1)
    began = time.monotonic()
    t.press_start()  # the game's start event begins the chain
    said = t.dismiss_alert(timeout=120)  # 12 events at the game's pace, then the rest unshown
    print("the alert was up %.2f s after Start" % (time.monotonic() - began))
    check("keeps queueing events without end" in said, "the alert says %r" % said)
    t.back_to_main("Return")


def during_flash(t, act):
    """Swaps neighbours of two colours in "Trindle" until a group of two forms, and acts as soon as the tick
    that found it has run ("piece count up = N, min pieces = M" with N >= M): the game has already removed
    the group, and the window is playing its flash (six frames, 0.6 s) with its own clock."""
    lay = t.start(2, 12, 12)
    for attempt in range(8):
        colours = lay.colours(t.shot())
        x, y = next((x, y) for x in range(11) for y in range(attempt, 12)
                    if colours[x][y] and colours[x + 1][y] and colours[x][y] != colours[x + 1][y])
        since = len(t.stdout())
        (x0, y0), (x1, y1) = lay.centre(x, y), lay.centre(x + 1, y)
        t.xdo("mousemove", int(x0), int(y0), "mousedown", 1, "mousemove", int(x1), int(y1), "mouseup", 1)
        t.wait_for(lambda: "piece count" in t.stdout()[since:], 10, "the swap")
        counts = re.findall(r"piece count \w+ = (\d+), min pieces = (\d+)", t.stdout()[since:])
        if any(int(n) >= int(least) for n, least in counts):
            act()
            return
        t.wait_tick(since, "the swap's events")
    check(False, "no swap formed a group to flash")


def test_flash(t):
    """Trindle's removal flash, played by the window: the close of the game window during it brings the main
    window back; SIGTERM during it ends the program cleanly, keeping the game as it was before the move."""
    during_flash(t, lambda: t.send_delete(t.game))
    t.wait_for(lambda: t.mapped(t.main) and not t.mapped(t.game), 10, "the main window after the close")
    during_flash(t, t.proc.terminate)
    t.ended()
    with open(os.path.join(t.folder, "SavedGame.dict"), "rb") as f:
        kept = plistlib.load(f)["Trindle"]
    check(kept["Score"] == 0, "kept after the flashing tick: score %s" % kept["Score"])
    check(kept["PendingEvents"], "kept after the flashing tick: no events left to run")


def test_alerts(t):
    """A game whose start shows an alert (an event of type 8 whose action is of type 23): a panel in the game
    window, which a click beside it leaves up and its button or Return answers; the close of the game window
    brings the main window back, the close of the main window and SIGTERM end the program while it is up."""
    game = dict(t.rules()["Vexamor"], GameName="Greeting")
    game["SupportedEvents"] = game.get("SupportedEvents", []) + [
        {"EventID": 90, "EventType": 8, "ActionList": [{"ActionID": 91, "ActionType": 23, "Message": GREETING}]}]
    t.relaunch_with_rules({"Greeting": game})

    def greeted(act):  # act starts a game: its alert shows over it, in no window of its own
        act()
        said = t.wait_alert()
        check(said == GREETING + " [OK]", "the alert says %r" % said)
        check(not t.alerts(), "windows beside the game's two: %r" % t.alerts())

    def button(shot):  # where the panel's button shows on the screen, or None
        gx, gy = t.geometry(t.game)
        found = [(x, y) for y in range(gy, gy + 768, 4) for x in range(gx, gx + 1024, 4)
                 if near(shot.pixel(x, y), BUTTON, 8)]
        return found and (sum(x for x, _ in found) / len(found), sum(y for _, y in found) / len(found))

    def ends(act, what):  # act ends the program with the alert up
        began = time.monotonic()
        act()
        t.ended()
        print("%s to the program's end: %.3f s" % (what, time.monotonic() - began))

    t.choose_game(1)
    greeted(t.press_start)
    gx, gy = t.geometry(t.game)
    t.click(gx + 20, gy + 20)
    at = t.wait_for(lambda: button(t.shot()), 10, "the panel's button")
    check(not t.alerts_said("alert answered"), "a click beside the panel answered it")
    t.click(*at)
    t.answered(1)
    greeted(lambda: key(t, "Escape"))
    t.dismiss_alert()
    greeted(lambda: key(t, "Escape"))
    t.send_delete(t.game)
    t.wait_for(lambda: t.mapped(t.main) and not t.mapped(t.game), 10, "the main window after the close")
    greeted(t.press_start)
    ends(lambda: t.send_delete(t.main), "the close of the main window")
    t.launch()
    t.choose_game(1)
    greeted(t.press_start)
    ends(t.proc.terminate, "SIGTERM")


def main():
    run_test_script({"play": test_play, "game_end": test_game_end, "rules": test_rules, "flash": test_flash,
                     "alerts": test_alerts})


if __name__ == "__main__":
    main()
