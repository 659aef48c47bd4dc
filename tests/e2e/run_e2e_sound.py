#!/usr/bin/env python3
"""The sounds played in the window, heard through SDL's "disk" audio driver, which writes what the
game plays to a file as it plays: a removal writes non-silent samples; with sound off (the M key,
remembered in the settings) a removal leaves a full second of written audio silent; with no audio
device at all the game plays on and says once why it is silent.
run_e2e_sound.py --program build/bin/tolvar --test disk|no_device"""

import os
import plistlib
import sys

sys.path.insert(0, os.path.dirname(os.path.abspath(__file__)))
from tolvar_driver import Tolvar, check, key, removes, run_test_script, select_region  # noqa: E402

BYTES_A_SECOND = 44100 * 2 * 2  # what the game opens: 44100 frames a second, 16-bit stereo
SILENT_NOTE = "plays without sound"


class SoundTolvar(Tolvar):
    """The program with its sound going to the driver the test names."""
    def __init__(self, program, name, audio):
        self.audio = audio
        super().__init__(program, name)

    def launch(self):
        self.env.update(self.audio(self.work))
        super().launch()

    def audio_file(self):
        return os.path.join(self.work, "audio.raw")

    def audio_bytes(self):
        try:
            with open(self.audio_file(), "rb") as f:
                return f.read()
        except FileNotFoundError:
            return b""

    def silent_notes(self):
        return [line for line in self.stdout(self.err_path).splitlines() if SILENT_NOTE in line]


def make(program, name):
    # The file's variable is SDL_DISKAUDIOFILE in SDL 2, SDL_DISK_AUDIO_FILE after it.
    audio = {"disk": lambda work: {"SDL_AUDIODRIVER": "disk", "SDL_DISKAUDIOFILE": os.path.join(work, "audio.raw"),
                                   "SDL_DISK_AUDIO_FILE": os.path.join(work, "audio.raw")},
             "no_device": lambda work: {"SDL_AUDIODRIVER": "tolvar-no-such-driver"}}[name]
    return SoundTolvar(program, name, audio)


def remove_a_region(t, lay, before):
    removed, _ = select_region(t, lay)
    return removes(t, lay, removed, lambda: key(t, "space"), before)


def test_disk(t):
    lay = t.start(1, 8, 8)  # Vexamor
    check(t.audio_bytes().strip(b"\0") == b"", "sound before anything happened")
    pieces = remove_a_region(t, lay, None)
    t.wait_for(lambda: t.audio_bytes().strip(b"\0"), 20, "the removal's sound in the audio written")
    check(not t.silent_notes(), "the game says it is silent: %s" % t.silent_notes())

    key(t, "m")  # sound off, kept in the settings

    def sound_setting():
        try:
            with open(os.path.join(t.folder, "Settings.dict"), "rb") as f:
                return plistlib.load(f).get("Sound")
        except FileNotFoundError:
            return None
    t.wait_for(lambda: sound_setting() is False, 10, "Sound off in the settings")
    since = len(t.audio_bytes())
    remove_a_region(t, lay, pieces)
    shown = len(t.audio_bytes())
    t.wait_for(lambda: len(t.audio_bytes()) >= shown + BYTES_A_SECOND, 30, "a second of audio after the removal")
    written = t.audio_bytes()[since:]
    check(written.strip(b"\0") == b"", "%d non-zero bytes of %d written with sound off"
          % (len(written) - written.count(0), len(written)))


def test_no_device(t):
    lay = t.start(1, 8, 8)
    pieces = remove_a_region(t, lay, None)
    remove_a_region(t, lay, pieces)
    notes = t.silent_notes()
    check(len(notes) == 1, "the game says %d times that it is silent: %s" % (len(notes), notes))
    check("no audio device" in notes[0] or "cannot be opened" in notes[0], "the reason: %s" % notes[0])


if __name__ == "__main__":
    run_test_script({"disk": test_disk, "no_device": test_no_device}, make)
