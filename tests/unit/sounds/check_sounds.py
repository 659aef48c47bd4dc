#!/usr/bin/env python3
"""The synthesised sound effects: the tool writes one WAV file for every sound the game names
(app/rules/SoundNames.h), and each is short, soft, not silent and without a click at either end.
check_sounds.py TOOL SOUND_NAMES_HEADER"""

import os
import re
import struct
import subprocess
import sys
import tempfile
import wave

SHORTEST, LONGEST = 0.040, 0.250   # seconds
LOUDEST = 0.5                      # of full scale: well under it
QUIETEST_PEAK = 0.05               # a sound that peaks lower is as good as silent
EDGE = 0.01                        # the first and last samples, of full scale: no click


def names_of(header):
    with open(header, encoding="utf-8") as f:
        return re.findall(r'kSound\w+ = "([^"]+)"', f.read())


def problems(path):
    with wave.open(path, "rb") as w:
        if (w.getnchannels(), w.getsampwidth()) != (1, 2):
            return ["not 16-bit mono"]
        rate, count = w.getframerate(), w.getnframes()
        samples = [s / 32768 for s in struct.unpack("<%dh" % count, w.readframes(count))]
    seconds, peak = count / rate, max(map(abs, samples), default=0.0)
    found = []
    if not SHORTEST <= seconds <= LONGEST:
        found.append("%.3f s long" % seconds)
    if peak > LOUDEST:
        found.append("peaks at %.2f of full scale" % peak)
    if peak < QUIETEST_PEAK:
        found.append("silent (peak %.4f)" % peak)
    if samples and max(abs(samples[0]), abs(samples[-1])) > EDGE:
        found.append("starts or ends with a click (%.3f, %.3f)" % (samples[0], samples[-1]))
    return found


def main():
    tool, header = sys.argv[1:3]
    names = names_of(header)
    if len(names) < 8:
        sys.exit("only %d sound names found in %s" % (len(names), header))
    with tempfile.TemporaryDirectory() as folder:
        subprocess.run([sys.executable, tool, folder], check=True)
        made = sorted(os.listdir(folder))
        wanted = sorted(n + ".wav" for n in names)
        failures = [] if made == wanted else ["the files made are %s, the game plays %s" % (made, wanted)]
        for name in names:
            path = os.path.join(folder, name + ".wav")
            if os.path.exists(path):
                failures += ["%s: %s" % (name, p) for p in problems(path)]
    if failures:
        sys.exit("\n".join(failures))
    print("%d sounds, each %.0f to %.0f ms, peaks under %.2f" % (len(names), SHORTEST * 1000, LONGEST * 1000, LOUDEST))


if __name__ == "__main__":
    main()
