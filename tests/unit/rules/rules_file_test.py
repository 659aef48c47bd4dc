#!/usr/bin/env python3
"""The rules file as other programs see it: a fresh launch writes an XML property list holding
the three built-in games value for value, and the game menu follows the file's own key order."""
import os
import plistlib
import subprocess
import sys
import tempfile

TOOL = sys.argv[1]
SAMPLE_WRITER = sys.argv[2]

NO_MORE_MOVES = "No more moves!  Press the 'esc' key to play again after clicking 'OK'."

START = {"EventID": 1, "EventType": 8, "ActionList": [
    {"ActionType": 8, "Direction": 2, "ActionID": 1},
    {"ActionType": 1, "Amount": 0, "ActionID": 2}]}

CLEARING_REMOVAL = {"EventID": 2, "EventType": 12, "ActionList": [
    {"ActionType": 1, "Amount": 1, "ActionID": 6},
    {"ActionType": 21, "ActionID": 4},
    {"ActionType": 19, "Direction": 3, "ActionID": 7},
    {"ActionType": 8, "Direction": 2, "ActionID": 3}]}

CLEARING_NO_MOVES = {"EventID": 3, "EventType": 11, "ActionList": [
    {"ActionType": 22, "ActionID": 11, "LowerIsBetter": 1},
    {"ActionType": 23, "ActionID": 5, "Message": NO_MORE_MOVES},
    {"ActionType": 26, "ActionID": 9, "VariableID": 1},
    {"ActionType": 27, "ActionID": 8, "VariableID": 1},
    {"ActionType": 2, "ActionID": 10, "Amount": 9}]}

COMMON = {"NumShapes": 1, "SetupRandomFill": 1, "SquareShapes": 1, "ColorsMatchShapes": 0,
          "HolesAllowed": 0, "HasLauncher": 0,
          "CompletionCriteria": [{"CompletionID": 1, "CompletionType": 7}],
          "VariableList": [{"VariableID": 1}]}


def swap(min_pieces, criteria):
    return [{"UserEventID": 1, "UserEventType": 3, "UserEventTriggerAction": {
        "ActionID": 11, "ActionType": 10, "MinPieces": min_pieces, "ActionCriteria": criteria,
        "RemovePieces": 1}}]


EXPECTED = {
    "Vexamor": dict(COMMON, **{
        "GameName": "Vexamor",
        "GameDescription": "Select any number of color regions and press the space bar to delete them.  "
                           "The board will collapse down and then empty columns will be removed.  The "
                           "objective is to end up with a completely cleared board.  Each deletion costs "
                           "you one point and remaining pieces cost you 10 points each.  Lower scores are "
                           "therefore better.",
        "BoardWidth": 8, "BoardHeight": 8, "NumColors": 4,
        "SupportedEvents": [START, CLEARING_REMOVAL, CLEARING_NO_MOVES],
        "SupportedUserEvents": [{"UserEventID": 1, "UserEventType": 9, "UserEventCharacter": 32},
                                {"UserEventID": 2, "UserEventType": 4, "MinimumPieces": 2}]}),
    "Trindle": dict(COMMON, **{
        "GameName": "Trindle",
        "GameDescription": "Swap any two different vertically or horizontally adjacent colors with a click, "
                           "hold and drag to make a group of two or more of the same color.  The matched "
                           "color sets will be removed from the board.  The objective is to clear the "
                           "board.  Each deletion costs you one point and remaining pieces cost you 10 "
                           "points each.  Lower scores are therefore better.",
        "BoardWidth": 12, "BoardHeight": 12, "NumColors": 3,
        "SupportedEvents": [START, CLEARING_REMOVAL, CLEARING_NO_MOVES],
        "SupportedUserEvents": swap(2, 19)}),
    "Glimmet": dict(COMMON, **{
        "GameName": "Glimmet",
        "GameDescription": "Swap any two different vertically or horizontally adjacent colors with a click, "
                           "hold and drag to make a line of three or more of the same color.  The matched "
                           "color sets will be removed from the board and the board filled randomly.  The "
                           "objective is to continue as long as possible.  Each clear is worth one point.  "
                           "Higher scores are therefore better.",
        "BoardWidth": 8, "BoardHeight": 8, "NumColors": 8, "SetupMaxLinearColors": 2,
        "SupportedEvents": [START,
                            {"EventID": 2, "EventType": 12, "ActionList": [
                                {"ActionType": 1, "Amount": 1, "ActionID": 6},
                                {"ActionType": 21, "ActionID": 4},
                                {"ActionType": 29, "ActionID": 12},
                                {"ActionType": 28, "ActionID": 7},
                                {"ActionType": 8, "Direction": 2, "ActionID": 3}]},
                            {"EventID": 3, "EventType": 11, "ActionList": [
                                {"ActionType": 22, "ActionID": 11},
                                {"ActionType": 23, "ActionID": 5, "Message": NO_MORE_MOVES}]}],
        "SupportedUserEvents": swap(3, 83)}),
}

failures = []


def check(condition, what):
    if not condition:
        failures.append(what)
        print("FAIL:", what)


def only_ints_and_strings(value, where):
    """Numbers are integer elements (never booleans or reals), texts are strings."""
    if isinstance(value, dict):
        for k, v in value.items():
            only_ints_and_strings(v, where + "/" + k)
    elif isinstance(value, list):
        for i, v in enumerate(value):
            only_ints_and_strings(v, "%s[%d]" % (where, i))
    else:
        check(type(value) in (int, str), "%s is a %s" % (where, type(value).__name__))


def run(data_home):
    env = dict(os.environ, XDG_DATA_HOME=data_home, HOME=data_home)
    p = subprocess.run([TOOL], env=env, capture_output=True, text=True, timeout=30)
    menu = p.stdout.split("menu:\n", 1)[1].splitlines() if "menu:\n" in p.stdout else None
    return p, menu


def rules_path(data_home):
    return os.path.join(data_home, "Tolvar", "RulesDict.dict")


with tempfile.TemporaryDirectory() as home:
    # A fresh launch writes the three games.
    p, menu = run(home)
    check(p.returncode == 0, "fresh launch exit code %d, stderr %r" % (p.returncode, p.stderr))
    check(p.stdout.startswith("code: 0\n"), "folder creation line: %r" % p.stdout[:20])
    check(menu == ["None", "Vexamor", "Trindle", "Glimmet"], "fresh menu %r" % menu)
    with open(rules_path(home), "rb") as f:
        raw = f.read()
    check(raw.startswith(b"<?xml"), "the rules file is XML: %r" % raw[:20])
    check(b"<!DOCTYPE plist" in raw and b"<plist" in raw, "the rules file is a property list")
    rules = plistlib.loads(raw, fmt=plistlib.FMT_XML)
    check(list(rules.keys()) == ["Vexamor", "Trindle", "Glimmet"], "file key order %r" % list(rules))
    for game, expected in EXPECTED.items():
        got = rules.get(game)
        check(isinstance(got, dict), "%s present" % game)
        if not isinstance(got, dict):
            continue
        check(sorted(got) == sorted(expected), "%s keys: extra %r missing %r" % (
            game, sorted(set(got) - set(expected)), sorted(set(expected) - set(got))))
        for key, value in expected.items():
            check(got.get(key) == value, "%s %s: %r != %r" % (game, key, got.get(key), value))
        only_ints_and_strings(got, game)

    # A second launch reads the file and leaves it as it is.
    p, menu = run(home)
    check(p.returncode == 0 and menu == ["None", "Vexamor", "Trindle", "Glimmet"], "second launch menu %r" % menu)
    with open(rules_path(home), "rb") as f:
        check(f.read() == raw, "the second launch left the file unchanged")

with tempfile.TemporaryDirectory() as home:
    # The menu follows the file's order, XML or binary, whatever the alphabet says.
    os.makedirs(os.path.join(home, "Tolvar"))
    games = {"Zeta": EXPECTED["Trindle"], "Alpha": {}, "Mid": EXPECTED["Vexamor"], "Beta": {"BoardWidth": 3}}
    for fmt in (plistlib.FMT_XML, plistlib.FMT_BINARY):
        with open(rules_path(home), "wb") as f:
            plistlib.dump(games, f, fmt=fmt, sort_keys=False)
        p, menu = run(home)
        check(p.returncode == 0, "own rules file exit code %d: %r" % (p.returncode, p.stderr))
        check(menu == ["None", "Zeta", "Alpha", "Mid", "Beta"], "menu in file order (%s): %r" % (fmt, menu))

with tempfile.TemporaryDirectory() as home:
    # A rules file that cannot be read is reported on one line and kept as it is.
    os.makedirs(os.path.join(home, "Tolvar"))
    broken = b"<?xml version=\"1.0\"?><plist><dict><key>Vexamor</key><dict><key>Board"
    with open(rules_path(home), "wb") as f:
        f.write(broken)
    p, menu = run(home)
    check(p.returncode == 1, "broken file exit code %d" % p.returncode)
    check(menu == [], "broken file leaves the menu empty: %r" % menu)
    check(p.stderr.count("\n") == 1 and rules_path(home) in p.stderr, "one line naming the file: %r" % p.stderr)
    with open(rules_path(home), "rb") as f:
        check(f.read() == broken, "the broken file is not written over")

with tempfile.TemporaryDirectory() as home:
    # Every kind of value the game writes (the best scores hold dates) reads back in plistlib.
    import datetime
    sample = os.path.join(home, "Sample.dict")
    check(subprocess.run([SAMPLE_WRITER, sample], timeout=30).returncode == 0, "sample written")
    with open(sample, "rb") as f:
        got = plistlib.load(f, fmt=plistlib.FMT_XML)
    want = {"Vexamor": [{"Score": -42, "Date": datetime.datetime(2023, 11, 14, 22, 13, 20)}],
            "Real": 2.5, "Yes": True, "No": False, "Bytes": b"\x00\x01\xff",
            "Text": "a<b & 'c' \u00e9 ]]>", "Big": 0x7fffffffffff, "Empty": [], "Nothing": {}}
    check(got == want, "sample reads back: %r" % got)
    check(list(got) == list(want), "sample key order: %r" % list(got))

if failures:
    print("%d check(s) failed" % len(failures))
    sys.exit(1)
print("rules file checks passed")
