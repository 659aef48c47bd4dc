#!/usr/bin/env python3
"""Every program the build makes and every Python program of tools/, asked for --help and --version as
someone without a desktop asks: in an empty folder, with no display, and with HOME, the XDG folders and
TMPDIR inside that folder. Each must end with status 0, print its usage (--help) or its name and the
game's version (--version) on standard output, and leave no file behind.

    check_programs.py --programs LIST_FILE --tools DIR --python PYTHON --version V

LIST_FILE names the built programs, one path a line (written by CMake from the build's targets).
"""

import argparse
import os
import re
import subprocess
import sys
import tempfile

NO_DISPLAY = ("DISPLAY", "WAYLAND_DISPLAY", "XAUTHORITY", "SDL_VIDEODRIVER")
XDG_FOLDERS = ("XDG_DATA_HOME", "XDG_CONFIG_HOME", "XDG_CACHE_HOME", "XDG_STATE_HOME", "XDG_RUNTIME_DIR")
PYTHON_MAIN = re.compile(r"^if __name__ == ['\"]__main__['\"]:", re.M)


def programs(list_file, tools, python):
    """(name, command) of each built program and each Python file under tools/ that runs as a program."""
    with open(list_file, encoding="utf-8") as f:
        found = [(os.path.basename(p), [p]) for p in map(str.strip, f) if p]
    for folder, _dirs, files in os.walk(tools):
        for path in sorted(os.path.join(folder, f) for f in files if f.endswith(".py")):
            with open(path, encoding="utf-8") as f:
                found += [(os.path.basename(path), [python, path])] if PYTHON_MAIN.search(f.read()) else []
    return found


def run_alone(command):
    """Runs command in a fresh empty folder; returns (status, stdout, stderr, the paths it made)."""
    with tempfile.TemporaryDirectory(prefix="tolvar-programs-") as root:
        for d in ("work", "home", "tmp"):
            os.mkdir(os.path.join(root, d))
        env = {k: v for k, v in os.environ.items() if k not in NO_DISPLAY}
        env.update({k: os.path.join(root, "xdg", k.lower()) for k in XDG_FOLDERS})
        env.update(HOME=os.path.join(root, "home"), TMPDIR=os.path.join(root, "tmp"))
        try:
            done = subprocess.run(command, cwd=os.path.join(root, "work"), env=env, stdin=subprocess.DEVNULL,
                                  capture_output=True, timeout=60)
            status, out, err = done.returncode, done.stdout, done.stderr
        except subprocess.TimeoutExpired as late:
            status, out, err = "no end within %ds" % late.timeout, late.stdout or b"", late.stderr or b""
        made = sorted(p for p in (os.path.relpath(os.path.join(d, n), root) for d, dirs, files in os.walk(root)
                                  for n in dirs + files) if p not in ("work", "home", "tmp"))
        return status, out.decode("utf-8", "replace"), err.decode("utf-8", "replace"), made


def problems_of(name, command, version):
    """What is wrong with the program's answers to --help and --version (an empty list: nothing)."""
    names = {name, os.path.splitext(name)[0]}
    found = []
    for option in ("--help", "--version"):
        status, out, err, made = run_alone(command + [option])
        said = "%s %s: " % (name, option)
        found += [said + "status %s\n%s" % (status, (err or out)[-600:])] if status != 0 else []
        found += [said + "left %s" % ", ".join(made)] if made else []
        if option == "--help" and not ("usage" in out.lower() and any(n in out for n in names)):
            found.append(said + "no usage line naming the program on standard output: %r" % out[:300])
        first = out.split("\n", 1)[0]
        if option == "--version" and first not in {"%s %s" % (n, version) for n in names}:
            found.append(said + "the first line is %r, not %r" % (first, "%s %s" % (name, version)))
    return found


def main():
    parser = argparse.ArgumentParser()
    for option in ("programs", "tools", "python", "version"):
        parser.add_argument("--" + option, required=True)
    args = parser.parse_args()
    found = programs(args.programs, args.tools, args.python)
    if not any(len(command) == 1 for _, command in found):
        sys.exit("FAILED: %s lists no program" % args.programs)
    failures = []
    for name, command in found:
        failures += problems_of(name, command, args.version)
        print("%-28s %s" % (name, "FAILED" if failures and failures[-1].startswith(name + " ") else "ok"))
    for failure in failures:
        print("FAILED:", failure)
    return 1 if failures else 0


if __name__ == "__main__":
    sys.exit(main())
