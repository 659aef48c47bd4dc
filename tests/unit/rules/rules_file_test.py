#!/usr/bin/env python3
"""A fresh launch writes the three built-in games, value for value, as an XML property list."""
import os
import pathlib
import plistlib
import re
import subprocess
import sys
import tempfile

TOOL = sys.argv[1]
MENU = ["None", "Vexamor", "Trindle", "Glimmet"]
START = {"EventID": 1, "EventType": 8, "ActionList": [{"ActionType": 8, "Direction": 2, "ActionID": 1},
                                                      {"ActionType": 1, "Amount": 0, "ActionID": 2}]}
SCORING = [{"ActionType": 1, "Amount": 1, "ActionID": 6}, {"ActionType": 21, "ActionID": 4}]
COLLAPSE = {"ActionType": 8, "Direction": 2, "ActionID": 3}
ALERT = {"ActionType": 23, "ActionID": 5, "Message": "No more moves!  Press the 'esc' key to play again after clicking 'OK'."}
CLEARING = [START,
            {"EventID": 2, "EventType": 12, "ActionList": SCORING + [
                {"ActionType": 19, "Direction": 3, "ActionID": 7}, COLLAPSE]},
            {"EventID": 3, "EventType": 11, "ActionList": [
                {"ActionType": 22, "ActionID": 11, "LowerIsBetter": 1}, ALERT,
                {"ActionType": 26, "ActionID": 9, "VariableID": 1}, {"ActionType": 27, "ActionID": 8, "VariableID": 1},
                {"ActionType": 2, "ActionID": 10, "Amount": 9}]}]
COMMON = {"NumShapes": 1, "SetupRandomFill": 1, "SquareShapes": 1, "ColorsMatchShapes": 0, "HolesAllowed": 0,
          "HasLauncher": 0, "CompletionCriteria": [{"CompletionID": 1, "CompletionType": 7}],
          "VariableList": [{"VariableID": 1}]}
SWAP = ("Swap any two different vertically or horizontally adjacent colors with a click, hold and drag to make a %s "
        "of the same color.  The matched color sets will be removed from the board")
CLEAR_GOAL = ("The objective is to clear the board.  Each deletion costs you one point and remaining pieces cost "
              "you 10 points each.  Lower scores are therefore better.")


def swap(min_pieces, criteria):
    return [{"UserEventID": 1, "UserEventType": 3, "UserEventTriggerAction": {
        "ActionID": 11, "ActionType": 10, "MinPieces": min_pieces, "ActionCriteria": criteria, "RemovePieces": 1}}]


EXPECTED = {
    "Vexamor": dict(COMMON, GameName="Vexamor", BoardWidth=8, BoardHeight=8, NumColors=4, SupportedEvents=CLEARING,
                    GameDescription="Select any number of color regions and press the space bar to delete them.  The "
                    "board will collapse down and then empty columns will be removed.  " + CLEAR_GOAL.replace(
                        "clear the board", "end up with a completely cleared board"),
                    SupportedUserEvents=[{"UserEventID": 1, "UserEventType": 9, "UserEventCharacter": 32},
                                         {"UserEventID": 2, "UserEventType": 4, "MinimumPieces": 2}]),
    "Trindle": dict(COMMON, GameName="Trindle", BoardWidth=12, BoardHeight=12, NumColors=3, SupportedEvents=CLEARING,
                    GameDescription=SWAP % "group of two or more" + ".  " + CLEAR_GOAL, SupportedUserEvents=swap(2, 19)),
    "Glimmet": dict(COMMON, GameName="Glimmet", BoardWidth=8, BoardHeight=8, NumColors=8, SetupMaxLinearColors=2,
                    GameDescription=SWAP % "line of three or more" + " and the board filled randomly.  The objective "
                    "is to continue as long as possible.  Each clear is worth one point.  Higher scores are therefore "
                    "better.", SupportedUserEvents=swap(3, 83),
                    SupportedEvents=[START, {"EventID": 2, "EventType": 12, "ActionList": SCORING + [
                        {"ActionType": 29, "ActionID": 12}, {"ActionType": 28, "ActionID": 7}, COLLAPSE]},
                        {"EventID": 3, "EventType": 11, "ActionList": [{"ActionType": 22, "ActionID": 11}, ALERT]}]),
}


def run(home):
    p = subprocess.run([TOOL], env=dict(os.environ, XDG_DATA_HOME=home, HOME=home), capture_output=True,
                       text=True, timeout=30)
    return p, p.stdout.partition("menu:\n")[2].splitlines()


with tempfile.TemporaryDirectory() as home:
    rules_file = pathlib.Path(home, "Tolvar", "RulesDict.dict")
    p, menu = run(home)
    assert p.returncode == 0 and p.stdout.startswith("code: 0\n") and menu == MENU, (p, menu)
    raw = rules_file.read_bytes()
    assert raw.startswith(b"<?xml") and b"<!DOCTYPE plist" in raw, raw[:60]
    rules = plistlib.loads(raw, fmt=plistlib.FMT_XML)
    assert list(rules) == MENU[1:], list(rules)
    for game, want in EXPECTED.items():
        for key in sorted(set(rules[game]) | set(want)):
            assert rules[game].get(key) == want.get(key), (game, key, rules[game].get(key), want.get(key))
    # plistlib reads <true/> as True, which equals 1: numbers must be integer elements.
    assert not re.search(rb"<(true|false|real|date|data)\b", raw), "only integers and strings"
    p, menu = run(home)
    # The folder exists now, and the file is read as it is.
    assert p.returncode == 0 and menu == MENU and "code" not in p.stdout and rules_file.read_bytes() == raw, (p, menu)
print("rules file checks passed")
