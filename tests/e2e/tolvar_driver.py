"""Plays the real game under a private Xvfb: finds its windows with xwininfo, clicks and types with xdotool,
reads the screen through Xlib at positions from the game's layout, never from pictures the program made."""

import argparse
import ctypes
import os
import plistlib
import re
import shutil
import subprocess
import sys
import tempfile
import time

SCREEN_W, SCREEN_H, WIN_W, WIN_H, MAIN_W, MAIN_H = 1280, 1024, 1024, 768, 640, 540
MAIN_PAD_X, MAIN_PAD_Y, FONT_PX, ITEM_SPACING_Y = 16, 14, 17, 10
FRAME_H = FONT_PX + 2 * 6   # a button or the pop-up: the font and its frame padding
MENU_BAR_H = FRAME_H - 2    # the menu bar, less its own inset
POPUP_W, POPUP_PAD, POPUP_ROW = 260, 6, 30  # the game window's menu: the bound actions, the "Game" items, "Return..."
POPUP_ACTIONS, POPUP_GAME_ITEMS = 1, 7  # the actions the games played bind (Vexamor's "Remove Selection"); Game's
POPUP_H = 2 * POPUP_PAD + (POPUP_ACTIONS + POPUP_GAME_ITEMS + 1) * POPUP_ROW + 2 * 9  # ... a separator before each
HELP_W, HELP_H = 560, 620
COLOURS = ("red", "green", "blue", "purple")
SELECTED = (127, 25, 25)  # a selected piece's outline
SUBSTRUCTURE_NOTIFY, MAP_NOTIFY, CLIENT_MESSAGE = 1 << 19, 19, 33
P, INT, ULONG = ctypes.c_void_p, ctypes.c_int, ctypes.c_ulong
XLIB = ctypes.CDLL("libX11.so.6")
XLIB.XOpenDisplay.restype = XLIB.XGetImage.restype = P
XLIB.XOpenDisplay.argtypes = [ctypes.c_char_p]
XLIB.XGetImage.argtypes = [P, ULONG, INT, INT, ctypes.c_uint, ctypes.c_uint, ULONG, INT]
XLIB.XDefaultRootWindow.restype, XLIB.XDefaultRootWindow.argtypes = ULONG, [P]
XLIB.XInternAtom.restype, XLIB.XInternAtom.argtypes = ULONG, [P, ctypes.c_char_p, INT]
XLIB.XSelectInput.argtypes, XLIB.XSendEvent.argtypes = [P, ULONG, ctypes.c_long], [P, ULONG, INT, ctypes.c_long, P]
XLIB.XPending.argtypes = XLIB.XCloseDisplay.argtypes = XLIB.XFree.argtypes = XLIB.XFlush.argtypes = [P]
XLIB.XNextEvent.argtypes = [P, P]


class XImage(ctypes.Structure):
    _fields_ = [(n, INT) for n in "width height xoffset format".split()] + [("data", P)] + [(n, INT) for n in (
        "byte_order unit bit_order pad depth bytes_per_line bpp".split())] + [("red_mask", ULONG)]


class XEvent(ctypes.Structure):  # what a MapNotify (event, window) and a ClientMessage (window, atom, ...) share
    _fields_ = [("type", INT), ("serial", ULONG), ("send_event", INT), ("display", P), ("window", ULONG),
                ("second", ULONG), ("format", INT), ("data", ctypes.c_long * 5), ("pad", ctypes.c_long * 12)]


class Failure(Exception):
    pass


def check(condition, message):
    if not condition:
        raise Failure(message)


def near(colour, target, tolerance=30):
    return all(abs(a - b) <= tolerance for a, b in zip(colour, target))


def classify(p):  # the pieces are lit in pure colours; the nebula behind them, shading and stars are not
    r, g, b = p
    if max(p) < 70 or min(p) * 3 > max(p):
        return None
    if r > g + 50 and b > g + 50 and abs(r - b) < 90:
        return "purple"
    return next((name for name, c, o1, o2 in (("red", r, g, b), ("green", g, r, b), ("blue", b, r, g))
                 if c > o1 + 50 and c > o2 + 50), None)


class Screen:  # one screenshot of the whole display: B, G, R and a pad byte a pixel
    def __init__(self, dpy):
        ptr = XLIB.XGetImage(dpy, XLIB.XDefaultRootWindow(dpy), 0, 0, SCREEN_W, SCREEN_H, 0xffffffff, 2)
        check(ptr, "no screenshot")
        image = XImage.from_address(ptr)
        ok = (image.bpp, image.bytes_per_line, image.byte_order, image.red_mask) == (32, SCREEN_W * 4, 0, 0xff0000)
        self.raw = ctypes.string_at(image.data, SCREEN_W * SCREEN_H * 4)
        XLIB.XFree(image.data)
        XLIB.XFree(ptr)
        check(ok, "the screen is not 24-bit colour in 32-bit pixels")

    def pixel(self, x, y):
        x, y = int(round(x)), int(round(y))
        i = (y * SCREEN_W + x) * 4
        return (self.raw[i + 2], self.raw[i + 1], self.raw[i]) if 0 <= x < SCREEN_W and 0 <= y < SCREEN_H else (0, 0, 0)

    def count(self, x0, y0, x1, y1, predicate, step=1):
        return sum(1 for y in range(int(y0), int(y1), step) for x in range(int(x0), int(x1), step)
                   if predicate(self.pixel(x, y)))


class Layout:
    """Where the board lies in the game window at origin (screen): square cells filling the height
    less a 10-pixel margin, centred across; window coordinates start at the lower left. In a window
    of another size (screen pixels), the 1024 x 768 picture is scaled to fit, between bars."""
    def __init__(self, board_w, board_h, origin, size=(WIN_W, WIN_H)):
        self.board_w, self.board_h, self.origin, self.m = board_w, board_h, origin, 10.0
        self.w = (WIN_H - 2 * self.m) / board_h
        self.pw, self.left = self.w - 3, (WIN_W - self.w * board_w) / 2
        self.scale = min(size[0] / WIN_W, size[1] / WIN_H)
        self.bar = ((size[0] - round(WIN_W * self.scale)) // 2, (size[1] - round(WIN_H * self.scale)) // 2)

    def cell_rect(self, x, y):  # the piece's rectangle, in window coordinates
        return (x * self.w + self.left, y * self.w + self.m, self.pw, self.pw)

    def to_screen(self, X, Y):
        return (self.origin[0] + self.bar[0] + X * self.scale, self.origin[1] + self.bar[1] + (WIN_H - Y) * self.scale)

    def centre(self, x, y):
        X, Y, W, H = self.cell_rect(x, y)
        return self.to_screen(X + W / 2, Y + H / 2)

    def cells(self):
        return [(x, y) for x in range(self.board_w) for y in range(self.board_h)]

    def colours(self, screen):  # [x][y]: each cell's piece colour, by a vote of the pixels round its centre
        def vote(cx, cy, r=max(4, int(self.pw * 0.3 * self.scale))):
            votes = [classify(screen.pixel(px, py)) for py in range(int(cy - r), int(cy + r), max(2, r // 12))
                     for px in range(int(cx - r), int(cx + r), max(2, r // 12))]
            best = max(COLOURS, key=votes.count)
            return best if votes.count(best) >= len(votes) * 0.25 else None
        return [[vote(*self.centre(x, y)) for y in range(self.board_h)] for x in range(self.board_w)]

    def outline_pixels(self, shot, x, y):
        """Pixels of the selection colour on the outline round cell (x, y)."""
        X, Y, W, H = self.cell_rect(x, y)
        edges = [p for i in range(2, int(W) - 2, 3) for p in ((X + i, Y - 1), (X + i, Y + H + 1), (X - 1, Y + i),
                                                              (X + W + 1, Y + i))]
        return sum(touches(shot, self.to_screen(*p), SELECTED) for p in edges)


def full(colours):
    return all(c for col in colours for c in col)


def touches(shot, point, colour):  # a line 3 pixels wide: one of the pixels round the point has its colour
    return any(near(shot.pixel(point[0] + dx, point[1] + dy), colour) for dx in (-1, 0, 1) for dy in (-1, 0, 1))


def key(t, *keys):  # keys typed into the game window, one after the other
    t.xdo("windowfocus", "--sync", t.game, "key", "--delay", 60, *keys)


def select_region(t, lay):
    """Clicks a piece of a region of two or more on a board that may have holes, and waits for the region to
    be outlined. Returns the region's size and the point clicked."""
    colours, n, m = lay.colours(t.shot()), lay.board_w, lay.board_h
    region = [next(((x, y) for x in range(n) for y in range(m) for nx, ny in ((x + 1, y), (x, y + 1))
                    if nx < n and ny < m and colours[x][y] and colours[x][y] == colours[nx][ny]), None)]
    check(region[0], "no region of two on the board")
    for x, y in region:  # grows as the region's neighbours of its colour are found
        region += [q for q in ((x + 1, y), (x - 1, y), (x, y + 1), (x, y - 1)) if q not in region and 0 <= q[0] < n
                   and 0 <= q[1] < m and colours[q[0]][q[1]] == colours[x][y]]
    t.click(*lay.centre(*region[0]))
    t.wait_shot(lambda s: all(lay.outline_pixels(s, *c) > 20 for c in region), "the outline of %s" % region)
    return len(region), lay.centre(*region[0])


def removes(t, lay, removed, act, before=None):
    """act removes the selection of a board of `before` pieces (a full board when not given), whose emptied
    cells queue an event: the pieces above fall. Returns the pieces left."""
    before = lay.board_w * lay.board_h if before is None else before
    since = len(t.stdout())
    act()
    t.wait_tick(since, "the pieces-removed event and the falls after it")

    def problem(colours):
        pieces = sum(1 for col in colours for c in col if c)
        if pieces != before - removed:
            return "%d pieces left after %d went" % (pieces, removed)
        return next(("a hole under a piece: %s" % col for col in colours
                     if [bool(c) for c in col] != sorted((bool(c) for c in col), reverse=True)), None)
    t.wait_right(lambda: lay.colours(t.shot()), problem)
    return before - removed


def start_xvfb():
    """An X server of its own: (process, display name, an open connection to it that hears of every window
    mapped). Another server may race for the same display number: then a new one is started."""
    for _ in range(3):
        r, w = os.pipe()
        xvfb = subprocess.Popen(["Xvfb", "-displayfd", str(w), "-screen", "0", "%dx%dx24" % (SCREEN_W, SCREEN_H),
                                 "-nolisten", "tcp", "-noreset"], pass_fds=(w,), stderr=subprocess.DEVNULL)
        os.close(w)
        with os.fdopen(r, "rb") as f:
            display = ":" + f.readline().strip().decode()
        dpy = XLIB.XOpenDisplay(display.encode())
        if dpy:
            XLIB.XSelectInput(dpy, XLIB.XDefaultRootWindow(dpy), SUBSTRUCTURE_NOTIFY)
            return xvfb, display, dpy
        xvfb.terminate()
        xvfb.wait()
    check(False, "the X server does not answer")


class Tolvar:  # the program on a display of its own, with an empty data folder (or another copy's)
    def __init__(self, program, name, seed=7, folder=None, args=()):
        self.program, self.proc, self.xvfb, self.dpy, self.runs = program, None, None, None, 0
        self.args = list(args)  # the program's command line, for each launch
        self.game = self.main = self.playing = None
        self.work = tempfile.mkdtemp(prefix="tolvar-e2e-%s-" % name)
        self.folder = folder or os.path.join(self.work, "data", "Tolvar")
        try:
            self.xvfb, self.display, self.dpy = start_xvfb()  # the connection is for screenshots
            self.env = dict(os.environ, DISPLAY=self.display, XDG_DATA_HOME=os.path.dirname(self.folder),
                            TOLVAR_SEED=str(seed), LC_ALL="C", SDL_VIDEODRIVER="x11",
                            SDL_AUDIODRIVER="dummy")  # the sounds play to no device of the machine's
            self.launch()
        except BaseException:
            self.close()
            raise

    def launch(self):  # (again) on this display, with this data folder
        self.runs, self.over, self.mapped_ids = self.runs + 1, False, []
        self.maps()
        self.out_path, self.err_path = (os.path.join(self.work, "%s-%d.txt" % (s, self.runs)) for s in ("out", "err"))
        t0 = time.monotonic()
        with open(self.out_path, "wb") as out, open(self.err_path, "wb") as err:
            self.proc = subprocess.Popen([self.program, *self.args], env=self.env, cwd=self.work, stdout=out, stderr=err)
        self.main = self.wait_for(lambda: self.find_window(MAIN_W, MAIN_H, True), 60, "the main window")
        self.startup_seconds = time.monotonic() - t0
        # The game window is made, hidden, once the main window is up; it takes its name when ready (the
        # game's name before it, when one is started from the command line).
        self.game = self.wait_for(lambda: next((wid for wid, n, w, h in self.windows() if (w, h) == (WIN_W, WIN_H)
                                                and (n == "Tolvar" or n.endswith(" - Tolvar"))), None),
                                  60, "the game window")

    def maps(self):  # the ids of the windows mapped since the launch
        event = XEvent()
        while XLIB.XPending(self.dpy):
            XLIB.XNextEvent(self.dpy, ctypes.byref(event))
            self.mapped_ids += [event.second] if event.type == MAP_NOTIFY else []
        return self.mapped_ids

    def send_delete(self, wid):  # WM_DELETE_WINDOW, as a window manager's close button sends it
        message = XEvent(type=CLIENT_MESSAGE, send_event=1, window=int(wid, 16), format=32,
                         second=XLIB.XInternAtom(self.dpy, b"WM_PROTOCOLS", 0))
        message.data[0] = XLIB.XInternAtom(self.dpy, b"WM_DELETE_WINDOW", 0)
        XLIB.XSendEvent(self.dpy, int(wid, 16), 0, 0, ctypes.byref(message))
        XLIB.XFlush(self.dpy)

    def finish(self):  # as the desktop ends it: SIGTERM, taken as Quit; unless a test ended it already
        if self.over:
            return
        check(self.proc.poll() is None, "the program is still running at the end")
        self.proc.terminate()
        self.ended()

    def quit(self):
        self.xdo("windowfocus", "--sync", self.main, "key", "ctrl+q")
        self.ended()

    def ended(self):  # status 0 and no report of the sanitizers
        status, err = self.proc.wait(timeout=20), self.stdout(self.err_path)
        self.over = True
        for marker in ("AddressSanitizer", "LeakSanitizer", "runtime error:"):
            check(marker not in err, "the sanitizers report a fault:\n" + err[-3000:])
        check(status == 0, "the program ended with status %s\n%s" % (status, err[-2000:]))

    def close(self):
        if self.dpy:
            XLIB.XCloseDisplay(self.dpy)
        for p in filter(None, (self.proc, self.xvfb)):
            p.terminate()
            try:
                p.wait(timeout=10)
            except subprocess.TimeoutExpired:
                p.kill()
        if not os.environ.get("TOLVAR_E2E_KEEP"):
            shutil.rmtree(self.work, ignore_errors=True)

    def stdout(self, path=None):
        with open(path or self.out_path, "rb") as f:
            return f.read().decode("utf-8", "replace")

    def cpu_percent(self, seconds):  # user + system time over the next seconds, in % of one core
        def used():
            with open("/proc/%d/stat" % self.proc.pid) as f:
                fields = f.read().rsplit(")", 1)[1].split()
            return (int(fields[11]) + int(fields[12])) / os.sysconf("SC_CLK_TCK"), time.monotonic()
        (c0, t0), _, (c1, t1) = used(), time.sleep(seconds), used()
        return 100.0 * (c1 - c0) / (t1 - t0)

    def main_thread_wakeups(self):  # the times the program's main thread has woken so far
        with open("/proc/%d/task/%d/status" % (self.proc.pid, self.proc.pid)) as f:
            return next(int(l.split()[1]) for l in f if l.startswith("voluntary_ctxt_switches:"))

    def check_idle(self, what):  # a program at rest takes no processor time and does not wake
        time.sleep(0.5)
        woken = self.main_thread_wakeups()
        used = self.cpu_percent(3.0)
        woken = self.main_thread_wakeups() - woken
        print("%s: %.1f %% of a core, %d wake-ups in 3 s" % (what, used, woken))
        check(used < 2.0, "%s uses %.1f %% of a core" % (what, used))
        check(woken <= 3, "%s woke %d times in 3 s with nothing to do" % (what, woken))

    def wait_for(self, condition, timeout, what):
        deadline = time.monotonic() + timeout
        while not (value := condition()):
            check(self.proc.poll() is None, "the program ended (status %s) while waiting for %s\n%s"
                  % (self.proc.returncode, what, self.stdout(self.err_path)[-2000:]))
            check(time.monotonic() < deadline, "timed out waiting for " + what)
            time.sleep(0.05)
        return value

    def wait_shot(self, predicate, what, timeout=10):  # returns the screenshot
        return self.wait_for(lambda: (lambda s: predicate(s) and s)(self.shot()), timeout, what)

    def wait_tick(self, since, what, timeout=20):
        """Until the output after character `since` holds an event whose every action has begun: the
        game's events end in a score or a check, so the pieces that moved in it have landed."""
        with open(os.path.join(self.folder, "RulesDict.dict"), "rb") as f:
            game = list(plistlib.load(f).values())[self.playing]
        sizes = {e["EventID"]: len(e.get("ActionList", [])) for e in game.get("SupportedEvents", [])}

        def over():
            lines = self.stdout()[since:].splitlines()
            starts = [i for i, line in enumerate(lines) if line.startswith("processing event ")]
            return starts and sum(line.startswith("action ") for line in lines[starts[-1] + 1:]) >= sizes.get(
                int(lines[starts[-1]].split()[2]), 0)
        self.wait_for(over, timeout, what)

    def wait_right(self, look, problem, timeout=10):
        """Until problem(look()) finds nothing wrong (None); fails with what it last found. Returns what was seen."""
        seen = [None]

        def right():
            seen[0] = look()
            return problem(seen[0]) is None
        try:
            self.wait_for(right, timeout, "the expected state")
        except Failure:
            check(self.proc.poll() is not None, problem(seen[0]))
            raise
        return seen[0]

    def save_rules(self, games):  # as an editor saves: a new file renamed over the old one
        path = os.path.join(self.folder, "RulesDict.dict")
        with open(path + ".new", "wb") as f:
            f.write(games if isinstance(games, bytes) else plistlib.dumps(games, sort_keys=False))
        os.replace(path + ".new", path)

    def rules(self):
        with open(os.path.join(self.folder, "RulesDict.dict"), "rb") as f:
            return plistlib.load(f)

    def relaunch_with_rules(self, games):  # quits, writes these games as the rules file and starts again
        self.quit()
        self.save_rules(games)
        self.launch()

    def relaunch_with_one_move_game(self):  # "Tiny": "Vexamor" on a 2 x 1 board of one colour, alone in the rules
        self.relaunch_with_rules({"Tiny": dict(self.rules()["Vexamor"], GameName="Tiny", BoardWidth=2, BoardHeight=1,
                                               NumColors=1)})

    def shot(self):
        return Screen(self.dpy)

    def xdo(self, *args):
        subprocess.run(["xdotool"] + [str(a) for a in args], env=self.env, check=True, timeout=20,
                       stdout=subprocess.DEVNULL)

    def click(self, x, y, button=1):
        self.xdo("mousemove", int(round(x)), int(round(y)), "click", button)

    def xwininfo(self, *args):
        return subprocess.run(["xwininfo", "-display", self.display] + list(args), stdout=subprocess.PIPE,
                              stderr=subprocess.DEVNULL, timeout=30).stdout.decode("utf-8", "replace")

    def windows(self):  # the top-level ones: (id, name, width, height)
        return [(m[1], m[2][1:-1] if m[2].startswith('"') else "", int(m[3]), int(m[4])) for m in re.finditer(
            r'(0x[0-9a-f]+) ("[^"\n]*"|\(has no name\)).*?\s(\d+)x(\d+)\+', self.xwininfo("-root", "-children"))]

    def mapped(self, wid):
        return "IsViewable" in self.xwininfo("-id", wid)

    def geometry(self, wid):
        info = self.xwininfo("-id", wid)
        return tuple(int(re.search(r"Absolute upper-left %s:\s+(-?\d+)" % a, info)[1]) for a in "XY")

    def find_window(self, w, h, mapped=None, name=None):
        return next((wid for wid, n, ww, hh in self.windows()
                     if (ww, hh) == (w, h) and name in (None, n) and mapped in (None, self.mapped(wid))), None)

    def alerts(self):  # mapped windows that are none of the game's own
        return [(wid, name) for wid, name, w, h in self.windows()
                if wid not in (self.game, self.main) and w not in (WIN_W, MAIN_W, POPUP_W, HELP_W) and w > 1 and h > 1
                and self.mapped(wid)]

    def alerts_said(self, what="alert: "):  # the alerts the program says it showed (or "alert answered")
        return [line.split(what, 1)[1] for line in self.stdout(self.err_path).splitlines()
                if line.startswith("tolvar: " + what)]

    def wait_alert(self, timeout=15):  # until the next alert is up over the game; returns "MESSAGE [BUTTON]"
        shown = len(self.alerts_said("alert answered"))
        return self.wait_for(lambda: self.alerts_said()[shown:], timeout, "an alert over the game")[0]

    def answered(self, count, timeout=15):  # until count alerts have been answered
        self.wait_for(lambda: len(self.alerts_said("alert answered")) >= count, timeout, "the alert to be answered")

    def dismiss_alert(self, timeout=15):  # answers the next alert with Return; returns "MESSAGE [BUTTON]"
        said = self.wait_alert(timeout)
        count = len(self.alerts_said("alert answered"))
        self.xdo("windowfocus", "--sync", self.game, "key", "--window", self.game, "Return")
        self.answered(count + 1)
        return said

    # The main window's fixed controls.
    def combo_centre(self):  # under the menu bar, the padding, a spacer and its gap
        mx, my = self.geometry(self.main)
        return mx + MAIN_W / 2 + 40, my + MENU_BAR_H + MAIN_PAD_Y + 2 + ITEM_SPACING_Y + FRAME_H / 2

    def description_ink(self, dark):  # a count on a screenshot: the main window's description, in dark text
        mx, my = self.geometry(self.main)
        return lambda shot: shot.count(mx + MAIN_PAD_X + 4, my + 190, mx + MAIN_W - MAIN_PAD_X - 4, my + MAIN_H - 80,
                                       lambda p: max(p) < dark, step=2)

    def error_ink(self):  # a count on a screenshot: the main window's error lines, drawn in dark red
        mx, my = self.geometry(self.main)
        return lambda shot: shot.count(mx + 20, my + 150, mx + MAIN_W - 20, my + MAIN_H - 20,
                                       lambda p: near(p, (191, 0, 0), 40))

    def choose_game(self, index):  # the index-th entry ("None" is 0) of the game pop-up, listed under it
        self.playing = index - 1
        cx, cy = self.combo_centre()
        self.click(cx, cy)

        def is_open(shot):  # the pop-up's list covers the grey under the control
            return not near(shot.pixel(cx + 200, cy + FRAME_H / 2 + MAIN_PAD_Y + FONT_PX / 2), (240, 240, 242), 4)
        self.wait_shot(is_open, "the game pop-up to open")
        self.click(cx, cy + FRAME_H / 2 + MAIN_PAD_Y + FONT_PX / 2 + index * (FONT_PX + ITEM_SPACING_Y))
        self.wait_shot(lambda s: not is_open(s), "the game pop-up to close")

    def open_menu(self, at):  # the game window's right-click menu, opened at `at`; returns its corner
        self.click(*at, button=3)
        px, py = self.geometry(self.wait_for(lambda: self.find_window(POPUP_W, POPUP_H, True), 10, "the menu"))
        box = (px + 8, py + POPUP_PAD + 4, px + 200, py + POPUP_PAD + 26)  # the first item's text on a light ground
        self.wait_shot(lambda s: s.count(*box, lambda p: max(p) < 200) > 20 and
                       s.count(*box, lambda p: min(p) > 200) > 2000, "the menu's first item")
        return px, py

    def click_start(self):  # the main window's Start button, at its bottom right
        mx, my = self.geometry(self.main)
        self.click(mx + MAIN_W - MAIN_PAD_X - 60, my + MAIN_H - MAIN_PAD_Y - FRAME_H / 2)

    def press_start(self):
        self.click_start()
        self.wait_for(lambda: self.mapped(self.game), 10, "the game window to show")

    def continue_button(self):  # left of Return and Start
        mx, my = self.geometry(self.main)
        return mx + MAIN_W - MAIN_PAD_X - 2 * 130 - 60, my + MAIN_H - MAIN_PAD_Y - FRAME_H / 2

    def press_continue(self):
        self.click(*self.continue_button())
        self.wait_for(lambda: self.mapped(self.game), 10, "the game window to show")

    def help_window(self, title="Tolvar Help"):
        return self.wait_for(lambda: self.find_window(HELP_W, HELP_H, True, title), 10, "the window " + title)

    def close_help(self, helpw):
        self.xdo("windowfocus", "--sync", helpw, "key", "Escape")
        self.wait_for(lambda: not self.mapped(helpw), 10, "the help to close")

    def back_to_main(self, *keys):  # keys typed into the game window, and the main window shown again
        key(self, *keys)
        self.wait_for(lambda: self.mapped(self.main), 10, "the main window")

    def start(self, index, board_w, board_h):  # waits for the board; returns its layout
        self.choose_game(index)
        self.press_start()
        self.wait_for(lambda: not self.mapped(self.main), 10, "the main window to hide")
        layout = Layout(board_w, board_h, self.geometry(self.game))
        self.wait_shot(lambda s: full(layout.colours(s)), "a piece in every cell")
        return layout


def ink_runs(positions, gap):
    """[first, last] of each run of positions no more than gap apart."""
    runs = []
    for p in positions:
        if runs and p - runs[-1][1] <= gap:
            runs[-1][1] = p
        else:
            runs.append([p, p])
    return runs


def run_test_script(tests, make=None):
    """--program P --test NAME: runs tests[NAME](t) on a Tolvar of its own, or on make(program, NAME)."""
    parser = argparse.ArgumentParser()
    parser.add_argument("--program", required=True)
    parser.add_argument("--test", required=True, choices=tuple(tests))
    args = parser.parse_args()
    t = (make or Tolvar)(os.path.abspath(args.program), args.test)
    try:
        tests[args.test](t)
        t.finish()
    except Failure as e:
        sys.exit("FAILED %s: %s" % (args.test, e))
    finally:
        t.close()
    print("passed", args.test)
