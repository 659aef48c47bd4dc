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

OPTIONS = ("--help", "--version")
NO_DISPLAY = ("DISPLAY", "WAYLAND_DISPLAY", "XAUTHORITY", "SDL_VIDEODRIVER")
XDG_FOLDERS = ("XDG_DATA_HOME", "XDG_CONFIG_HOME", "XDG_CACHE_HOME", "XDG_STATE_HOME", "XDG_RUNTIME_DIR")
PYTHON_MAIN = re.compile(r"^if __name__ == ['\"]__main__['\"]:", re.M)


def built_programs(list_file):
    """(name, command) of each program in the build's list."""
    with open(list_file, encoding="utf-8") as f:
        paths = [line.strip() for line in f if line.strip()]
    return [(os.path.basename(p), [p]) for p in paths]


def python_programs(tools, python):
    """(name, command) of each Python file under tools/ that runs as a program."""
    found = []
    for folder, _dirs, files in os.walk(tools):
        for file in sorted(files):
            path = os.path.join(folder, file)
            if file.endswith(".py"):
                with open(path, encoding="utf-8") as f:
                    if PYTHON_MAIN.search(f.read()):
                        found.append((file, [python, path]))
    return sorted(found)


def every_path(root):
    """Every file and folder under root, relative to it."""
    paths = set()
    for folder, dirs, files in os.walk(root):
        for name in dirs + files:
            paths.add(os.path.relpath(os.path.join(folder, name), root))
    return paths


def run_alone(command, option):
    """Runs command with option in a fresh empty folder; returns (status, stdout, stderr, new paths)."""
    with tempfile.TemporaryDirectory(prefix="tolvar-programs-") as root:
        work, home, tmp = (os.path.join(root, d) for d in ("work", "home", "tmp"))
        for d in (work, home, tmp):
            os.mkdir(d)
        env = {k: v for k, v in os.environ.items() if k not in NO_DISPLAY}
        env.update({k: os.path.join(root, "xdg", k.lower()) for k in XDG_FOLDERS})
        env.update(HOME=home, TMPDIR=tmp)
        before = every_path(root)
        try:
            done = subprocess.run(command + [option], cwd=work, env=env, stdin=subprocess.DEVNULL,
                                  capture_output=True, timeout=60)
            status, out, err = done.returncode, done.stdout, done.stderr
        except subprocess.TimeoutExpired as late:
            status, out, err = "no end within %ds" % late.timeout, late.stdout or b"", late.stderr or b""
        return (status, out.decode("utf-8", "replace"), err.decode("utf-8", "replace"),
                sorted(every_path(root) - before))


def problems_of(name, command, version):
    """What is wrong with the program's answers to --help and --version (an empty list: nothing)."""
    names = {name, os.path.splitext(name)[0]}
    found = []
    for option in OPTIONS:
        status, out, err, made = run_alone(command, option)
        said = "%s %s: " % (name, option)
        if status != 0:
            found.append(said + "status %s\n%s" % (status, (err or out)[-600:]))
        if made:
            found.append(said + "left %s" % ", ".join(made))
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
    built = built_programs(args.programs)
    if not built:
        sys.exit("FAILED: %s lists no program" % args.programs)
    failures = []
    for name, command in built + python_programs(args.tools, args.python):
        found = problems_of(name, command, args.version)
        print("%-28s %s" % (name, "ok" if not found else "FAILED"))
        failures += found
    for failure in failures:
        print("FAILED:", failure)
    return 1 if failures else 0


if __name__ == "__main__":
    sys.exit(main())
