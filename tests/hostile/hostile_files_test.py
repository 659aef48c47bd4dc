"""The hostile-file suite: each generated file through tolvar-check (text and --json) and through the
game's reading of the rules (tolvar-sim --rules), for the right message and exit status; and
tolvar-check's exit status for clean files, several files and a wrong command line. Every run has a
time limit so that a program blocked on a pipe fails the test instead of hanging it."""
import json
import os
import re
import subprocess
import sys
import tempfile
import unittest

sys.path.insert(0, os.path.dirname(os.path.abspath(__file__)))
import hostile_files  # noqa: E402

CHECK, SIM = sys.argv.pop(1), sys.argv.pop(1)
HANG_GUARD = 120  # seconds; a guard against a blocked program, not a measure of speed


def run(*args, stdin=""):
    try:
        return subprocess.run(list(args), input=stdin.encode(), capture_output=True, timeout=HANG_GUARD)
    except subprocess.TimeoutExpired:
        raise AssertionError("%s did not finish: blocked on its input?" % " ".join(a[:80] for a in args))


class HostileFiles(unittest.TestCase):
    def setUp(self):
        self.dir = tempfile.TemporaryDirectory()

    def tearDown(self):
        self.dir.cleanup()

    def test_each_case_through_the_checker_and_the_game(self):
        for name, (_, says, status, game_says) in hostile_files.CASES.items():
            with self.subTest(name):
                path, keep = hostile_files.make(name, self.dir.name)
                try:
                    text = run(CHECK, path)
                    out = text.stdout.decode("utf-8")
                    self.assertEqual(text.returncode, status, out[:2000])
                    self.assertRegex(out, re.compile(re.escape(path) + r"(:|\n|$)"))
                    self.assertRegex(out, says)
                    js = run(CHECK, "--json", path)
                    report = json.loads(js.stdout.decode("utf-8"))
                    self.assertEqual(js.returncode, status)
                    self.assertEqual(report["file"], path)
                    self.assertEqual(len(report["problems"]), len(out.splitlines()))
                    sim = run(SIM, "--rules", path, stdin="select G\nstart\n")
                    err = sim.stderr.decode("utf-8", "replace")
                    if game_says is None:
                        self.assertEqual(sim.returncode, 0, err[:2000])
                    else:
                        self.assertEqual(sim.returncode, 2, err[:2000])
                        self.assertRegex(err, "cannot read the rules file " + re.escape(path) + ": " + game_says)
                finally:
                    if keep is not None:
                        keep.close()

    def test_exit_status_of_clean_files_several_files_and_a_wrong_command_line(self):
        clean = os.path.join(self.dir.name, "clean.dict")
        with open(clean, "wb") as f:
            f.write(hostile_files.xml_with(""))
        broken, _ = hostile_files.make("huge-integers", self.dir.name)
        self.assertEqual((run(CHECK, clean).returncode, run(CHECK, clean).stdout), (0, b""))
        self.assertEqual(json.loads(run(CHECK, "--json", clean).stdout.decode())["problems"], [])
        both = run(CHECK, clean, broken)
        self.assertEqual(both.returncode, 1)
        self.assertNotIn(clean.encode(), both.stdout)
        for wrong in ([], ["--bogus", clean]):  # --help and --version: the programs' own test
            self.assertEqual(run(CHECK, *wrong).returncode, 2, wrong)
        self.assertEqual(run(CHECK, os.path.join(self.dir.name, "none.dict")).returncode, 1)

    def test_a_device_is_refused_by_the_checker_and_the_game(self):
        self.assertRegex(run(CHECK, "/dev/zero").stdout.decode(), r"^/dev/zero: error: is not a regular file \(a character device\)\n$")
        self.assertRegex(run(SIM, "--rules", "/dev/zero").stderr.decode(), r"/dev/zero: is not a regular file")

    def test_a_pipe_as_saved_game_or_script_is_refused_and_standard_input_still_works(self):
        pipe = os.path.join(self.dir.name, "SavedGame.dict")
        os.mkfifo(pipe)
        sim = run(SIM, stdin="continue %s\n" % pipe)
        self.assertIn("cannot read %s: is not a regular file (a named pipe)" % pipe, sim.stdout.decode() + sim.stderr.decode())
        sim = run(SIM, pipe)
        self.assertEqual(sim.returncode, 2)
        self.assertIn("cannot open the script %s: is not a regular file (a named pipe)" % pipe, sim.stderr.decode())

    def test_json_is_utf8_and_paths_are_shown_on_one_line(self):
        bad = os.path.join(self.dir.name, "bad\nname.dict")
        with open(bad, "wb") as f:
            f.write(hostile_files.xml_with("<key>Bad\xe9Key</key><integer>1</integer>").decode().encode("latin-1"))
        out = run(CHECK, bad).stdout
        self.assertTrue(out.startswith(bad.replace("\n", "\\n").encode() + b":"), out)
        self.assertEqual(out.count(b"\n"), 1, out)
        report = json.loads(run(CHECK, "--json", bad).stdout.decode("utf-8"))  # strict: fails on raw bytes
        self.assertEqual((report["file"], report["problems"][0]["key"]), (bad, "Bad\ufffdKey"))


if __name__ == "__main__":
    unittest.main()
