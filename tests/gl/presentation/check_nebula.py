#!/usr/bin/env python3
"""Checks the nebula background: the generator writes a well-formed PNG of the size asked for,
the same picture for the same seed, and a picture that looks like space (mostly dark sky, some
bright stars, coloured gas); and the shipped resources/Nebula.png is 1920 x 1200 and under 4 MB.

    check_nebula.py <generator> <shipped Nebula.png> <scratch folder>
"""

import os
import struct
import subprocess
import sys
import zlib


def fail(message):
    print("FAIL:", message)
    sys.exit(1)


def read_png(path):
    """(width, height, rows of RGB byte triples) of an 8-bit RGB PNG; fails on anything else."""
    with open(path, "rb") as f:
        data = f.read()
    if data[:8] != b"\x89PNG\r\n\x1a\n":
        fail("%s: not a PNG signature" % path)
    pos, idat, header = 8, b"", None
    while pos < len(data):
        length, kind = struct.unpack(">I4s", data[pos:pos + 8])
        payload = data[pos + 8:pos + 8 + length]
        crc = struct.unpack(">I", data[pos + 8 + length:pos + 12 + length])[0]
        if zlib.crc32(kind + payload) & 0xFFFFFFFF != crc:
            fail("%s: bad CRC in chunk %r" % (path, kind))
        if kind == b"IHDR":
            header = struct.unpack(">IIBBBBB", payload)
        elif kind == b"IDAT":
            idat += payload
        elif kind == b"IEND":
            break
        pos += 12 + length
    if header is None:
        fail("%s: no header" % path)
    width, height, depth, colour, _, _, interlace = header
    if depth != 8 or colour != 2 or interlace != 0:
        fail("%s: expected 8-bit RGB, not interlaced" % path)
    raw = zlib.decompress(idat)
    stride = width * 3
    if len(raw) != height * (stride + 1):
        fail("%s: pixel data of %d bytes for %d x %d" % (path, len(raw), width, height))
    rows, prev = [], bytearray(stride)
    for y in range(height):
        kind = raw[y * (stride + 1)]
        line = bytearray(raw[y * (stride + 1) + 1:(y + 1) * (stride + 1)])
        for i in range(stride):
            a = line[i - 3] if i >= 3 else 0
            b = prev[i]
            c = prev[i - 3] if i >= 3 else 0
            if kind == 1:
                line[i] = (line[i] + a) & 0xFF
            elif kind == 2:
                line[i] = (line[i] + b) & 0xFF
            elif kind == 3:
                line[i] = (line[i] + (a + b) // 2) & 0xFF
            elif kind == 4:
                p = a + b - c
                pa, pb, pc = abs(p - a), abs(p - b), abs(p - c)
                line[i] = (line[i] + (a if pa <= pb and pa <= pc else (b if pb <= pc else c))) & 0xFF
            elif kind != 0:
                fail("%s: unknown filter %d" % (path, kind))
        rows.append(bytes(line))
        prev = line
    return width, height, rows


def looks_like_space(path, rows):
    pixels = [(row[i], row[i + 1], row[i + 2]) for row in rows for i in range(0, len(row), 3)]
    brightness = sorted(r + g + b for r, g, b in pixels)
    median = brightness[len(brightness) // 2]
    stars = sum(1 for r, g, b in pixels if r > 220 and g > 220 and b > 220)
    coloured = sum(1 for r, g, b in pixels if max(r, g, b) - min(r, g, b) > 60)
    if median > 3 * 160:
        fail("%s: the sky is not dark (median brightness %d)" % (path, median))
    if stars == 0:
        fail("%s: no stars" % path)
    if coloured < len(pixels) // 50:
        fail("%s: hardly any coloured gas (%d of %d pixels)" % (path, coloured, len(pixels)))
    print("%s: median brightness %d of 765, %d star pixels, %d coloured pixels of %d" %
          (path, median, stars, coloured, len(pixels)))


def main():
    generator, shipped, scratch = sys.argv[1:4]
    small = os.path.join(scratch, "nebula-check-a.png")
    again = os.path.join(scratch, "nebula-check-b.png")
    other = os.path.join(scratch, "nebula-check-c.png")
    for out, seed in ((small, 5), (again, 5), (other, 6)):
        subprocess.run([sys.executable, generator, out, "--width", "240", "--height", "150", "--seed", str(seed)],
                       check=True, stdout=subprocess.DEVNULL)
    w, h, rows = read_png(small)
    if (w, h) != (240, 150):
        fail("asked for 240 x 150, got %d x %d" % (w, h))
    looks_like_space(small, rows)
    if read_png(again)[2] != rows:
        fail("the same seed gave another picture")
    if read_png(other)[2] == rows:
        fail("another seed gave the same picture")
    if subprocess.run([sys.executable, generator, small, "--width", "2", "--height", "2"],
                      stdout=subprocess.DEVNULL, stderr=subprocess.DEVNULL).returncode == 0:
        fail("a 2 x 2 picture was accepted")
    for path in (small, again, other):
        os.remove(path)

    size = os.path.getsize(shipped)
    if size >= 4 * 1024 * 1024:
        fail("%s is %d bytes, not under 4 MB" % (shipped, size))
    w, h, rows = read_png(shipped)
    if (w, h) != (1920, 1200):
        fail("%s is %d x %d, not 1920 x 1200" % (shipped, w, h))
    looks_like_space(shipped, rows[::8])
    print("ok")


if __name__ == "__main__":
    main()
