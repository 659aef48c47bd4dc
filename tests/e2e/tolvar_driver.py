"""Drives the real game under a private Xvfb: starts the program, finds its windows, clicks and
types with xdotool, and reads the screen back with ImageMagick's import.

Probe positions are computed from the game's layout (the board in the game window, the main
window's fixed controls), never taken from pictures the program made earlier.
"""

import os
import plistlib
import re
import shutil
import subprocess
import tempfile
import time

SCREEN_W, SCREEN_H = 1280, 1024
WIN_W, WIN_H = 1024, 768

# The main window (its layout constants, as the main window lays itself out).
MAIN_W, MAIN_H = 640, 540
MAIN_PAD_X, MAIN_PAD_Y = 16, 14
FONT_PX = 17
FRAME_H = FONT_PX + 2 * 6          # a button or the pop-up: the font and its frame padding
MENU_BAR_H = FONT_PX + 2 * 6 - 2   # ImGui's menu bar: font + frame padding (y), less its own inset
ITEM_SPACING_Y = 10

# The "Actions" pop-up of the game window.
POPUP_PAD, POPUP_ROW, POPUP_ITEMS, POPUP_SEP = 6, 30, 8, 9

COLOURS = ("red", "green", "blue", "purple")


class Failure(Exception):
    pass


def check(condition, message):
    if not condition:
        raise Failure(message)


class Screen:
    """One screenshot of the whole display, as raw RGB bytes."""

    def __init__(self, display, save_as=None):
        raw = subprocess.run(["import", "-display", display, "-window", "root", "-depth", "8", "rgb:-"],
                             check=True, stdout=subprocess.PIPE, timeout=30).stdout
        check(len(raw) == SCREEN_W * SCREEN_H * 3, "screenshot has %d bytes" % len(raw))
        self.raw = raw
        if save_as:
            subprocess.run(["convert", "-size", "%dx%d" % (SCREEN_W, SCREEN_H), "-depth", "8", "rgb:-", save_as],
                           input=raw, check=True, timeout=30)

    def pixel(self, x, y):
        x, y = int(round(x)), int(round(y))
        if not (0 <= x < SCREEN_W and 0 <= y < SCREEN_H):
            return (0, 0, 0)
        i = (y * SCREEN_W + x) * 3
        return (self.raw[i], self.raw[i + 1], self.raw[i + 2])

    def region(self, x0, y0, x1, y1, step=1):
        for y in range(int(y0), int(y1), step):
            for x in range(int(x0), int(x1), step):
                yield self.pixel(x, y)

    def count(self, x0, y0, x1, y1, predicate, step=1):
        return sum(1 for p in self.region(x0, y0, x1, y1, step) if predicate(p))


def near(colour, target, tolerance=24):
    return all(abs(a - b) <= tolerance for a, b in zip(colour, target))


def classify(p):
    """The piece colour a pixel shows, or None for background, shading and stars."""
    r, g, b = p
    if max(p) < 70:
        return None
    if r > g + 50 and b > g + 50 and abs(r - b) < 90:
        return "purple"
    if r > g + 50 and r > b + 50:
        return "red"
    if g > r + 50 and g > b + 50:
        return "green"
    if b > r + 50 and b > g + 50:
        return "blue"
    return None


class Tolvar:
    def __init__(self, program, name, seed=7, rules=None, env_extra=None):
        self.program = program
        self.name = name
        self.work = tempfile.mkdtemp(prefix="tolvar-e2e-%s-" % name)
        self.data_home = os.path.join(self.work, "data")
        os.makedirs(self.data_home)
        self.folder = os.path.join(self.data_home, "Tolvar")
        if rules is not None:
            os.makedirs(self.folder)
            with open(os.path.join(self.folder, "RulesDict.dict"), "wb") as f:
                plistlib.dump(rules, f, fmt=plistlib.FMT_XML, sort_keys=False)
        self.shots = os.environ.get("TOLVAR_E2E_SHOTS")  # keep pictures here when set
        self.xvfb = None
        self.proc = None
        self.display = None
        for attempt in range(3):
            try:
                self._start_xvfb()
                break
            except Failure:
                if attempt == 2:
                    raise
        env = dict(os.environ)
        env.update({"DISPLAY": self.display, "XDG_DATA_HOME": self.data_home, "TOLVAR_SEED": str(seed),
                    "LC_ALL": "C", "SDL_VIDEODRIVER": "x11"})
        env.pop("WAYLAND_DISPLAY", None)
        if env_extra:
            env.update(env_extra)
        self.env = env
        self.runs = 0
        self.alert_names = []
        try:
            self.launch()
        except BaseException:
            self.close()  # the server and the folder go with a failed start too
            raise

    def launch(self):
        """Starts the program (again) on this display, with this data folder."""
        self.runs += 1
        self.out_path = os.path.join(self.work, "stdout-%d.txt" % self.runs)
        self.err_path = os.path.join(self.work, "stderr-%d.txt" % self.runs)
        self.t_exec = time.monotonic()
        with open(self.out_path, "wb") as out, open(self.err_path, "wb") as err:
            self.proc = subprocess.Popen([self.program], env=self.env, cwd=self.work, stdout=out, stderr=err)
        self.main = self.wait_for(lambda: self.find_window(MAIN_W, MAIN_H, mapped=True), 30,
                                  "the main window to appear")
        self.startup_seconds = time.monotonic() - self.t_exec
        self.game = self.find_window(WIN_W, WIN_H)
        check(self.game is not None, "no game window was made")

    def finish(self):
        """Ends the program as the desktop would (SIGTERM, which it takes as Quit) and checks that
        it ended cleanly: status 0 and no report of the sanitizers on standard error."""
        check(self.running(), "the program is still running at the end")
        self.proc.terminate()
        try:
            status = self.proc.wait(timeout=20)
        except subprocess.TimeoutExpired:
            raise Failure("the program did not end when asked to")
        err = self.stderr()
        for marker in ("AddressSanitizer", "LeakSanitizer", "runtime error:", "UndefinedBehaviorSanitizer"):
            check(marker not in err, "the sanitizers report a fault:\n" + err[-3000:])
        check(status == 0, "the program ended with status %s\n%s" % (status, err[-2000:]))

    def quit(self):
        """Ends the program with Ctrl+Q from the main window and waits for it."""
        self.xdo("windowfocus", "--sync", self.main)
        self.xdo("key", "ctrl+q")
        try:
            status = self.proc.wait(timeout=15)
        except subprocess.TimeoutExpired:
            raise Failure("Ctrl+Q did not end the program")
        check(status == 0, "the program ended with status %s\n%s" % (status, self.stderr()[-2000:]))

    # ------------------------------------------------------------------ process and display
    def _start_xvfb(self):
        r, w = os.pipe()
        self.xvfb = subprocess.Popen(["Xvfb", "-displayfd", str(w), "-screen", "0", "%dx%dx24" % (SCREEN_W, SCREEN_H),
                                      "-nolisten", "tcp"], pass_fds=(w,), stdout=subprocess.DEVNULL,
                                     stderr=subprocess.DEVNULL)
        os.close(w)
        number = b""
        deadline = time.monotonic() + 20
        while not number.endswith(b"\n") and time.monotonic() < deadline:
            chunk = os.read(r, 16)
            if not chunk:
                break
            number += chunk
        os.close(r)
        check(number.strip().isdigit(), "Xvfb did not start")
        self.display = ":" + number.strip().decode()
        # The server answers before the program connects (another server may have raced for the
        # same number).
        ok = subprocess.run(["xwininfo", "-display", self.display, "-root"], stdout=subprocess.DEVNULL,
                            stderr=subprocess.DEVNULL, timeout=20).returncode == 0
        if not ok:
            self.xvfb.terminate()
            self.xvfb.wait()
            raise Failure("the X server on %s does not answer" % self.display)

    def close(self):
        if self.proc and self.proc.poll() is None:
            self.proc.terminate()
            try:
                self.proc.wait(timeout=10)
            except subprocess.TimeoutExpired:
                self.proc.kill()
                self.proc.wait()
        if self.xvfb:
            self.xvfb.terminate()
            try:
                self.xvfb.wait(timeout=10)
            except subprocess.TimeoutExpired:
                self.xvfb.kill()
                self.xvfb.wait()
        if not os.environ.get("TOLVAR_E2E_KEEP"):
            shutil.rmtree(self.work, ignore_errors=True)

    def stdout(self):
        with open(self.out_path, "rb") as f:
            return f.read().decode("utf-8", "replace")

    def stderr(self):
        with open(self.err_path, "rb") as f:
            return f.read().decode("utf-8", "replace")

    def cpu_seconds(self):
        with open("/proc/%d/stat" % self.proc.pid) as f:
            fields = f.read().rsplit(")", 1)[1].split()
        return (int(fields[11]) + int(fields[12])) / os.sysconf("SC_CLK_TCK")  # utime + stime

    def cpu_percent(self, seconds):
        """Processor time used over the next seconds, in % of one core."""
        c0, t0 = self.cpu_seconds(), time.monotonic()
        time.sleep(seconds)
        return 100.0 * (self.cpu_seconds() - c0) / (time.monotonic() - t0)

    def running(self):
        return self.proc.poll() is None

    def wait_for(self, condition, timeout, what):
        deadline = time.monotonic() + timeout
        while True:
            if self.proc is not None and self.proc.poll() is not None:
                raise Failure("the program ended (status %s) while waiting for %s\nstderr:\n%s"
                              % (self.proc.returncode, what, self.stderr()[-2000:]))
            value = condition()
            if value:
                return value
            if time.monotonic() > deadline:
                raise Failure("timed out waiting for " + what)
            time.sleep(0.05)

    def xdo(self, *args):
        subprocess.run(["xdotool"] + [str(a) for a in args], env=self.env, check=True, timeout=20,
                       stdout=subprocess.DEVNULL)

    # ------------------------------------------------------------------ windows
    def windows(self):
        """Top-level windows: (id, name, width, height, x, y)."""
        tree = subprocess.run(["xwininfo", "-display", self.display, "-root", "-children"], check=True,
                              stdout=subprocess.PIPE, timeout=20).stdout.decode("utf-8", "replace")
        found = []
        for line in tree.splitlines():
            m = re.match(r'\s*(0x[0-9a-f]+) ("[^"]*"|\(has no name\)).*?\s(\d+)x(\d+)\+(-?\d+)\+(-?\d+)', line)
            if m:
                name = m.group(2)[1:-1] if m.group(2).startswith('"') else ""
                found.append((m.group(1), name, int(m.group(3)), int(m.group(4)), int(m.group(5)), int(m.group(6))))
        return found

    def mapped(self, wid):
        info = subprocess.run(["xwininfo", "-display", self.display, "-id", wid], stdout=subprocess.PIPE,
                              stderr=subprocess.DEVNULL, timeout=20).stdout.decode()
        return "IsViewable" in info

    def geometry(self, wid):
        info = subprocess.run(["xwininfo", "-display", self.display, "-id", wid], check=True,
                              stdout=subprocess.PIPE, timeout=20).stdout.decode()
        x = int(re.search(r"Absolute upper-left X:\s+(-?\d+)", info).group(1))
        y = int(re.search(r"Absolute upper-left Y:\s+(-?\d+)", info).group(1))
        return x, y

    def find_window(self, w, h, mapped=None, name=None):
        for wid, wname, ww, hh, _x, _y in self.windows():
            if ww == w and hh == h and (name is None or wname == name):
                if mapped is None or self.mapped(wid) == mapped:
                    return wid
        return None

    def alert_windows(self):
        """Mapped windows that are none of the game's own (the alert panels)."""
        own = {WIN_W, MAIN_W}
        result = []
        for wid, _name, w, h, _x, _y in self.windows():
            if w in own or (w == 260) or w <= 1 or h <= 1:
                continue
            if self.mapped(wid):
                result.append(wid)
        return result

    def dismiss_alerts(self, expect=1, timeout=15):
        """Waits for expect alert panels in turn and presses each one's button with Return."""
        dismissed = 0
        while dismissed < expect:
            alerts = self.wait_for(self.alert_windows, timeout, "an alert panel")
            wid = alerts[0]
            self.alert_names.extend(name for (w, name, *_rest) in self.windows() if w == wid)
            if self.shots and dismissed == 0:
                Screen(self.display, os.path.join(self.shots, "%s-alert.png" % self.name))
            self.xdo("windowfocus", "--sync", wid)
            self.xdo("key", "--window", wid, "Return")
            self.wait_for(lambda: wid not in self.alert_windows(), timeout, "the alert to close")
            dismissed += 1
        return dismissed

    # ------------------------------------------------------------------ input
    def click(self, x, y, button=1):
        self.xdo("mousemove", "--sync", int(round(x)), int(round(y)))
        self.xdo("click", button)

    def key(self, name, window=None):
        if window:
            self.xdo("key", "--window", window, name)
        else:
            self.xdo("key", name)

    def settle(self, timeout=20):
        """Waits until the screen stops changing (falling pieces have landed)."""
        last = [self.shot().raw]

        def still():
            time.sleep(0.4)
            now = self.shot().raw
            same = now == last[0]
            last[0] = now
            return same
        self.wait_for(still, timeout, "the screen to settle")

    def shot(self, label=None):
        path = None
        if self.shots and label:
            os.makedirs(self.shots, exist_ok=True)
            path = os.path.join(self.shots, "%s-%s.png" % (self.name, label))
        return Screen(self.display, path)

    # ------------------------------------------------------------------ the main window
    def main_origin(self):
        return self.geometry(self.main)

    def combo_center(self):
        mx, my = self.main_origin()
        top = MENU_BAR_H + MAIN_PAD_Y + 2 + ITEM_SPACING_Y  # menu bar, padding, the spacer and its gap
        return mx + MAIN_W / 2 + 40, my + top + FRAME_H / 2

    def choose_game(self, index):
        """Opens the game pop-up and chooses its index-th entry ("None" is 0)."""
        cx, cy = self.combo_center()
        self.click(cx, cy)
        time.sleep(0.3)
        combo_bottom = cy + FRAME_H / 2
        # The list opens under the control: window padding, then one row per game.
        row_y = combo_bottom + MAIN_PAD_Y + FONT_PX / 2 + index * (FONT_PX + ITEM_SPACING_Y)
        self.click(cx, row_y)
        time.sleep(0.3)

    def press_start(self):
        mx, my = self.main_origin()
        x = mx + MAIN_W - MAIN_PAD_X - 60
        y = my + MAIN_H - MAIN_PAD_Y - FRAME_H / 2
        self.click(x, y)

    def press_return(self):
        mx, my = self.main_origin()
        x = mx + MAIN_W - MAIN_PAD_X - 120 - 10 - 60
        y = my + MAIN_H - MAIN_PAD_Y - FRAME_H / 2
        self.click(x, y)

    def description_box(self):
        """The description's text area, in screen coordinates (x0, y0, x1, y1)."""
        mx, my = self.main_origin()
        return (mx + MAIN_PAD_X + 4, my + 190, mx + MAIN_W - MAIN_PAD_X - 4, my + MAIN_H - 80)

    # ------------------------------------------------------------------ the board
    def game_origin(self):
        return self.geometry(self.game)


class Layout:
    """Where the board lies in the game window (the rules' layout arithmetic)."""

    def __init__(self, board_w, board_h, launcher=False, square=True):
        self.m = 50.0 if launcher else 10.0
        side = WIN_H - 2 * self.m
        self.h = side / board_h
        self.w = side / board_w
        self.ph = self.h - 3
        if square:
            self.w = self.h
            self.pw = self.ph
            self.left = (WIN_W - self.w * board_w) / 2
        else:
            self.pw = self.w - 3
            self.left = self.m + (WIN_W - WIN_H) / 2
        self.board_w, self.board_h = board_w, board_h

    def cell_rect(self, x, y):
        """The piece rectangle of cell (x, y) in window coordinates, origin lower left."""
        return (x * self.w + self.left, y * self.h + self.m, self.pw, self.ph)

    def cell_center_screen(self, origin, x, y):
        X, Y, W, H = self.cell_rect(x, y)
        return origin[0] + X + W / 2, origin[1] + WIN_H - (Y + H / 2)

    def to_screen(self, origin, X, Y):
        return origin[0] + X, origin[1] + WIN_H - Y


def cell_colour(screen, layout, origin, x, y):
    """The colour of the piece in a cell, by a vote of the pixels round its centre."""
    cx, cy = layout.cell_center_screen(origin, x, y)
    r = max(4, int(layout.pw * 0.3))
    votes = {}
    total = 0
    for p in screen.region(cx - r, cy - r, cx + r, cy + r, step=2):
        total += 1
        c = classify(p)
        if c:
            votes[c] = votes.get(c, 0) + 1
    if not votes:
        return None
    best = max(votes, key=votes.get)
    return best if votes[best] >= total * 0.25 else None


def board_colours(screen, layout, origin):
    return [[cell_colour(screen, layout, origin, x, y) for y in range(layout.board_h)]
            for x in range(layout.board_w)]
