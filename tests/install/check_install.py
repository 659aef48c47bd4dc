#!/usr/bin/env python3
"""Tolvar installed into a fresh temporary prefix, checked as a packager, a desktop and a player meet it.

    check_install.py --cmake CMAKE --build DIR --source DIR --version V --programs a,b
                     --icon-sizes 48,64 --app-id ID --homepage=[URL] --hardened GNU|Clang|OFF

Installs with `cmake --install`, then checks the files and their permissions, the licence and the documents,
the menu entry and the metadata with their validators, the icons drawn from the piece model, the manual pages,
the programs' hardening, and starts the installed game until a game has loaded the piece model from the prefix.
"""

import argparse
import gzip
import math
import os
import re
import subprocess
import sys
import xml.etree.ElementTree as ET

from temporary_folder import check, checked_in_temporary_folder
from tolvar_driver import Tolvar

DOCS = "share/doc/tolvar"
SMALL_ICON = 24   # up to this size the icon is drawn in profile, its spikes apart from each other
DOC_LINK = re.compile(r"\]\(([^):/#]+)\)")
PLACEHOLDER_URL = re.compile(rb"https?://[^\s\"'<>]*\bexample\.(?:org|com|net)\b")


def run(*command, stdin=None):
    done = subprocess.run([str(c) for c in command], input=stdin, capture_output=True, timeout=120)
    told = (done.stdout + done.stderr).decode("utf-8", "replace")
    check(done.returncode == 0, "%s fails (status %d):\n%s" % (" ".join(map(str, command)), done.returncode, told))
    return done.stdout


def news_releases(source):
    """The versions NEWS lists, newest first."""
    with open(os.path.join(source, "NEWS"), encoding="utf-8") as f:
        return re.findall(r"(?m)^(\d+(?:\.\d+)+) \(\d{4}-\d{2}-\d{2}\)$", f.read())


def check_files(prefix, args):
    icons = "share/icons/hicolor/%s/apps/" + args.app_id
    wanted = ["share/man/man6/%s.6.gz" % p for p in args.programs] + [icons % "%dx%d" % (s, s) + ".png"
                                                                      for s in args.icon_sizes] + [
        "share/tolvar/Nebula.png", "share/tolvar/Spikes.dxf", "share/tolvar/sounds/removal.wav", icons % "scalable" + ".svg",
        icons % "symbolic" + "-symbolic.svg", DOCS + "/copyright", DOCS + "/changelog.gz"]
    missing = [f for f in wanted if not os.path.isfile(os.path.join(prefix, f))]
    check(not missing, "not installed: %s" % missing)
    programs = [os.path.join(prefix, "bin", p) for p in args.programs]
    check(all(map(os.path.isfile, programs)), "programs not installed: %s" % os.listdir(os.path.join(prefix, "bin")))
    check(all(os.access(p, os.X_OK) for p in programs), "installed programs not executable: %s" % programs)
    check(not os.path.exists(os.path.join(prefix, "bin", "resources")), "resources beside the installed programs")


def check_documents(prefix, args):
    """The copyright gives LICENSE's Expat text; the player's and the rules author's pages, with every page and
    picture they link to, are installed as they are in docs/; no installed text names a placeholder host."""
    def words(text):
        return " ".join(re.findall(r"[A-Za-z]+", text))
    with open(os.path.join(prefix, DOCS, "copyright"), encoding="utf-8") as f, \
            open(os.path.join(args.source, "LICENSE"), encoding="utf-8") as g:
        copyright_text, licence = words(f.read()), words(g.read())
    check(licence.startswith("MIT License") and "Tolvar developers" in licence, "LICENSE is not the game's MIT")
    check(licence.split("Permission", 1)[1] in copyright_text, "the copyright's Expat text is not LICENSE's")
    pages = ["desktop.md", "writing-games.md"]
    for page in list(pages):
        with open(os.path.join(args.source, "docs", page), encoding="utf-8") as f:
            pages += DOC_LINK.findall(f.read())
    check(any(p.endswith(".png") for p in pages), "the pages link no picture: %s" % pages)
    for name in pages:
        installed = os.path.join(prefix, DOCS, name)
        check(os.path.isfile(installed), "%s is not installed in %s" % (name, DOCS))
        with open(installed, "rb") as f, open(os.path.join(args.source, "docs", name), "rb") as g:
            check(f.read() == g.read(), "%s differs from docs/%s" % (installed, name))
    found = []
    for folder, _, names in os.walk(prefix):
        for path in (os.path.join(folder, n) for n in names if n.endswith((".gz", ".xml", ".desktop", ".md", ".svg"))):
            with (gzip.open if path.endswith(".gz") else open)(path, "rb") as f:
                found += [path + ": " + m.decode() for m in PLACEHOLDER_URL.findall(f.read())]
    check(not found, "addresses of a placeholder host installed:\n" + "\n".join(found))


def check_examples(prefix, args):
    """The example games are installed, and the installed checker finds them clean."""
    folder = os.path.join(prefix, DOCS, "examples")
    games = sorted(f for f in os.listdir(os.path.join(args.source, "examples")) if f.endswith(".dict"))
    check(games and os.path.isdir(folder) and sorted(os.listdir(folder)) == games,
          "the example games %s are not all installed in %s" % (games, folder))
    run(os.path.join(prefix, "bin", "tolvar-check"), *[os.path.join(folder, g) for g in games])


def check_desktop_entry(prefix, args):
    entry = os.path.join(prefix, "share/applications/%s.desktop" % args.app_id)
    run("desktop-file-validate", entry)
    with open(entry, encoding="utf-8") as f:
        keys = dict(line.rstrip("\n").split("=", 1) for line in f if "=" in line)
    check(keys.get("Exec", "").split()[0] in args.programs, "the menu entry starts %r" % keys.get("Exec"))
    check(keys.get("Icon") == args.app_id, "the menu entry's icon is %r, not %s" % (keys.get("Icon"), args.app_id))
    check("Game" in keys.get("Categories", "").split(";"), "the menu entry is not in the Game category")


def check_metadata(prefix, args):
    """Valid, with every release of NEWS, the programs the package provides, and screenshots that are the home
    page's docs/ pictures at their sizes, or none without a home page."""
    path = os.path.join(prefix, "share/metainfo/%s.metainfo.xml" % args.app_id)
    report = run("appstreamcli", "validate", "--no-net", path).decode()
    check(not re.search(r"(?m)^[EWI]: ", report), "appstreamcli validate --no-net reports:\n" + report)
    root = ET.parse(path).getroot()
    fields = {k: root.findtext(k) for k in ("id", "launchable", "icon", "project_license", "metadata_license")}
    check(fields == dict(id=args.app_id, launchable=args.app_id + ".desktop", icon=args.app_id,
                         project_license="MIT", metadata_license="CC0-1.0"), "the metadata's fields: %s" % fields)
    releases = [r.get("version") for r in root.iter("release")]
    check(releases[:1] == [args.version], "the newest release listed is %s, the project is %s" % (releases[:1],
                                                                                                args.version))
    check(releases == news_releases(args.source), "the metadata lists %s, NEWS %s" % (releases,
                                                                                     news_releases(args.source)))
    provided = sorted(b.text for b in root.iter("binary"))
    check(provided == sorted(args.programs), "the metadata provides %s, not %s" % (provided, args.programs))
    shots = [s.find("image") for s in root.iter("screenshot")]
    check(bool(shots) == bool(args.homepage), "%d screenshots for the home page %r" % (len(shots), args.homepage))
    base = args.homepage.rstrip("/") + "/docs/"
    for image in shots:
        local = os.path.join(args.source, "docs", image.text.strip()[len(base):])
        check(image.text.strip().startswith(base) and os.path.isfile(local), "screenshot %s: no %s" % (image.text,
                                                                                                   local))
        size = run("identify", "-format", "%w %h", local).decode().split()
        check(size == [image.get("width"), image.get("height")], "%s is %s, the metadata says %sx%s"
              % (local, "x".join(size), image.get("width"), image.get("height")))


def pixels(path, size):
    """The RGBA pixels of a picture size x size, row by row (an SVG drawn at that size)."""
    picture = run("rsvg-convert", "-w", size, "-h", size, path) if path.endswith(".svg") else None
    raw = run("convert", "png:-" if picture else path, "-depth", "8", "rgba:-", stdin=picture)
    check(len(raw) == size * size * 4, "%s is not %dx%d" % (path, size, size))
    return [tuple(raw[i:i + 4]) for i in range(0, len(raw), 4)]


def spikes(picture, size):
    """Spikes standing apart on a circle 70 % of the way to the edge, where a small icon's spikes reach beyond
    the ball: runs of solid pixels (alpha 192 or more) between clear ones (32 or less)."""
    c, r = (size - 1) / 2.0, 0.35 * size
    ring = [picture[round(c - r * math.sin(a)) * size + round(c + r * math.cos(a))][3]
            for a in (2 * math.pi * i / 720 for i in range(720))]
    marks = [a >= 192 for a in ring if a >= 192 or a <= 32]
    return sum(b and not a for a, b in zip(marks[-1:] + marks, marks))


def check_icons(prefix, args):
    """Each size is the red spiky piece on a clear ground; the scalable icon is the same picture, and the symbolic
    one a silhouette of one colour that the desktop paints its own."""
    def outline(path, picture, size):
        corners = [picture[i][3] for i in (0, size - 1, size * (size - 1), size * size - 1)]
        check(corners == [0, 0, 0, 0], "%s: the corners are not transparent: %s" % (path, corners))
        cover = sum(p[3] > 127 for p in picture) / float(size * size)
        check(0.3 < cover < 0.85, "%s: the piece covers %.0f %% of the icon" % (path, 100 * cover))

    icons = os.path.join(prefix, "share/icons/hicolor/%s/apps/" + args.app_id)
    for size in args.icon_sizes:
        path = icons % ("%dx%d" % (size, size)) + ".png"
        check(run("identify", "-format", "%[channels]", path) == b"srgba", "%s is not RGBA" % path)
        picture = pixels(path, size)
        outline(path, picture, size)
        check(size > SMALL_ICON or 6 <= spikes(picture, size) <= 12, "%s: %d spikes stand apart around the ball, "
              "not 6 to 12" % (path, spikes(picture, size)))
        r, g, b, a = picture[size * size // 2 + size // 2]
        check(a == 255 and r > g + 60 and r > b + 60, "%s: the middle is not the red piece: %s" % (path, (r, g, b, a)))
    drawn, png = pixels(icons % "scalable" + ".svg", size), picture
    off = sum(abs(d[3] - p[3]) > 64 or (min(d[3], p[3]) == 255 and max(abs(x - y) for x, y in zip(d, p)) > 48)
              for d, p in zip(drawn, png))
    check(off < size * size // 50, "the SVG and the %d-pixel PNG differ at %d pixels" % (size, off))
    symbolic = icons % "symbolic" + "-symbolic.svg"
    check(ET.parse(symbolic).getroot().get("viewBox") == "0 0 16 16", "%s is not on a 16-pixel grid" % symbolic)
    picture = pixels(symbolic, 16)
    outline(symbolic, picture, 16)
    inked = {p[:3] for p in picture if p[3] >= 128}
    check(max(max(c) - min(c) for c in zip(*inked)) <= 8, "%s shows several colours: %s" % (symbolic, sorted(inked)))


def check_manual_pages(prefix, args):
    """Each program's page reads without a warning and tells of every option its --help offers."""
    for program in args.programs:
        path = os.path.join(prefix, "share/man/man6/%s.6.gz" % program)
        done = subprocess.run(["man", "--warnings", "-E", "UTF-8", "-l", path], capture_output=True,
                              env=dict(os.environ, MANWIDTH="80"), timeout=60)
        check(done.returncode == 0 and not done.stderr.strip(), "%s: man reports (status %d):\n%s"
              % (path, done.returncode, done.stderr.decode("utf-8", "replace")))
        with gzip.open(path, "rt", encoding="utf-8") as f:
            told = set(re.findall(r"--[a-z][a-z-]*", f.read().replace("\\-", "-")))
        offered = set(re.findall(r"(?<![\w-])--[a-z][a-z-]*", run(os.path.join(prefix, "bin", program), "--help")
                                 .decode()))
        check(offered <= told, "%s --help offers %s, which its manual page does not tell" % (program, offered - told))


def check_hardened(prefix, args):
    """Each program binds every symbol at start into a read-only relocation table, and calls the stack guard and
    the checked string and memory functions: g++ checks printf and its kind in every program, clang only calls
    whose buffer size it knows, so with clang the programs together call one at least."""
    if args.hardened == "OFF":
        print("  not hardened: a Debug build, or TOLVAR_HARDEN is OFF")
        return
    fortified_in_all = set()
    for program in (os.path.join(prefix, "bin", p) for p in args.programs):
        dynamic = run("readelf", "-W", "--dynamic", program).decode()
        check(re.search(r"\(BIND_NOW\)|\(FLAGS\)\s+.*\bBIND_NOW\b|\(FLAGS_1\)\s+Flags:.*\bNOW\b", dynamic),
              "%s is not linked with -z now" % program)
        check(re.search(r"(?m)^\s*GNU_RELRO\b", run("readelf", "-W", "--program-headers", program).decode()),
              "%s has no GNU_RELRO segment (-z relro)" % program)
        symbols = set(re.findall(r"\b(__\w+?_chk(?:_fail)?)\b", run("readelf", "-W", "--dyn-syms", program).decode()))
        check("__stack_chk_fail" in symbols, "%s has no stack guard (-fstack-protector-strong)" % program)
        fortified = symbols - {"__stack_chk_fail"}
        check(fortified or args.hardened != "GNU", "%s calls no checked function (_FORTIFY_SOURCE)" % program)
        fortified_in_all |= fortified
    check(fortified_in_all, "the programs call no checked function (_FORTIFY_SOURCE)")


def check_game_starts(prefix, args):
    """The installed game on a display of its own: the main window, then Vexamor's model and background."""
    game = Tolvar(os.path.join(prefix, "bin", "tolvar"), "install")
    try:
        game.choose_game(1)
        game.press_start()
        model = "resource: %s\n" % os.path.join(os.path.realpath(prefix), "share", "tolvar", "Spikes.dxf")
        game.wait_for(lambda: model in game.stdout(), 60, "the piece model read from the prefix")
        check("background image" not in game.stdout(game.err_path), "the installed game misses its background")
        game.finish()
    finally:
        game.close()


def main():
    parser = argparse.ArgumentParser()
    for option in ("cmake", "build", "source", "version", "programs", "icon-sizes", "app-id", "homepage", "hardened"):
        parser.add_argument("--" + option, required=True)
    args = parser.parse_args()
    args.programs = args.programs.split(",")
    args.icon_sizes = sorted(int(s) for s in args.icon_sizes.split(","))

    def install_and_check(prefix):
        run(args.cmake, "--install", args.build, "--prefix", prefix)
        for step in (check_files, check_documents, check_examples, check_desktop_entry, check_metadata, check_icons,
                     check_manual_pages, check_hardened, check_game_starts):
            step(prefix, args)
            print("ok:", step.__name__.replace("check_", "").replace("_", " "))

    return checked_in_temporary_folder("tolvar-prefix-", install_and_check)


if __name__ == "__main__":
    sys.exit(main())
