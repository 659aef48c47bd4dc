#!/usr/bin/env python3
"""Paints the game window's background, "Nebula.png": a deep-space nebula of 1920 x 1200 pixels
(a dark sky, coloured gas clouds with dark dust lanes, and stars), written as an 8-bit RGB PNG.

Only the Python standard library is used (zlib for the PNG stream), and the picture comes from a
fixed seed, so running it again gives the same file:

    python3 tools/make-nebula/make_nebula.py resources/Nebula.png [--seed N] [--width W --height H]

The gas is computed on a grid a quarter of the size and smoothed up to full size; the stars are
placed at full size on top.
"""

import argparse
import math
import os
import random
import struct
import sys
import zlib

sys.path.insert(0, os.path.join(os.path.dirname(os.path.abspath(__file__)), ".."))
from tool_version import add_version_option  # noqa: E402


def smooth(t):
    return t * t * (3.0 - 2.0 * t)


def value_noise(rng, width, height, cell):
    """One octave of value noise on a width x height grid, lattice spacing `cell` samples."""
    lw = int(width / cell) + 3
    lh = int(height / cell) + 3
    lattice = [[rng.random() for _ in range(lw)] for _ in range(lh)]
    xs = []
    for x in range(width):
        fx = x / cell
        ix = int(fx)
        xs.append((ix, smooth(fx - ix)))
    out = []
    for y in range(height):
        fy = y / cell
        iy = int(fy)
        ty = smooth(fy - iy)
        r0 = lattice[iy]
        r1 = lattice[iy + 1]
        row = []
        for ix, tx in xs:
            a = r0[ix] + (r0[ix + 1] - r0[ix]) * tx
            b = r1[ix] + (r1[ix + 1] - r1[ix]) * tx
            row.append(a + (b - a) * ty)
        out.append(row)
    return out


def fbm(rng, width, height, cell, octaves, ridged=False):
    """Fractal sum of octaves, each half the spacing and amplitude of the one before; 0..1."""
    total = [[0.0] * width for _ in range(height)]
    amp, norm = 1.0, 0.0
    for _ in range(octaves):
        layer = value_noise(rng, width, height, max(cell, 1.0))
        for y in range(height):
            trow, lrow = total[y], layer[y]
            if ridged:
                for x in range(width):
                    trow[x] += amp * (1.0 - abs(2.0 * lrow[x] - 1.0))
            else:
                for x in range(width):
                    trow[x] += amp * lrow[x]
        norm += amp
        amp *= 0.5
        cell /= 2.0
    for row in total:
        for x in range(width):
            row[x] /= norm
    return total


def clamp01(v):
    return 0.0 if v < 0.0 else (1.0 if v > 1.0 else v)


def contrast(v, lo, hi):
    return clamp01((v - lo) / (hi - lo))


def paint_gas(rng, width, height):
    """The sky and the gas clouds on the coarse grid: three rows of floats (r, g, b) per line."""
    density = fbm(rng, width, height, width / 3.0, 6)
    hue = fbm(rng, width, height, width / 4.0, 4)
    filaments = fbm(rng, width, height, width / 5.0, 6, ridged=True)
    dust = fbm(rng, width, height, width / 6.0, 6)
    glow = fbm(rng, width, height, width / 8.0, 5)

    # The clouds follow a gently curving band from the lower left to the upper right, with a
    # bright core a little right of the centre.
    core_x, core_y = 0.58 * width, 0.55 * height
    magenta = (0.85, 0.18, 0.55)
    crimson = (0.75, 0.10, 0.16)
    teal = (0.10, 0.45, 0.70)
    gold = (0.95, 0.62, 0.30)
    sky = (0.006, 0.008, 0.022)

    image = []
    for y in range(height):
        v = y / height
        out = []
        drow, hrow, frow, srow, grow = density[y], hue[y], filaments[y], dust[y], glow[y]
        for x in range(width):
            u = x / width
            band_centre = 0.15 + 0.75 * u + 0.12 * math.sin(3.0 * u + 0.5)
            band = math.exp(-((v - band_centre) ** 2) / 0.06)
            dxc = (x - core_x) / width
            dyc = (y - core_y) / height
            core = math.exp(-(dxc * dxc + dyc * dyc) / 0.012)

            d = contrast(drow[x], 0.38, 0.78) * (0.25 + 0.75 * band)
            f = contrast(frow[x], 0.62, 0.92) * band
            h = contrast(hrow[x], 0.3, 0.7)
            lanes = contrast(srow[x], 0.48, 0.72)
            g = contrast(grow[x], 0.4, 0.8)

            # Emission gas: magenta and crimson, turning teal where the hue field is high.
            gas = d * d * 1.6
            r = gas * (magenta[0] * (1.0 - h) + teal[0] * h) + f * crimson[0] * 0.9
            gg = gas * (magenta[1] * (1.0 - h) + teal[1] * h) + f * crimson[1] * 0.9
            b = gas * (magenta[2] * (1.0 - h) + teal[2] * h) + f * crimson[2] * 0.9
            # The hot core: gold fading into white.
            c = core * (0.4 + 0.6 * g)
            r += c * gold[0] * 1.2
            gg += c * gold[1] * 1.2
            b += c * gold[2] * 1.2
            # A faint blue haze over the whole sky.
            haze = 0.05 * g
            r += haze * 0.2
            gg += haze * 0.3
            b += haze * 0.8
            # Dark dust lanes eat into the gas.
            shade = 1.0 - 0.85 * lanes * band
            r, gg, b = r * shade, gg * shade, b * shade
            # Soft exposure, so bright gas saturates instead of clipping.
            out.append((sky[0] + 1.0 - math.exp(-1.6 * r),
                        sky[1] + 1.0 - math.exp(-1.6 * gg),
                        sky[2] + 1.0 - math.exp(-1.6 * b)))
        image.append(out)
    return image


def upsample(coarse, width, height):
    """Bilinear enlargement of the coarse picture to width x height, as rows of 8-bit bytes."""
    ch = len(coarse)
    cw = len(coarse[0])
    sx = (cw - 1) / (width - 1)
    sy = (ch - 1) / (height - 1)
    xs = []
    for x in range(width):
        fx = x * sx
        ix = min(int(fx), cw - 2)
        xs.append((ix, fx - ix))
    # Widen each coarse row once.
    wide = []
    for row in coarse:
        line = []
        for ix, tx in xs:
            a, b = row[ix], row[ix + 1]
            line.append((a[0] + (b[0] - a[0]) * tx,
                         a[1] + (b[1] - a[1]) * tx,
                         a[2] + (b[2] - a[2]) * tx))
        wide.append(line)
    rows = []
    for y in range(height):
        fy = y * sy
        iy = min(int(fy), ch - 2)
        ty = fy - iy
        r0, r1 = wide[iy], wide[iy + 1]
        row = [0.0] * (width * 3)
        i = 0
        for a, b in zip(r0, r1):
            row[i] = a[0] + (b[0] - a[0]) * ty
            row[i + 1] = a[1] + (b[1] - a[1]) * ty
            row[i + 2] = a[2] + (b[2] - a[2]) * ty
            i += 3
        rows.append(row)
    return rows


def add_star(rows, width, height, cx, cy, radius, colour, brightness):
    """A star: a Gaussian spot, with four faint spikes for the brightest."""
    reach = int(radius * 3.0) + 1
    for y in range(max(0, int(cy) - reach), min(height, int(cy) + reach + 1)):
        row = rows[y]
        for x in range(max(0, int(cx) - reach), min(width, int(cx) + reach + 1)):
            d2 = (x - cx) ** 2 + (y - cy) ** 2
            k = brightness * math.exp(-d2 / (2.0 * radius * radius))
            if k < 0.004:
                continue
            i = x * 3
            row[i] += colour[0] * k
            row[i + 1] += colour[1] * k
            row[i + 2] += colour[2] * k
    if radius > 2.3:
        length = int(radius * 14)
        for t in range(-length, length + 1):
            k = brightness * 0.5 * math.exp(-abs(t) / (radius * 3.0))
            for x, y in ((int(cx) + t, int(cy)), (int(cx), int(cy) + t)):
                if 0 <= x < width and 0 <= y < height:
                    i = x * 3
                    rows[y][i] += colour[0] * k
                    rows[y][i + 1] += colour[1] * k
                    rows[y][i + 2] += colour[2] * k


def add_stars(rng, rows, width, height):
    tints = [(1.0, 1.0, 1.0), (0.75, 0.85, 1.0), (1.0, 0.92, 0.75), (1.0, 0.8, 0.7), (0.8, 0.9, 1.0)]
    count = width * height // 850
    for _ in range(count):
        cx = rng.random() * width
        cy = rng.random() * height
        # Most stars are faint points; a few are large and bright.
        m = rng.random() ** 6
        radius = 0.45 + 2.2 * m
        brightness = 0.25 + 1.2 * rng.random() ** 2 + 1.5 * m
        add_star(rows, width, height, cx, cy, radius, rng.choice(tints), brightness)


def png_chunk(kind, payload):
    body = kind + payload
    return struct.pack(">I", len(payload)) + body + struct.pack(">I", zlib.crc32(body) & 0xFFFFFFFF)


def write_png(path, rows, width, height):
    raw = bytearray()
    prev = bytes(width * 3)
    for row in rows:
        line = bytes(int(clamp01(v) * 255.0 + 0.5) for v in row)
        # Filter "Up": each byte minus the byte above it; suits the smooth gas well.
        raw.append(2)
        raw.extend((a - b) & 0xFF for a, b in zip(line, prev))
        prev = line
    header = struct.pack(">IIBBBBB", width, height, 8, 2, 0, 0, 0)
    data = (b"\x89PNG\r\n\x1a\n" + png_chunk(b"IHDR", header)
            + png_chunk(b"IDAT", zlib.compress(bytes(raw), 9)) + png_chunk(b"IEND", b""))
    with open(path, "wb") as out:
        out.write(data)
    return len(data)


def main(argv):
    parser = argparse.ArgumentParser(description="Paint the nebula background as a PNG file.")
    parser.add_argument("output")
    parser.add_argument("--seed", type=int, default=1987)
    parser.add_argument("--width", type=int, default=1920)
    parser.add_argument("--height", type=int, default=1200)
    add_version_option(parser)
    args = parser.parse_args(argv)
    if args.width < 8 or args.height < 8:
        parser.error("the picture must be at least 8 x 8 pixels")

    rng = random.Random(args.seed)
    coarse = paint_gas(rng, max(4, args.width // 4), max(4, args.height // 4))
    rows = upsample(coarse, args.width, args.height)
    add_stars(rng, rows, args.width, args.height)
    size = write_png(args.output, rows, args.width, args.height)
    print("%s: %d x %d, %d bytes" % (args.output, args.width, args.height, size))
    return 0


if __name__ == "__main__":
    sys.exit(main(sys.argv[1:]))
