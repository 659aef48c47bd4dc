#!/usr/bin/env python3
"""Writes the piece model "Spikes": a ball with 32 spikes, as a DXF file of 3DFACE entities.

The ball is an icosahedron whose every face is cut into nine triangles (edges in thirds), the
new points pushed out onto the unit sphere. Every small triangle then has exactly one corner
that is either an icosahedron corner or a face centre, and two corners on the original edges.
Those 32 corners are pulled out to SPIKE_RADIUS, so the 180 triangles form 32 pointed spikes
(12 five-sided, 20 six-sided) that cover the whole ball.

Every face is wound clockwise seen from outside, so (c1 - c0) x (c2 - c0), the normal the
game's reader makes, points into the ball. The game window looks along +z (a larger z lies
farther), keeps counter-clockwise front faces and lights the models from +z: with this winding
the half that faces the player is the half it draws, lit, and the spikes stand out. A triangle
repeats its third corner as the fourth. Coordinates always carry a decimal point and lines end
in a single LF.

    tools/make-spikes/make-spikes.py [OUTPUT]   (default: resources/Spikes.dxf)
"""
import argparse
import math
import os
import sys

sys.path.insert(0, os.path.join(os.path.dirname(os.path.abspath(__file__)), ".."))
from tool_version import add_version_option  # noqa: E402

SPIKE_RADIUS = 1.55
BALL_RADIUS = 1.0


def normalised(v, radius=1.0):
    length = math.sqrt(sum(c * c for c in v))
    return tuple(radius * c / length for c in v)


def icosahedron():
    t = (1.0 + math.sqrt(5.0)) / 2.0
    corners = [(-1, t, 0), (1, t, 0), (-1, -t, 0), (1, -t, 0),
               (0, -1, t), (0, 1, t), (0, -1, -t), (0, 1, -t),
               (t, 0, -1), (t, 0, 1), (-t, 0, -1), (-t, 0, 1)]
    faces = [(0, 11, 5), (0, 5, 1), (0, 1, 7), (0, 7, 10), (0, 10, 11),
             (1, 5, 9), (5, 11, 4), (11, 10, 2), (10, 7, 6), (7, 1, 8),
             (3, 9, 4), (3, 4, 2), (3, 2, 6), (3, 6, 8), (3, 8, 9),
             (4, 9, 5), (2, 4, 11), (6, 2, 10), (8, 6, 7), (9, 8, 1)]
    return [normalised(c) for c in corners], faces


def lerp(a, b, f):
    return tuple(a[i] + (b[i] - a[i]) * f for i in range(3))


def sub(a, b):
    return tuple(a[i] - b[i] for i in range(3))


def cross(a, b):
    return (a[1] * b[2] - a[2] * b[1], a[2] * b[0] - a[0] * b[2], a[0] * b[1] - a[1] * b[0])


def dot(a, b):
    return sum(a[i] * b[i] for i in range(3))


def spiky_triangles():
    corners, faces = icosahedron()
    triangles = []
    for ia, ib, ic in faces:
        a, b, c = corners[ia], corners[ib], corners[ic]
        tip = lambda p: normalised(p, SPIKE_RADIUS)
        edge = lambda p, q, f: normalised(lerp(p, q, f), BALL_RADIUS)
        ab1, ab2 = edge(a, b, 1 / 3), edge(a, b, 2 / 3)
        bc1, bc2 = edge(b, c, 1 / 3), edge(b, c, 2 / 3)
        ca1, ca2 = edge(c, a, 1 / 3), edge(c, a, 2 / 3)
        centre = tip(tuple((a[i] + b[i] + c[i]) / 3 for i in range(3)))
        ta, tb, tc = tip(a), tip(b), tip(c)
        # Three corner triangles, each the side of a five-sided spike.
        triangles += [(ta, ab1, ca2), (tb, bc1, ab2), (tc, ca1, bc2)]
        # Six triangles around the face centre: the six-sided spike.
        ring = [ab1, ab2, bc1, bc2, ca1, ca2]
        for k in range(6):
            triangles.append((centre, ring[k], ring[(k + 1) % 6]))
    wound = []
    for t in triangles:
        normal = cross(sub(t[1], t[0]), sub(t[2], t[0]))
        middle = tuple(sum(p[i] for p in t) / 3 for i in range(3))
        wound.append(t if dot(normal, middle) < 0 else (t[0], t[2], t[1]))
    return wound


def dxf(triangles):
    lines = ["  0", "SECTION", "  2", "ENTITIES"]
    for t in triangles:
        quad = (t[0], t[1], t[2], t[2])
        lines += ["  0", "3DFACE", "  8", "Spikes"]
        for corner, p in enumerate(quad):
            for axis in range(3):
                lines += ["%3d" % (10 * (axis + 1) + corner), "%.6f" % p[axis]]
    lines += ["  0", "ENDSEC", "  0", "EOF"]
    return "\n".join(lines) + "\n"


def main():
    here = os.path.dirname(os.path.abspath(__file__))
    parser = argparse.ArgumentParser(description="Write the piece model, a ball with 32 spikes, as a DXF file.")
    parser.add_argument("output", nargs="?", help="the DXF file to write (default: resources/Spikes.dxf)",
                        default=os.path.normpath(os.path.join(here, "..", "..", "resources", "Spikes.dxf")))
    add_version_option(parser)
    out = parser.parse_args().output
    triangles = spiky_triangles()
    with open(out, "w", newline="\n") as f:
        f.write(dxf(triangles))
    print("%s: %d faces" % (out, len(triangles)))


if __name__ == "__main__":
    main()
