#!/usr/bin/env python3
"""An alert over the game window, from a game whose start shows one (an event of type 8 whose action
is of type 23): no window of its own, answered with Return or a click on its button, and the program
answers SIGTERM and the close of its window while it is up.
run_e2e_alerts.py --program build/bin/tolvar --test return|click|sigterm|close"""
import os
import plistlib
import time

from tolvar_driver import check, near, run_test_script
from run_e2e_quiet import send_delete

BUTTON = (199, 214, 242)  # the panel's button, light blue
MESSAGE = "Welcome! Clear the board in as few moves as you can."
QUICK = 0.5  # seconds: what the window takes at most to answer a quit or a close


def start_with_alert(t):
    with open(os.path.join(t.folder, "RulesDict.dict"), "rb") as f:
        game = dict(plistlib.load(f)["Vexamor"], GameName="Greeting")
    game["SupportedEvents"] = game.get("SupportedEvents", []) + [
        {"EventID": 90, "EventType": 8, "ActionList": [{"ActionID": 91, "ActionType": 23, "Message": MESSAGE}]}]
    t.relaunch_with_rules({"Greeting": game})
    t.choose_game(1)
    t.press_start()
    said = t.wait_alert()
    check(said == MESSAGE + " [OK]", "the alert says %r" % said)
    others = [w for w in t.windows() if w[0] not in (t.game, t.main) and t.mapped(w[0]) and w[2] > 1 and w[3] > 1]
    check(not others, "windows beside the game's two: %r" % others)

def button_centre(t):  # where the panel's button shows on the screen, or None
    gx, gy = t.geometry(t.game)
    shot = t.shot()
    found = [(x, y) for y in range(gy, gy + 768, 4) for x in range(gx, gx + 1024, 4)
             if near(shot.pixel(x, y), BUTTON, 8)]
    return found and (sum(x for x, _ in found) / len(found), sum(y for _, y in found) / len(found))


def test_return(t):
    start_with_alert(t)
    t.xdo("windowfocus", "--sync", t.game, "key", "--window", t.game, "Return")
    t.answered(1)


def test_click(t):
    start_with_alert(t)
    gx, gy = t.geometry(t.game)
    t.click(gx + 20, gy + 20)  # beside the panel: nothing
    x, y = t.wait_for(lambda: button_centre(t), 10, "the panel's button")
    check(not t.alerts_said("alert answered"), "a click beside the panel answered it")
    t.click(x, y)
    t.answered(1)


def test_sigterm(t):
    start_with_alert(t)
    began = time.monotonic()
    t.proc.terminate()
    t.proc.wait(timeout=10)
    took = time.monotonic() - began
    print("SIGTERM to exit with the alert up: %.3f s" % took)
    check(took < QUICK, "the program took %.2f s to end" % took)
    check(t.proc.returncode == 0, "status %s" % t.proc.returncode)
    t.launch()  # for the check that ends every test


def test_close(t):
    start_with_alert(t)
    began = time.monotonic()
    send_delete(t, t.game)
    t.wait_for(lambda: t.mapped(t.main) and not t.mapped(t.game), 10, "the main window after the close")
    print("close of the game window to the main window: %.3f s" % (time.monotonic() - began))
    began = time.monotonic()
    send_delete(t, t.main)
    t.proc.wait(timeout=10)
    took = time.monotonic() - began
    print("close of the main window to exit: %.3f s" % took)
    check(took < QUICK, "the program took %.2f s to end" % took)
    t.launch()


def main():
    run_test_script({"return": test_return, "click": test_click, "sigterm": test_sigterm, "close": test_close})


if __name__ == "__main__":
    main()
