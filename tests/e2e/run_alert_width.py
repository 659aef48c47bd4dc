#!/usr/bin/env python3
"""The "could not be saved" alert with a long path fits an 800-pixel-wide screen, under its own Xvfb.
run_alert_width.py --probe build/bin/alert_probe"""

import argparse
import os
import re
import subprocess
import sys
import time

sys.path.insert(0, os.path.dirname(os.path.abspath(__file__)))
from tolvar_driver import XLIB, start_xvfb  # noqa: E402

MAX_WIDTH = 800
PATH = "/home/player-with-a-long-name/.local/share/Tolvar/games from the club/saved in the evening/Tolvar"


def main():
    parser = argparse.ArgumentParser()
    parser.add_argument("--probe", required=True)
    args = parser.parse_args()
    xvfb, display, dpy = start_xvfb()
    XLIB.XCloseDisplay(dpy)
    env = dict(os.environ, DISPLAY=display, SDL_VIDEODRIVER="x11")
    probe = subprocess.Popen([args.probe, PATH], env=env)
    try:
        deadline, panel = time.monotonic() + 30, None
        while panel is None:  # the mapped top-level window with a title
            if probe.poll() is not None or time.monotonic() > deadline:
                sys.exit("FAILED: no alert panel (status %s)" % probe.poll())
            tree = subprocess.run(["xwininfo", "-root", "-children"], env=env, stdout=subprocess.PIPE,
                                  stderr=subprocess.DEVNULL).stdout.decode()
            for wid, width, height in re.findall(r'(0x[0-9a-f]+) "[^"\n]+".*?\s(\d+)x(\d+)\+', tree):
                info = subprocess.run(["xwininfo", "-id", wid], env=env, stdout=subprocess.PIPE).stdout.decode()
                if "IsViewable" in info and int(width) > 1:
                    panel = (wid, int(width), int(height))
            time.sleep(0.05)
        wid, width, height = panel
        print("the alert panel is %d x %d pixels" % (width, height))
        if os.environ.get("TOLVAR_ALERT_SHOT"):
            subprocess.run(["import", "-window", wid, os.environ["TOLVAR_ALERT_SHOT"]], env=env)
        subprocess.run(["xdotool", "windowfocus", "--sync", wid, "key", "--window", wid, "Return"], env=env,
                       check=True, timeout=20)
        status = probe.wait(timeout=20)
        if width > MAX_WIDTH or status != 0:
            sys.exit("FAILED: the panel is %d pixels wide (at most %d), the probe ended with %s" % (
                width, MAX_WIDTH, status))
    finally:
        for p in (probe, xvfb):
            if p.poll() is None:
                p.kill()
                p.wait()
    print("passed")


if __name__ == "__main__":
    main()
