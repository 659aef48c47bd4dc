"""The font the game's windows draw with, as fontconfig gives it to the game, and the width text takes in it.

The game asks fontconfig for the regular upright face of "sans-serif", then "DejaVu Sans", then "Nimbus
Sans", and takes the first answer that is a TrueType or OpenType file; Dear ImGui scales that font so
that its ascent and descent fill the font's pixel size, and places each glyph one advance after the
last. Which font that is depends on what the machine has installed, so a test that measures text asks
here instead of counting on one font's widths."""

import os
import struct
import subprocess

FAMILIES = ("sans-serif", "DejaVu Sans", "Nimbus Sans")


def interface_font_file():
    """The file of the interface font, or None when the game would fall back to its built-in font."""
    for family in FAMILIES:
        found = subprocess.run(["fc-match", "-f", "%{file}", family + ":weight=regular:slant=roman"],
                               stdout=subprocess.PIPE, stderr=subprocess.DEVNULL, timeout=60).stdout.decode()
        if found.lower().endswith((".ttf", ".otf")) and os.path.isfile(found):
            return found
    return None


class FontMetrics:
    """The horizontal metrics of a TrueType or OpenType font file: its character map and advances."""

    def __init__(self, path):
        with open(path, "rb") as f:
            self.data = f.read()
        count = struct.unpack_from(">H", self.data, 4)[0]
        self.tables = {self.data[12 + 16 * i:16 + 16 * i].decode("latin-1"):
                       struct.unpack_from(">I", self.data, 20 + 16 * i)[0] for i in range(count)}
        hhea = self.tables["hhea"]
        ascent, descent = struct.unpack_from(">hh", self.data, hhea + 4)
        self.height = ascent - descent
        self.metric_count = struct.unpack_from(">H", self.data, hhea + 34)[0]
        self.cmap_format, self.cmap_at = self._unicode_subtable()

    def _unicode_subtable(self):
        """The format and place of the first Unicode subtable of the character map (format 4 or 12)."""
        cmap = self.tables["cmap"]
        for i in range(struct.unpack_from(">H", self.data, cmap + 2)[0]):
            platform, encoding, offset = struct.unpack_from(">HHI", self.data, cmap + 4 + 8 * i)
            kind = struct.unpack_from(">H", self.data, cmap + offset)[0]
            if (platform == 0 or (platform == 3 and encoding in (1, 10))) and kind in (4, 12):
                return kind, cmap + offset
        raise ValueError("the font has no Unicode character map of format 4 or 12")

    def glyph(self, c):
        return self._format4(self.cmap_at, c) if self.cmap_format == 4 else self._format12(self.cmap_at, c)

    def _format4(self, at, c):
        segments = struct.unpack_from(">H", self.data, at + 6)[0] // 2
        ends, starts = at + 14, at + 16 + 2 * segments
        deltas, ranges = starts + 2 * segments, starts + 4 * segments
        for i in range(segments):
            start, end = (struct.unpack_from(">H", self.data, a + 2 * i)[0] for a in (starts, ends))
            if start <= c <= end:
                delta, offset = struct.unpack_from(">h", self.data, deltas + 2 * i)[0], \
                    struct.unpack_from(">H", self.data, ranges + 2 * i)[0]
                if offset == 0:
                    return (c + delta) & 0xFFFF
                glyph = struct.unpack_from(">H", self.data, ranges + 2 * i + offset + 2 * (c - start))[0]
                return (glyph + delta) & 0xFFFF if glyph else 0
        return 0

    def _format12(self, at, c):
        for i in range(struct.unpack_from(">I", self.data, at + 12)[0]):
            start, end, glyph = struct.unpack_from(">III", self.data, at + 16 + 12 * i)
            if start <= c <= end:
                return glyph + c - start
        return 0

    def advance_and_bearing(self, glyph):  # in font units
        hmtx = self.tables["hmtx"]
        last = min(glyph, self.metric_count - 1)
        advance = struct.unpack_from(">H", self.data, hmtx + 4 * last)[0]
        if glyph < self.metric_count:
            bearing = struct.unpack_from(">h", self.data, hmtx + 4 * glyph + 2)[0]
        else:
            bearing = struct.unpack_from(">h", self.data, hmtx + 4 * self.metric_count + 2 * (glyph - self.metric_count))[0]
        return advance, bearing

    def ink_width(self, text, pixels):
        """About how many pixels text drawn at this pixel size spans, from its first glyph's ink to the
        last glyph's advance (the last glyph's right side bearing, a pixel or so, is left in)."""
        metrics = [self.advance_and_bearing(self.glyph(ord(c))) for c in text]
        return (sum(advance for advance, _ in metrics) - metrics[0][1]) * pixels / self.height
