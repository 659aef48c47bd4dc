#!/usr/bin/env python3
"""The real game at rest and while it plays its removal flash, under its own Xvfb:
run_e2e_quiet.py --program build/bin/tolvar --test rest|close_in_flash|quit_in_flash"""

import ctypes
import os
import plistlib
import re
import sys
import time

sys.path.insert(0, os.path.dirname(os.path.abspath(__file__)))
from tolvar_driver import XLIB, check, run_test_script  # noqa: E402

MAP_NOTIFY, SUBSTRUCTURE_NOTIFY = 19, 1 << 19


class MapWatch:
    """Every window the X server maps on the display from now on, seen as MapNotify events of the root."""
    class Event(ctypes.Structure):
        _fields_ = [("type", ctypes.c_int), ("serial", ctypes.c_ulong), ("send_event", ctypes.c_int),
                    ("display", ctypes.c_void_p), ("event", ctypes.c_ulong), ("window", ctypes.c_ulong),
                    ("pad", ctypes.c_long * 20)]

    def __init__(self, display):
        XLIB.XOpenDisplay.argtypes = [ctypes.c_char_p]
        self.dpy = XLIB.XOpenDisplay(display.encode())
        check(self.dpy, "no connection to watch the windows")
        XLIB.XSelectInput.argtypes = [ctypes.c_void_p, ctypes.c_ulong, ctypes.c_long]
        XLIB.XPending.argtypes = [ctypes.c_void_p]
        XLIB.XNextEvent.argtypes = [ctypes.c_void_p, ctypes.c_void_p]
        XLIB.XSelectInput(self.dpy, XLIB.XDefaultRootWindow(self.dpy), SUBSTRUCTURE_NOTIFY)
        XLIB.XSync.argtypes = [ctypes.c_void_p, ctypes.c_int]
        XLIB.XSync(self.dpy, 0)
        self.mapped = []

    def read(self):
        event = self.Event()
        while XLIB.XPending(self.dpy):
            XLIB.XNextEvent(self.dpy, ctypes.byref(event))
            if event.type == MAP_NOTIFY:
                self.mapped.append(event.window)
        return self.mapped

    def close(self):
        XLIB.XCloseDisplay(self.dpy)


def flash_began(lines):
    """The selection test before a flash: "piece count up = N, min pieces = M" with N >= M."""
    counts = [re.match(r"piece count \w+ = (\d+), min pieces = (\d+)", line) for line in lines]
    return any(m and int(m[1]) >= int(m[2]) for m in counts)


def during_flash(t, act):
    """Swaps neighbours of two colours in "Trindle" until a group of two forms, and acts as soon as
    the tick that found it has run: the game has already removed the group, and the window is
    playing its flash (six frames, 0.6 s) with its own clock. Returns whether a swap formed a group."""
    lay = t.start(2, 12, 12)
    for attempt in range(8):
        colours = lay.colours(t.shot())
        x, y = next((x, y) for x in range(11) for y in range(attempt, 12)
                    if colours[x][y] and colours[x + 1][y] and colours[x][y] != colours[x + 1][y])
        since = len(t.stdout())
        (x0, y0), (x1, y1) = lay.centre(x, y), lay.centre(x + 1, y)
        t.xdo("mousemove", int(x0), int(y0), "mousedown", 1, "mousemove", int(x1), int(y1), "mouseup", 1)
        t.wait_for(lambda: "piece count" in t.stdout()[since:], 10, "the swap")
        # The tick that found the group has run; the window plays its flash (0.6 s) from now.
        if flash_began(t.stdout()[since:].splitlines()):
            act()
            return True
        t.wait_tick(since, "the swap's events")
    return False


def test_rest(t):
    t.start(1, 8, 8)
    time.sleep(0.5)
    rest = t.cpu_percent(3.0)
    check(rest < 2.0, "a board at rest uses %.1f %% of a core" % rest)


def test_close_in_flash(t):
    """The window manager's close of the game window during the flash: the main window comes
    back, and the program then quits cleanly."""
    check(during_flash(t, lambda: send_delete(t, t.game)), "no swap formed a group to flash")
    t.wait_for(lambda: t.mapped(t.main), 10, "the main window after closing the game window")
    t.wait_for(lambda: not t.mapped(t.game), 10, "the game window to close")
    t.quit()


def test_quit_in_flash(t):
    """SIGTERM, as the desktop sends it, during the flash ends the program cleanly, and keeps the
    game as it was before the tick that flashes: no points yet, its events still to run."""
    check(during_flash(t, t.proc.terminate), "no swap formed a group to flash")
    t.ended()
    with open(os.path.join(t.folder, "SavedGame.dict"), "rb") as f:
        kept = plistlib.load(f)["Trindle"]
    check(kept["Score"] == 0, "kept after the flashing tick: score %s" % kept["Score"])
    check(kept["PendingEvents"], "kept after the flashing tick: no events left to run")


def send_delete(t, wid):
    """A WM_DELETE_WINDOW message to window wid, as a window manager's close button sends it."""
    class ClientMessage(ctypes.Structure):
        _fields_ = [("type", ctypes.c_int), ("serial", ctypes.c_ulong), ("send_event", ctypes.c_int),
                    ("display", ctypes.c_void_p), ("window", ctypes.c_ulong), ("message_type", ctypes.c_ulong),
                    ("format", ctypes.c_int), ("data", ctypes.c_long * 5), ("pad", ctypes.c_long * 12)]
    XLIB.XInternAtom.restype = ctypes.c_ulong
    XLIB.XInternAtom.argtypes = [ctypes.c_void_p, ctypes.c_char_p, ctypes.c_int]
    XLIB.XSendEvent.argtypes = [ctypes.c_void_p, ctypes.c_ulong, ctypes.c_int, ctypes.c_long, ctypes.c_void_p]
    XLIB.XFlush.argtypes = [ctypes.c_void_p]
    window = int(wid, 16)
    message = ClientMessage(type=33, send_event=1, window=window, format=32,
                            message_type=XLIB.XInternAtom(t.dpy, b"WM_PROTOCOLS", 0))
    message.data[0] = XLIB.XInternAtom(t.dpy, b"WM_DELETE_WINDOW", 0)
    XLIB.XSendEvent(t.dpy, window, 0, 0, ctypes.byref(message))
    XLIB.XFlush(t.dpy)


def shown_only_after_start(t):
    """Windows mapped from launch on: only the main window, until Start."""
    t.quit()
    watch = MapWatch(t.display)
    try:
        t.launch()
        check(int(t.game, 16) not in watch.read(), "the game window was shown before Start")
    finally:
        watch.close()


def main():
    run_test_script({"rest": test_rest, "close_in_flash": test_close_in_flash, "quit_in_flash": test_quit_in_flash},
                    "quiet-", shown_only_after_start)


if __name__ == "__main__":
    main()
