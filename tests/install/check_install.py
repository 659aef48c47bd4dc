#!/usr/bin/env python3
"""Tolvar installed into a fresh temporary prefix, checked as a desktop and a player meet it.

    check_install.py --cmake CMAKE --build DIR --source DIR --version V --programs a,b
                     --icon-sizes 48,64 --app-id ID --homepage=[URL] --hardened GNU|Clang|OFF

Installs with `cmake --install`, then checks the files' places, the licence, the changelog, the
documentation, the menu entry and the metadata with their validators, the screenshots the
metadata names when there is a home page, every icon size and the symbolic icon, the manual
pages, the programs' hardening, --help and --version of every program, and starts the installed
game on a display of its own until its main window shows and a game has loaded the piece model
from the prefix.
"""

import argparse
import math
import os
import re
import shutil
import struct
import subprocess
import sys
import tempfile
import xml.etree.ElementTree as ET
import zlib

from installed_files import (check_changelog, check_copyright, check_documentation, check_hardening,
                             check_no_placeholder_urls, gunzipped, news_releases)
from temporary_folder import check, checked_in_temporary_folder
from tolvar_driver import Tolvar

DOCS = "share/doc/tolvar"
SMALL_ICON = 24   # up to this size the icon is drawn in profile, its spikes apart from each other


def validated(command):
    done = subprocess.run(command, stdout=subprocess.PIPE, stderr=subprocess.STDOUT, timeout=120)
    out = done.stdout.decode("utf-8", "replace")
    check(done.returncode == 0, "%s fails (status %d):\n%s" % (" ".join(command), done.returncode, out))
    return out


def icon(prefix, args, folder, suffix=".png"):
    return os.path.join(prefix, "share/icons/hicolor", folder, "apps", args.app_id + suffix)


def read_png(path):
    """(width, height, colour type, rows of RGBA tuples) of an 8-bit RGBA or RGB PNG file."""
    with open(path, "rb") as f:
        data = f.read()
    check(data[:8] == b"\x89PNG\r\n\x1a\n", "%s is not a PNG file" % path)
    pos, idat, header = 8, b"", None
    while pos < len(data):
        length, kind = struct.unpack(">I4s", data[pos:pos + 8])
        body = data[pos + 8:pos + 8 + length]
        if kind == b"IHDR":
            header = struct.unpack(">IIBBBBB", body)
        elif kind == b"IDAT":
            idat += body
        pos += 12 + length
    width, height, depth, colour, _, _, interlace = header
    check(depth == 8 and colour in (2, 6) and interlace == 0,
          "%s: expected 8-bit RGB or RGBA, not interlaced; found depth %d, colour type %d" % (path, depth, colour))
    channels = 4 if colour == 6 else 3
    raw, stride, rows, previous = zlib.decompress(idat), width * channels, [], bytearray(width * channels)
    for y in range(height):
        kind, line = raw[y * (stride + 1)], bytearray(raw[y * (stride + 1) + 1:(y + 1) * (stride + 1)])
        for i in range(stride):  # undo the row's filter: none, sub, up, average, Paeth
            a = line[i - channels] if i >= channels else 0
            b, c = previous[i], previous[i - channels] if i >= channels else 0
            if kind == 1:
                line[i] = (line[i] + a) & 255
            elif kind == 2:
                line[i] = (line[i] + b) & 255
            elif kind == 3:
                line[i] = (line[i] + (a + b) // 2) & 255
            elif kind == 4:
                p = a + b - c
                pa, pb, pc = abs(p - a), abs(p - b), abs(p - c)
                line[i] = (line[i] + (a if pa <= pb and pa <= pc else b if pb <= pc else c)) & 255
        previous = line
        rows.append([tuple(line[x * channels:(x + 1) * channels]) + ((255,) if channels == 3 else ())
                     for x in range(width)])
    return width, height, colour, rows


def check_files(prefix, args):
    wanted = ["bin/%s" % p for p in args.programs] + ["share/man/man6/%s.6.gz" % p for p in args.programs] + [
        "share/tolvar/Nebula.png", "share/tolvar/Spikes.dxf", "share/applications/%s.desktop" % args.app_id,
        "share/metainfo/%s.metainfo.xml" % args.app_id, icon("", args, "scalable", ".svg"),
        icon("", args, "symbolic", "-symbolic.svg"), DOCS + "/copyright", DOCS + "/changelog.gz"] + [
        icon("", args, "%sx%s" % (s, s)) for s in args.icon_sizes]
    missing = [f for f in wanted if not os.path.isfile(os.path.join(prefix, f))]
    check(not missing, "not installed: %s" % missing)
    slow = [p for p in args.programs if not os.access(os.path.join(prefix, "bin", p), os.X_OK)]
    check(not slow, "installed but not executable: %s" % slow)
    check(not os.path.exists(os.path.join(prefix, "bin", "resources")),
          "resources beside the installed programs: the game would not need share/tolvar")


def check_licence_and_documents(prefix, args):
    """The copyright names the MIT (Expat) licence of LICENSE; the changelog, the pages and the
    pictures they show are installed; no installed text points at a placeholder host."""
    check_copyright(os.path.join(prefix, DOCS, "copyright"), args.source)
    check_changelog(os.path.join(prefix, DOCS, "changelog.gz"), args.source)
    check_documentation(os.path.join(prefix, DOCS), args.source)
    check_no_placeholder_urls(prefix)


def check_examples(prefix, args):
    """The example games are installed, and the installed checker finds them clean."""
    folder = os.path.join(prefix, DOCS, "examples")
    games = sorted(f for f in os.listdir(os.path.join(args.source, "examples")) if f.endswith(".dict"))
    installed = sorted(os.listdir(folder)) if os.path.isdir(folder) else []
    check(games and installed == games, "the example games %s are not all installed in %s" % (games, folder))
    if "tolvar-check" in args.programs:
        validated([os.path.join(prefix, "bin", "tolvar-check")] + [os.path.join(folder, g) for g in games])


def check_desktop_entry(prefix, args):
    entry = os.path.join(prefix, "share/applications/%s.desktop" % args.app_id)
    validated(["desktop-file-validate", entry])
    with open(entry, encoding="utf-8") as f:
        keys = dict(line.rstrip("\n").split("=", 1) for line in f if "=" in line)
    check(keys.get("Exec", "").split()[0] in args.programs, "the menu entry starts %r" % keys.get("Exec"))
    check(keys.get("Icon") == args.app_id, "the menu entry's icon is %r, not the installed %s"
          % (keys.get("Icon"), args.app_id))
    check("Game" in keys.get("Categories", "").split(";"), "the menu entry is not in the Game category")


def check_metadata(prefix, args):
    path = os.path.join(prefix, "share/metainfo/%s.metainfo.xml" % args.app_id)
    report = validated(["appstreamcli", "validate", "--no-net", path])
    told = [line for line in report.splitlines() if re.match(r"[EWI]: ", line)]
    check(not told, "appstreamcli validate --no-net reports:\n" + report)
    root = ET.parse(path).getroot()
    check((root.findtext("project_license"), root.findtext("metadata_license")) == ("MIT", "CC0-1.0"),
          "the metadata's licences are %r and %r, not MIT and CC0-1.0"
          % (root.findtext("project_license"), root.findtext("metadata_license")))
    check(root.findtext("icon") == args.app_id, "the metadata's icon is %r" % root.findtext("icon"))
    check(root.findtext("id") == args.app_id, "the metadata's id is %r" % root.findtext("id"))
    check(root.findtext("launchable") == args.app_id + ".desktop", "the metadata launches %r"
          % root.findtext("launchable"))
    releases = [r.get("version") for r in root.iter("release")]
    check(releases and releases[0] == args.version, "the newest release listed is %r, the project is %s"
          % (releases[:1], args.version))
    check(releases == news_releases(args.source), "the metadata lists the releases %s, NEWS %s"
          % (releases, news_releases(args.source)))
    check(all(r.findall("description/ul/li") for r in root.iter("release")), "a release without its changes")
    check(root.find("content_rating") is not None, "the metadata has no content rating")
    provided = sorted(b.text for b in root.iter("binary"))
    check(provided == sorted(args.programs), "the metadata provides %s, not %s" % (provided, args.programs))
    shots = list(root.iter("screenshot"))
    if not args.homepage:
        check(not shots and root.find("url") is None, "without a home page the metadata still has %d "
              "screenshots and %s" % (len(shots), [u.text for u in root.iter("url")]))
        return
    check(root.findtext("url") == args.homepage, "the metadata's home page is %r" % root.findtext("url"))
    check(len(shots) >= 3, "only %d screenshots" % len(shots))
    base = args.homepage.rstrip("/") + "/docs/"
    for shot in shots:
        image = shot.find("image")
        url = image.text.strip()
        check(url.startswith(base), "screenshot %s is not one of the home page's docs/ pictures" % url)
        local = os.path.join(args.source, "docs", url[len(base):])
        check(os.path.isfile(local), "screenshot %s: no %s" % (url, local))
        width, height, _, rows = read_png(local)
        check((str(width), str(height)) == (image.get("width"), image.get("height")),
              "%s is %dx%d, the metadata says %sx%s" % (local, width, height, image.get("width"), image.get("height")))
        colours = {rows[y][x][:3] for y in range(0, height, 16) for x in range(0, width, 16)}
        check(len(colours) > 20, "%s is nearly blank (%d colours)" % (local, len(colours)))
        check(shot.findtext("caption"), "screenshot %s has no caption" % url)


def drawn_svg(path, size):
    """The rows of an SVG picture drawn at size x size pixels."""
    work = tempfile.mkdtemp(prefix="tolvar-icon-")
    try:
        drawn = os.path.join(work, "svg.png")
        validated(["rsvg-convert", "-w", str(size), "-h", str(size), "-o", drawn, path])
        return read_png(drawn)[3]
    finally:
        shutil.rmtree(work, ignore_errors=True)


def spikes_around(rows, size):
    """How many spikes stand apart on a circle at 70 % of the way to the edge, where a small icon's
    spikes reach beyond the ball: solid pixels (alpha 192 or more) between clear ones (32 or less)."""
    radius, steps, centre = 0.35 * size, 720, (size - 1) / 2.0
    ring = [rows[round(centre - radius * math.sin(2 * math.pi * i / steps))][
        round(centre + radius * math.cos(2 * math.pi * i / steps))][3] for i in range(steps)]
    if min(ring) > 32:
        return 0
    start = ring.index(min(ring))
    spikes, inked = 0, False
    for alpha in ring[start:] + ring[:start]:
        if not inked and alpha >= 192:
            spikes, inked = spikes + 1, True
        elif inked and alpha <= 32:
            inked = False
    return spikes


def check_outline(path, rows, size):
    corners = [rows[y][x][3] for x in (0, size - 1) for y in (0, size - 1)]
    check(corners == [0, 0, 0, 0], "%s: the corners are not transparent: %s" % (path, corners))
    cover = sum(1 for row in rows for p in row if p[3] > 127) / float(size * size)
    check(0.3 < cover < 0.85, "%s: the piece covers %.0f %% of the icon" % (path, 100 * cover))
    if size <= SMALL_ICON:
        spikes = spikes_around(rows, size)
        check(6 <= spikes <= 12, "%s: %d spikes stand apart around the ball, not 6 to 12" % (path, spikes))


def check_icons(prefix, args):
    pictures = {}
    for size in args.icon_sizes:
        path = icon(prefix, args, "%sx%s" % (size, size))
        width, height, colour, rows = read_png(path)
        check((width, height, colour) == (size, size, 6), "%s is %dx%d of colour type %d, not %dx%d RGBA"
              % (path, width, height, colour, size, size))
        check_outline(path, rows, size)
        r, g, b, a = rows[size // 2][size // 2]
        check(a == 255 and r > g + 60 and r > b + 60, "%s: the middle is not the red piece: %s"
              % (path, (r, g, b, a)))
        pictures[size] = rows
    scalable = icon(prefix, args, "scalable", ".svg")
    root = ET.parse(scalable).getroot()
    check(root.tag == "{http://www.w3.org/2000/svg}svg" and root.get("viewBox"), "%s is not an SVG picture"
          % scalable)
    # The scalable icon is the same picture: drawn at the largest size it matches that PNG.
    size = max(args.icon_sizes)
    rows, png = drawn_svg(scalable, size), pictures[size]
    off = sum(1 for y in range(size) for x in range(size)
              if abs(rows[y][x][3] - png[y][x][3]) > 64 or (png[y][x][3] == 255 and rows[y][x][3] == 255 and max(
                  abs(c - d) for c, d in zip(rows[y][x][:3], png[y][x][:3])) > 48))
    check(off < size * size // 50, "the SVG and the %d-pixel PNG differ at %d pixels" % (size, off))
    check_symbolic_icon(icon(prefix, args, "symbolic", "-symbolic.svg"))


def check_symbolic_icon(path):
    """A silhouette in a single colour, which the desktop replaces with its own, on a 16-pixel grid."""
    root = ET.parse(path).getroot()
    check(root.get("viewBox") == "0 0 16 16", "%s is not drawn on a 16-pixel grid: %r" % (path, root.get("viewBox")))
    kinds = {element.tag.split("}")[-1] for element in root.iter()}
    check(not kinds & {"image", "linearGradient", "radialGradient", "text"},
          "%s has more than flat shapes: %s" % (path, sorted(kinds)))
    paints = {element.get(key) for element in root.iter() for key in ("fill", "stroke")} - {None, "none"}
    check(len(paints) == 1, "%s is painted in %s, not one colour" % (path, sorted(paints)))
    size = 16
    rows = drawn_svg(path, size)
    check_outline(path, rows, size)
    inked = {p[:3] for row in rows for p in row if p[3] >= 128}
    check(max(max(c) - min(c) for c in zip(*inked)) <= 8, "%s shows several colours: %s" % (path, sorted(inked)))


def check_manual_pages(prefix, args):
    for program in args.programs:
        path = os.path.join(prefix, "share/man/man6/%s.6.gz" % program)
        text = gunzipped(path).decode("utf-8")
        title = next((line.split() for line in text.splitlines() if line.startswith(".TH")), [])
        check(title[1:3] == [program.upper().replace("-", "\\-"), "6"], "%s: title line %s" % (path, title))
        for option in ("--help", "--version"):
            check(option in text.replace("\\-", "-"), "%s does not tell of %s" % (path, option))
        done = subprocess.run(["man", "--warnings", "-E", "UTF-8", "-l", path], stdout=subprocess.DEVNULL,
                              stderr=subprocess.PIPE, env=dict(os.environ, MANWIDTH="80"), timeout=60)
        check(done.returncode == 0, "%s: man fails (status %d)" % (path, done.returncode))
        check(not done.stderr.strip(), "%s: man reports:\n%s" % (path, done.stderr.decode("utf-8", "replace")))


def check_options(prefix, args):
    """--help and --version of every program, and every option of --help in its manual page."""
    for program in args.programs:
        path, printed = os.path.join(prefix, "bin", program), {}
        for option, expected in (("--version", "%s %s\n" % (program, args.version)), ("--help", "usage: " + program)):
            done = subprocess.run([path, option], stdout=subprocess.PIPE, stderr=subprocess.PIPE, timeout=60,
                                  env=dict(os.environ, DISPLAY=""))
            out = printed[option] = done.stdout.decode("utf-8", "replace")
            check(done.returncode == 0 and out.startswith(expected),
                  "%s %s: status %d, printed %r" % (program, option, done.returncode, out[:200]))
        page = gunzipped(os.path.join(prefix, "share/man/man6/%s.6.gz" % program)).decode("utf-8").replace("\\-", "-")
        offered = set(re.findall(r"(?<![\w-])--[a-z][a-z-]*", printed["--help"]))
        untold = sorted(offered - set(re.findall(r"--[a-z][a-z-]*", page)))
        check(not untold, "%s --help offers %s, which packaging/man/%s.6 does not tell" % (program, untold, program))


def check_hardened(prefix, args):
    """The programs carry the hardening of every build type but Debug, unless it was turned off."""
    if args.hardened != "OFF":
        check_hardening([os.path.join(prefix, "bin", p) for p in args.programs], args.hardened)
    else:
        print("  not hardened: a Debug build, or TOLVAR_HARDEN is OFF")


def check_game_starts(prefix):
    """The installed game on a display of its own: the main window, then Vexamor's spiky pieces."""
    game = Tolvar(os.path.join(prefix, "bin", "tolvar"), "install")
    try:
        game.choose_game(1)
        game.press_start()
        model = "resource: %s\n" % os.path.join(os.path.realpath(prefix), "share", "tolvar", "Spikes.dxf")
        game.wait_for(lambda: model in game.stdout(), 60, "the piece model read from the prefix")
        err = game.stdout(game.err_path)  # the game window, with its nebula, is up by now
        check("background image" not in err, "the installed game misses its background:\n" + err)
        game.finish()
    finally:
        game.close()


def main():
    parser = argparse.ArgumentParser()
    for option in ("cmake", "build", "source", "version", "programs", "icon-sizes", "app-id", "homepage", "hardened"):
        parser.add_argument("--" + option, required=True)
    args = parser.parse_args()
    args.programs = args.programs.split(",")
    args.icon_sizes = [int(s) for s in args.icon_sizes.split(",")]

    def install_and_check(prefix):
        validated([args.cmake, "--install", args.build, "--prefix", prefix])
        for step in (check_files, check_licence_and_documents, check_examples, check_desktop_entry, check_metadata,
                     check_icons, check_manual_pages, check_hardened, check_options):
            step(prefix, args)
            print("ok:", step.__name__.replace("check_", "").replace("_", " "))
        check_game_starts(prefix)
        print("ok: the installed game starts with its resources")

    return checked_in_temporary_folder("tolvar-prefix-", install_and_check)


if __name__ == "__main__":
    sys.exit(main())
