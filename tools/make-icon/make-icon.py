#!/usr/bin/env python3
"""Draws Tolvar's icon, the game's spiky piece, from the piece model itself.

Reads the 3DFACE entities of a DXF model (the game's resources/Spikes.dxf), turns the ball a
little so it reads as round, lights it like the game window does (two lights from the upper
right, the game's ambient and diffuse strengths) in the first piece colour, and draws the faces
that look at the viewer back to front. The same list of shaded polygons becomes a scalable SVG
and PNG images of the given sizes (transparent background, 4 x 4 samples a pixel). Only the
Python standard library is used.

    tools/make-icon/make-icon.py MODEL OUTPUT_FOLDER [SIZE...]   (sizes default to 48 64 128 256)

writes OUTPUT_FOLDER/tolvar.svg and OUTPUT_FOLDER/tolvar-SIZE.png.
"""
import math
import os
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
    with open(path, encoding="ascii") as f:
        lines = [line.strip() for line in f]
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


def turned(p):
    x, y, z = p
    y, z = y * math.cos(TURN_X) - z * math.sin(TURN_X), y * math.sin(TURN_X) + z * math.cos(TURN_X)
    x, z = x * math.cos(TURN_Y) + z * math.sin(TURN_Y), -x * math.sin(TURN_Y) + z * math.cos(TURN_Y)
    return (x, y, z)


def shaded_polygons(faces):
    """(points in the unit square with y down, (r, g, b) in 0..255), back to front."""
    faces = [[turned(p) for p in face] for face in faces]
    lights = [normalised(light) for light in LIGHTS]
    lit = []
    for face in faces:
        centre = tuple(sum(c) / len(face) for c in zip(*face))
        normal = normalised(cross(sub(face[1], face[0]), sub(face[2], face[0])))
        if dot(normal, centre) < 0.0:   # the ball is seen from outside whatever the winding
            normal = tuple(-c for c in normal)
        if normal[2] <= 0.0:
            continue
        light = AMBIENT + sum(DIFFUSE * max(0.0, dot(normal, l)) for l in lights)
        colour = tuple(min(255, round(255 * c * light)) for c in PIECE_COLOUR)
        lit.append((centre[2], face, colour))
    lit.sort(key=lambda item: item[0])
    reach = max(max(abs(p[0]), abs(p[1])) for face in faces for p in face)
    scale = (0.5 - MARGIN) / reach
    return [([(0.5 + p[0] * scale, 0.5 - p[1] * scale) for p in face], colour)
            for _, face, colour in lit]


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


def main(argv):
    if len(argv) < 3:
        sys.stderr.write("usage: make-icon.py MODEL OUTPUT_FOLDER [SIZE...]\n")
        return 2
    model, folder = argv[1], argv[2]
    sizes = [int(s) for s in argv[3:]] or [48, 64, 128, 256]
    polygons = shaded_polygons(read_faces(model))
    os.makedirs(folder, exist_ok=True)
    with open(os.path.join(folder, "tolvar.svg"), "w", encoding="ascii") as f:
        f.write(svg(polygons))
    for size in sizes:
        with open(os.path.join(folder, f"tolvar-{size}.png"), "wb") as f:
            f.write(png(raster(polygons, size), size))
    return 0


if __name__ == "__main__":
    sys.exit(main(sys.argv))
