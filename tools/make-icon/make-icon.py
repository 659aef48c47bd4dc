#!/usr/bin/env python3
"""Draws Tolvar's icons, the game's spiky piece, from the piece model itself.

Reads the 3DFACE entities of a DXF model (the game's resources/Spikes.dxf), turns the ball a
little so it reads as round, lights it like the game window does (two lights from the upper
right, the game's ambient and diffuse strengths) in the first piece colour, and draws the faces
that look at the viewer back to front. That list of shaded polygons becomes the scalable SVG and
the PNG images from SMALL_LIMIT + 1 pixels up (transparent background, 4 x 4 samples a pixel).

At SMALL_LIMIT pixels and below the model's 32 spikes would blur into a red blob, so the piece is
drawn the way it is seen in profile, with fewer, bolder spikes: a ball and SMALL_SPIKES spikes
around it, a little longer than the model's (spike tip against ball radius), lit by the same
lights, with the centre, the ball's radius and every spike's tip on the pixel grid. The outline of that drawing, in one colour, is the
symbolic icon. Only the Python standard library is used.

    tools/make-icon/make-icon.py MODEL OUTPUT_FOLDER [SIZE...]
        (sizes default to 16 22 24 32 48 64 128 256 512, the sizes the game installs)

writes OUTPUT_FOLDER/tolvar.svg, tolvar-symbolic.svg and tolvar-SIZE.png.
"""
import argparse
import math
import os
import re
import struct
import sys
import zlib

PIECE_COLOUR = (1.0, 0.0, 0.0)     # the game's first piece colour
AMBIENT = 0.45                     # the scene's ambient plus both lights' ambient
DIFFUSE = 0.75                     # each light's diffuse strength
LIGHTS = ((256.0, 192.0, 100.0), (512.0, 384.0, 70.0))
TURN_X, TURN_Y = math.radians(20.0), math.radians(-28.0)
MARGIN = 0.03                      # of the icon's side, left free around the piece
SAMPLES = 4                        # samples a pixel along each axis
DEFAULT_SIZES = (16, 22, 24, 32, 48, 64, 128, 256, 512)

SMALL_LIMIT = 24                   # sizes up to this get the profile drawing
SMALL_SPIKES = 8                   # spikes around the ball in profile, none along a row or column
SPIKE_REACH = 1.3                  # the profile's spikes reach this much farther than the model's
SPIKE_BASE = math.radians(23.0)    # half the angle of the ball a spike's base covers
SPIKE_RIDGE = 0.5                  # height of a spike's ridge towards the viewer, of its length
ARC_STEPS = 8                      # segments of the ball's outline between two spikes
SHADES = ((1.0, 0.0, (-0.45, -0.45)),  # the ball's layers: radius, shift towards the light and
          (0.78, 0.16, (0.0, 0.0)),    # the point of the sphere whose light it takes,
          (0.36, 0.42, (0.5, 0.5)))    # darkest and largest first
SYMBOLIC_SIDE = 16                 # symbolic icons are drawn on a 16-pixel grid
SYMBOLIC_FILL = "#2e3436"          # the colour desktops replace with their own


def normalised(v):
    length = math.sqrt(sum(c * c for c in v))
    return tuple(c / length for c in v) if length > 0.0 else v


def sub(a, b):
    return tuple(x - y for x, y in zip(a, b))


def cross(a, b):
    return (a[1] * b[2] - a[2] * b[1], a[2] * b[0] - a[0] * b[2], a[0] * b[1] - a[1] * b[0])


def dot(a, b):
    return sum(x * y for x, y in zip(a, b))


def read_faces(path):
    """The model's triangles (a repeated fourth corner dropped), as lists of (x, y, z)."""
    try:
        with open(path, encoding="ascii") as f:
            lines = [line.strip() for line in f]
        return faces_of(path, lines)
    except (OSError, UnicodeDecodeError, ValueError) as problem:
        sys.exit(f"make-icon: cannot read the model {path}: {problem}")


def faces_of(path, lines):
    pairs = list(zip(lines[0::2], lines[1::2]))
    faces, corners = [], None
    for code, value in pairs + [("0", "EOF")]:
        if code == "0":
            if corners is not None:
                points = [tuple(corners.get(i, [0.0, 0.0, 0.0])) for i in range(4)]
                if points[3] == points[2]:
                    points.pop()
                faces.append(points)
            corners = {} if value == "3DFACE" else None
        elif corners is not None and code.isdigit() and 10 <= int(code) <= 33:
            number = int(code)
            corner, axis = number % 10, number // 10 - 1
            if corner < 4:
                corners.setdefault(corner, [0.0, 0.0, 0.0])[axis] = float(value)
    if not faces:
        sys.exit(f"make-icon: {path} holds no 3DFACE entities")
    return faces


def spike_proportion(faces):
    """How far the spikes' tips reach against the ball's radius: outermost over innermost corner."""
    radii = [math.sqrt(dot(p, p)) for face in faces for p in face]
    if min(radii) <= 0.0:
        sys.exit("make-icon: the model has a corner at its centre, so it has no ball to draw")
    return max(radii) / min(radii)


def lit(normal):
    """The piece colour, 0..255, of a surface facing `normal`, under the game window's lights."""
    light = AMBIENT + sum(DIFFUSE * max(0.0, dot(normal, normalised(l))) for l in LIGHTS)
    return tuple(min(255, round(255 * c * light)) for c in PIECE_COLOUR)


def turned(p):
    x, y, z = p
    y, z = y * math.cos(TURN_X) - z * math.sin(TURN_X), y * math.sin(TURN_X) + z * math.cos(TURN_X)
    x, z = x * math.cos(TURN_Y) + z * math.sin(TURN_Y), -x * math.sin(TURN_Y) + z * math.cos(TURN_Y)
    return (x, y, z)


def shaded_polygons(faces):
    """(points in the unit square with y down, (r, g, b) in 0..255), back to front."""
    faces = [[turned(p) for p in face] for face in faces]
    shown = []
    for face in faces:
        centre = tuple(sum(c) / len(face) for c in zip(*face))
        normal = normalised(cross(sub(face[1], face[0]), sub(face[2], face[0])))
        if dot(normal, centre) < 0.0:   # the ball is seen from outside whatever the winding
            normal = tuple(-c for c in normal)
        if normal[2] <= 0.0:
            continue
        shown.append((centre[2], face, lit(normal)))
    shown.sort(key=lambda item: item[0])
    reach = max(max(abs(p[0]), abs(p[1])) for face in faces for p in face)
    scale = (0.5 - MARGIN) / reach
    return [([(0.5 + p[0] * scale, 0.5 - p[1] * scale) for p in face], colour)
            for _, face, colour in shown]


class Profile:
    """The piece seen in profile on a grid of `side` pixels: a ball and spikes around it.

    Coordinates are pixels with y up and the origin at the centre, which lies on a pixel corner
    (or a pixel's middle on odd sides), so the drawing is symmetric on the grid."""

    def __init__(self, side, proportion):
        self.side = side
        self.tip = side / 2.0   # the tips reach the edge, then go to the middle of their pixel
        self.ball = max(1.0, round(self.tip / (proportion * SPIKE_REACH)))
        step = 2.0 * math.pi / SMALL_SPIKES
        self.angles = [math.pi / 2.0 + step / 2.0 + step * k for k in range(SMALL_SPIKES)]

    def at(self, radius, angle):
        return (radius * math.cos(angle), radius * math.sin(angle))

    def tip_of(self, angle):
        """A spike's tip, moved to the middle of the pixel it lies in, so the point shows sharp."""
        middle = 0.5 if self.side % 2 == 0 else 0.0   # pixel middles, counted from the centre
        return tuple(round(c - middle) + middle for c in self.at(self.tip, angle))

    def outline(self):
        """The silhouette, counter-clockwise: each spike, then the ball's arc to the next one."""
        points, step = [], 2.0 * math.pi / SMALL_SPIKES
        for angle in self.angles:
            points += [self.at(self.ball, angle - SPIKE_BASE), self.tip_of(angle),
                       self.at(self.ball, angle + SPIKE_BASE)]
            arc = step - 2.0 * SPIKE_BASE
            points += [self.at(self.ball, angle + SPIKE_BASE + arc * i / ARC_STEPS) for i in range(1, ARC_STEPS)]
        return points

    def spike_halves(self):
        """Each spike as two triangles either side of its ridge, with the colour its slope takes."""
        halves = []
        for angle in self.angles:
            tip = self.tip_of(angle) + (0.0,)
            root = self.at(self.ball * math.cos(SPIKE_BASE), angle) + (SPIKE_RIDGE * (self.tip - self.ball),)
            for side in (-1.0, 1.0):
                corner = self.at(self.ball, angle + side * SPIKE_BASE) + (0.0,)
                normal = normalised(cross(sub(corner, tip), sub(root, tip)))
                if normal[2] < 0.0:
                    normal = tuple(-c for c in normal)
                halves.append(([tip[:2], corner[:2], root[:2]], lit(normal)))
        return halves

    def disc(self, radius, shift):
        """A disc of `radius` balls, its centre moved `shift` balls towards the lights."""
        towards = normalised(tuple(sum(l[i] for l in LIGHTS) for i in range(2)))
        corners = SMALL_SPIKES * ARC_STEPS
        return [(self.ball * (towards[0] * shift + radius * math.cos(2.0 * math.pi * i / corners)),
                 self.ball * (towards[1] * shift + radius * math.sin(2.0 * math.pi * i / corners)))
                for i in range(corners)]

    def ball_layers(self):
        """Discs that shade the ball from its rim in shadow to the highlight towards the lights."""
        return [(self.disc(radius, shift), lit((x, y, math.sqrt(max(0.0, 1.0 - x * x - y * y)))))
                for radius, shift, (x, y) in SHADES]

    def highlight(self):
        radius, shift, _ = SHADES[-1]
        return self.disc(radius, shift)

    def in_unit_square(self, points):
        return [(0.5 + x / self.side, 0.5 - y / self.side) for x, y in points]

    def polygons(self):
        """The shaded drawing, back to front, in the unit square with y down."""
        return [(self.in_unit_square(points), colour) for points, colour in self.spike_halves() + self.ball_layers()]


def svg(polygons, side=256):
    out = [f'<svg xmlns="http://www.w3.org/2000/svg" width="{side}" height="{side}" '
           f'viewBox="0 0 {side} {side}">\n']
    for points, colour in polygons:
        fill = "#%02x%02x%02x" % colour
        coords = " ".join(f"{x * side:.2f},{y * side:.2f}" for x, y in points)
        out.append(f'  <polygon points="{coords}" fill="{fill}" stroke="{fill}" '
                   f'stroke-width="0.4" stroke-linejoin="round"/>\n')
    out.append("</svg>\n")
    return "".join(out)


def symbolic_svg(profile):
    """The profile's silhouette in one colour, as desktops recolour symbolic icons, with the ball's
    highlight cut out of it so that it reads as a ball rather than a star."""
    side = profile.side

    def subpath(points):
        return "M " + " ".join(f"{x * side:.3f},{y * side:.3f}" for x, y in profile.in_unit_square(points)) + " Z"
    return (f'<svg xmlns="http://www.w3.org/2000/svg" width="{side}" height="{side}" '
            f'viewBox="0 0 {side} {side}">\n'
            f'  <path d="{subpath(profile.outline())} {subpath(profile.highlight())}" '
            f'fill="{SYMBOLIC_FILL}" fill-rule="evenodd"/>\n</svg>\n')


def raster(polygons, size):
    """The polygons drawn at size x size pixels: RGBA rows, corners transparent."""
    grid = size * SAMPLES
    owner = [bytearray(grid) for _ in range(grid)]   # 0: nothing, k: polygon k - 1
    for k, (points, _) in enumerate(polygons, start=1):
        pts = [(x * grid, y * grid) for x, y in points]
        top = max(0, math.ceil(min(p[1] for p in pts) - 0.5))
        bottom = min(grid - 1, math.floor(max(p[1] for p in pts) - 0.5))
        edges = list(zip(pts, pts[1:] + pts[:1]))
        for row in range(top, bottom + 1):
            y = row + 0.5
            xs = sorted(a[0] + (y - a[1]) * (b[0] - a[0]) / (b[1] - a[1])
                        for a, b in edges if (a[1] <= y) != (b[1] <= y))
            for left, right in zip(xs[0::2], xs[1::2]):
                first = max(0, math.ceil(left - 0.5))
                last = min(grid - 1, math.ceil(right - 0.5) - 1)
                if last >= first:
                    owner[row][first:last + 1] = bytes([k]) * (last + 1 - first)
    colours = [(0, 0, 0)] + [colour for _, colour in polygons]
    rows = []
    per_pixel = SAMPLES * SAMPLES
    for py in range(size):
        row = bytearray()
        block = owner[py * SAMPLES:(py + 1) * SAMPLES]
        for px in range(size):
            r = g = b = covered = 0
            for line in block:
                for k in line[px * SAMPLES:(px + 1) * SAMPLES]:
                    if k:
                        c = colours[k]
                        r += c[0]
                        g += c[1]
                        b += c[2]
                        covered += 1
            if covered:
                row += bytes((round(r / covered), round(g / covered), round(b / covered),
                              round(255 * covered / per_pixel)))
            else:
                row += bytes(4)
        rows.append(bytes(row))
    return rows


def png(rows, size):
    def chunk(kind, data):
        return (struct.pack(">I", len(data)) + kind + data
                + struct.pack(">I", zlib.crc32(kind + data) & 0xFFFFFFFF))
    header = struct.pack(">IIBBBBB", size, size, 8, 6, 0, 0, 0)   # 8-bit RGBA
    pixels = b"".join(b"\x00" + row for row in rows)
    return (b"\x89PNG\r\n\x1a\n" + chunk(b"IHDR", header)
            + chunk(b"IDAT", zlib.compress(pixels, 9)) + chunk(b"IEND", b""))


def project_version():
    """The version CMakeLists.txt gives the project, two folders up from this tool."""
    top = os.path.join(os.path.dirname(os.path.abspath(__file__)), "..", "..", "CMakeLists.txt")
    try:
        with open(top, encoding="utf-8") as f:
            found = re.search(r"project\(\s*Tolvar\s+VERSION\s+([0-9.]+)", f.read())
    except OSError:
        found = None
    return found.group(1) if found else "unknown"


def icon_size(text):
    size = int(text)
    if not 1 <= size <= 4096:
        raise argparse.ArgumentTypeError(f"{size} is not an icon size (1 to 4096 pixels)")
    return size


def arguments(argv):
    parser = argparse.ArgumentParser(
        prog="make-icon.py", description="Draws the game's icons from the piece model: a scalable SVG, "
        "a symbolic SVG and a PNG image of each size.")
    parser.add_argument("--version", action="version", version=f"make-icon.py {project_version()}")
    parser.add_argument("model", help="the piece model, a DXF file of 3DFACE entities (resources/Spikes.dxf)")
    parser.add_argument("folder", help="where to write tolvar.svg, tolvar-symbolic.svg and tolvar-SIZE.png")
    parser.add_argument("sizes", nargs="*", type=icon_size, default=list(DEFAULT_SIZES),
                        help="the PNG sizes in pixels (default: %s)" % " ".join(map(str, DEFAULT_SIZES)))
    return parser.parse_args(argv[1:])


def write(path, data):
    """Writes the file whole under a temporary name first, so a build never sees half an icon."""
    temporary = path + ".part"
    with open(temporary, "wb") as f:
        f.write(data)
    os.replace(temporary, path)


def main(argv):
    args = arguments(argv)
    faces = read_faces(args.model)
    proportion = spike_proportion(faces)
    polygons = shaded_polygons(faces)
    os.makedirs(args.folder, exist_ok=True)
    write(os.path.join(args.folder, "tolvar.svg"), svg(polygons).encode("ascii"))
    write(os.path.join(args.folder, "tolvar-symbolic.svg"),
          symbolic_svg(Profile(SYMBOLIC_SIDE, proportion)).encode("ascii"))
    for size in args.sizes:
        drawing = Profile(size, proportion).polygons() if size <= SMALL_LIMIT else polygons
        write(os.path.join(args.folder, f"tolvar-{size}.png"), png(raster(drawing, size), size))
    return 0


if __name__ == "__main__":
    sys.exit(main(sys.argv))
