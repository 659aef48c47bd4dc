#!/usr/bin/env python3
"""A fresh launch writes the three built-in games as an XML property list that another program (Python's
plistlib) reads back with the same kinds of values: dictionaries of games, integers that stay integers."""
import os
import pathlib
import plistlib
import re
import subprocess
import sys
import tempfile

TOOL = sys.argv[1]
MENU = ["None", "Vexamor", "Trindle", "Glimmet"]


def run(home):
    p = subprocess.run([TOOL], env=dict(os.environ, XDG_DATA_HOME=home, HOME=home), capture_output=True,
                       text=True, timeout=30)
    return p, p.stdout.partition("menu:\n")[2].splitlines()


with tempfile.TemporaryDirectory() as home:
    rules_file = pathlib.Path(home, "Tolvar", "RulesDict.dict")
    p, menu = run(home)
    assert p.returncode == 0, p
    assert p.stdout.startswith("code: 0\n"), p.stdout  # the folder was made
    assert menu == MENU, menu
    raw = rules_file.read_bytes()
    assert raw.startswith(b"<?xml") and b"<!DOCTYPE plist" in raw, raw[:60]
    rules = plistlib.loads(raw, fmt=plistlib.FMT_XML)
    assert list(rules) == MENU[1:], list(rules)
    for game, rules_of_game in rules.items():
        assert rules_of_game["GameName"] == game, (game, rules_of_game["GameName"])
        assert rules_of_game["GameDescription"], game
        events = rules_of_game["SupportedEvents"] + rules_of_game["SupportedUserEvents"]
        assert [type(v) for e in events for k, v in e.items() if k.endswith("Type")] == [int] * len(events), events
    # plistlib reads <true/> as True, which equals 1: numbers must be integer elements.
    assert not re.search(rb"<(true|false|real|date|data)\b", raw), "only integers and strings"
    p, menu = run(home)
    # The folder exists now, and the file is read as it is.
    assert p.returncode == 0, p
    assert menu == MENU, menu
    assert "code" not in p.stdout, p.stdout
    assert rules_file.read_bytes() == raw, "the file was written again"
print("rules file checks passed")
