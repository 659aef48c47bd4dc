#!/usr/bin/env python3
"""Synthesises the game's sound effects as WAV files (16-bit mono, 44100 samples a second), one for
each sound the game plays:

    python3 tools/make-sounds/make_sounds.py OUTPUT_FOLDER

The build runs it and installs the files beside the other resources. Every sound is made here from
sine tones under a smooth envelope (a raised-cosine rise of a few milliseconds and a gentle fall to
silence), so the files are the same at every run. The sounds are short (40 to 250 ms) and soft:
no sample reaches PEAK of full scale. What each one is:

  select      a soft rising blip, G5 gliding to C6, 60 ms: a region is picked up
  deselect    the same blip falling, C6 to G5, 60 ms: the region is let go
  removal     a bright pop falling from 1200 to 420 Hz with a fifth above it, 140 ms: pieces vanish
  landing     a low muffled knock, 170 Hz sinking to 95 Hz, 90 ms: fallen pieces come to rest
  swap        two quick notes, E5 then C5, 100 ms: two neighbours change places
  refill      three rising notes, G5 B5 D6, overlapping like a shimmer, 180 ms: new pieces drop in
  end         three falling notes, C5 A4 F4, 250 ms: the game is over, the score screen shows
  best-score  a rising major arpeggio, C5 E5 G5 C6, 250 ms: the score entered the best scores
"""

import argparse
import math
import os
import struct
import sys
import wave

sys.path.insert(0, os.path.join(os.path.dirname(os.path.abspath(__file__)), ".."))
from tool_version import add_version_option  # noqa: E402

RATE = 44100
PEAK = 0.25           # of full scale: the loudest sample of any sound, two at once still under half
ATTACK = 0.006        # seconds of the rise at each note's start
FULL_SCALE = 32767


def note(freq, start, length, glide_to=None, partials=((1.0, 1.0),), decay=4.0):
    """A tone from `start` for `length` seconds: its pitch glides from freq to glide_to, each partial
    (multiple of the pitch, weight) a sine; it rises over ATTACK and then falls as exp(-decay t/len),
    ending at exactly zero."""
    end = glide_to if glide_to is not None else freq
    count = int(length * RATE)

    def sample(i):
        t = i / RATE
        # The phase of a pitch that moves linearly from freq to end.
        phase = 2 * math.pi * (freq * t + (end - freq) * t * t / (2 * length))
        rise = 0.5 - 0.5 * math.cos(math.pi * min(1.0, t / ATTACK))
        fall = math.exp(-decay * t / length) * (1.0 - i / count)
        return rise * fall * sum(w * math.sin(k * phase) for k, w in partials)
    return int(start * RATE), [sample(i) for i in range(count)]


def mix(length, notes):
    """The notes laid over a silence of `length` seconds, scaled so that the loudest sample is PEAK."""
    out = [0.0] * int(length * RATE)
    for start, samples in notes:
        for i, s in enumerate(samples):
            if start + i < len(out):
                out[start + i] += s
    loudest = max(abs(s) for s in out) or 1.0
    return [s * PEAK / loudest for s in out]


def semitones(name):
    """The frequency of a note named like "A4", "C#5"."""
    steps = {"C": -9, "D": -7, "E": -5, "F": -4, "G": -2, "A": 0, "B": 2}[name[0]]
    steps += name.count("#")
    return 440.0 * 2 ** ((steps + 12 * (int(name[-1]) - 4)) / 12)


def sequence(names, spacing, length, ring):
    """Notes one after the other, spacing seconds apart, each ringing `ring` seconds."""
    return mix(length, [note(semitones(n), i * spacing, min(ring, length - i * spacing),
                             partials=((1.0, 1.0), (2.0, 0.25))) for i, n in enumerate(names)])


SOUNDS = {
    "select": lambda: mix(0.06, [note(semitones("G5"), 0, 0.06, glide_to=semitones("C6"), decay=2.5)]),
    "deselect": lambda: mix(0.06, [note(semitones("C6"), 0, 0.06, glide_to=semitones("G5"), decay=2.5)]),
    "removal": lambda: mix(0.14, [note(1200, 0, 0.14, glide_to=420, partials=((1.0, 1.0), (1.5, 0.35)), decay=5)]),
    "landing": lambda: mix(0.09, [note(170, 0, 0.09, glide_to=95, partials=((1.0, 1.0), (2.0, 0.3)), decay=5)]),
    "swap": lambda: sequence(["E5", "C5"], 0.045, 0.1, 0.055),
    "refill": lambda: sequence(["G5", "B5", "D6"], 0.045, 0.18, 0.09),
    "end": lambda: sequence(["C5", "A4", "F4"], 0.075, 0.25, 0.1),
    "best-score": lambda: sequence(["C5", "E5", "G5", "C6"], 0.055, 0.25, 0.085),
}


def write_wav(path, samples):
    frames = b"".join(struct.pack("<h", int(round(s * FULL_SCALE))) for s in samples)
    with wave.open(path + ".new", "wb") as w:
        w.setnchannels(1)
        w.setsampwidth(2)
        w.setframerate(RATE)
        w.writeframes(frames)
    os.replace(path + ".new", path)


def main():
    parser = argparse.ArgumentParser(description="Writes the game's sound effects, NAME.wav for each of: " +
                                     ", ".join(SOUNDS) + ".")
    parser.add_argument("folder", help="where the WAV files go (made when missing)")
    add_version_option(parser)
    args = parser.parse_args()
    os.makedirs(args.folder, exist_ok=True)
    for name, make in SOUNDS.items():
        write_wav(os.path.join(args.folder, name + ".wav"), make())


if __name__ == "__main__":
    main()
