"""Hostile rules files, made at test time: long texts, big arrays, huge keys and integers, byte-order
marks, keys written many times, and pipes, devices and sockets in place of a file.

Imported by the CTest suite (hostile_files_test.py) and the benchmark (tools/perf/bench_hostile_files.py).
"""
import os
import plistlib
import socket
import struct

GAME = {"GameName": "G",
        "SupportedEvents": [{"EventType": 8, "ActionList": [{"ActionType": 21}]},
                            {"EventType": 11, "ActionList": [{"ActionType": 22}]}],
        "SupportedUserEvents": [{"UserEventType": 4, "MinimumPieces": 2}],
        "CompletionCriteria": [{"CompletionType": 7}]}


def xml_with(extra_xml):
    """The XML text of the game G with extra_xml (keys and values) added to its dictionary."""
    text = plistlib.dumps({"G": GAME}).decode()
    return text.replace("<key>GameName</key>", extra_xml + "<key>GameName</key>", 1).encode()


def binary_array(count):
    return plistlib.dumps({"G": dict(GAME, Extra=list(range(count)))}, fmt=plistlib.FMT_BINARY)


def binary_wide_integer():
    """A binary file whose ScoreMultiplier is a 16-byte integer of 2^100 (plistlib writes at most 2^64 - 1)."""
    marker = 2**64 - 1
    data = plistlib.dumps({"G": dict(GAME, ScoreMultiplier=marker)}, fmt=plistlib.FMT_BINARY)
    wide = b"\x14" + b"\x00" * 8 + b"\xff" * 8
    assert data.count(wide) == 1
    return data.replace(wide, b"\x14" + (2**100).to_bytes(16, "big"))


def binary_duplicate_keys():
    """A binary file with BoardWidth twice in the game (plistlib shares one key object for both)."""
    data = plistlib.dumps({"G": dict(GAME, BoardWidth=5, BoardWidtX=6)}, fmt=plistlib.FMT_BINARY)
    assert data.count(b"BoardWidtX") == 1
    return data.replace(b"BoardWidtX", b"BoardWidth")


def _write(path, data):
    with open(path, "wb") as f:
        f.write(data)


def make_fifo(path):
    os.mkfifo(path)


def make_socket(path):
    s = socket.socket(socket.AF_UNIX, socket.SOCK_STREAM)
    s.bind(path)
    return s  # kept open by the caller for as long as the file is used


# name -> (how the file is made, what tolvar-check says, its exit status, what the game says when
# it reads the rules (tolvar-sim --rules; None when it plays), in a regular expression each.
# A maker returns bytes for a file, or is a callable taking the path.
CASES = {
    "long-description": (lambda: xml_with("<key>GameDescription</key><string>%s</string>" % ("word " * 20000)),
                         r"warning: G: GameDescription: the text is 100000 characters long; the window shows 4000",
                         0, None),
    "xml-array-1000000": (lambda: xml_with("<key>Extra</key><array>%s</array>" % ("<integer>7</integer>" * 1000000)),
                          r"warning: G: Extra: not a key of a game", 0, None),
    "binary-array-1000000": (lambda: binary_array(1000000), r":G/Extra: warning: G: Extra: not a key of a game", 0,
                             None),
    "huge-key": (lambda: xml_with("<key>%s</key><integer>1</integer>" % ("k" * 10_000_000)),
                 r"warning: G: k{100}k*: not a key of a game, so it is ignored\n", 0, None),
    "huge-integers": (lambda: xml_with("<key>ScoreMultiplier</key><integer>1000000000000000000000000000000</integer>"
                                       "<key>BoardWidth</key><integer>18446744073709551616</integer>"
                                       "<key>BoardHeight</key><integer>-9223372036854775809</integer>"),
                      r":\d+:\d+: error: G: ScoreMultiplier: the integer 1000000000000000000000000000000 does not fit"
                      r"(.|\n)*error: G: BoardWidth: the integer 18446744073709551616 does not fit"
                      r"(.|\n)*error: G: BoardHeight: the integer -9223372036854775809 does not fit", 1,
                      r"G/ScoreMultiplier: the integer 1000000000000000000000000000000 does not fit in 64 bits"),
    "binary-huge-integer": (binary_wide_integer,
                            r":G/ScoreMultiplier: error: G: ScoreMultiplier: the integer 1267650600228229401496703205376",
                            1, r"G/ScoreMultiplier: the integer 1267650600228229401496703205376 does not fit"),
    "byte-order-mark": (lambda: b"\xef\xbb\xbf" + plistlib.dumps({"G": dict(GAME, BoardWidht=3)}),
                        r"^[^\n]*:7:3: warning: G: BoardWidht: .*did you mean BoardWidth\?\n$", 0, None),
    "duplicate-keys": (lambda: xml_with("<key>BoardWidth</key><integer>5</integer>" * 100000),
                       r":\d+:\d+: error: G: BoardWidth: the key \"BoardWidth\" appears more than once"
                       r"(.|\n)*: error: 99899 more like the errors above", 1,
                       r"G/BoardWidth: the key \"BoardWidth\" appears more than once .*\(and 99998 more like it\)"),
    "binary-duplicate-keys": (binary_duplicate_keys,
                              r":G/BoardWidth: error: G: BoardWidth: the key \"BoardWidth\" appears more than once", 1,
                              r"G/BoardWidth: the key \"BoardWidth\" appears more than once"),
    "named-pipe": (make_fifo, r": error: is not a regular file \(a named pipe\)\n$", 1,
                   r"is not a regular file \(a named pipe\)"),
    "socket": (make_socket, r": error: is not a regular file \(a socket\)\n$", 1, r"is not a regular file \(a socket\)"),
}


def make(name, folder):
    """Makes the file of case name in folder; returns its path and what must stay open while it is used."""
    path = os.path.join(folder, name + ".dict")
    maker = CASES[name][0]
    if maker in (make_fifo, make_socket):
        return path, maker(path)
    _write(path, maker())
    return path, None
