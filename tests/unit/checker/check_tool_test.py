"""tolvar-check as an author runs it: exit status, one line per problem, --json, binary files."""
import json
import os
import plistlib
import subprocess
import sys
import tempfile
import unittest

TOOL = sys.argv.pop(1)

GOOD = {"G": {"GameName": "G",
              "SupportedEvents": [{"EventType": 8, "ActionList": [{"ActionType": 21}]},
                                  {"EventType": 11, "ActionList": [{"ActionType": 22}]}],
              "SupportedUserEvents": [{"UserEventType": 4, "MinimumPieces": 2}],
              "CompletionCriteria": [{"CompletionType": 7}]}}


def run(*args):
    return subprocess.run([TOOL, *args], capture_output=True, text=True, timeout=60)


class CheckTool(unittest.TestCase):
    def setUp(self):
        self.dir = tempfile.TemporaryDirectory()

    def tearDown(self):
        self.dir.cleanup()

    def write(self, name, rules, fmt=plistlib.FMT_XML):
        path = os.path.join(self.dir.name, name)
        with open(path, "wb") as f:
            plistlib.dump(rules, f, fmt=fmt)
        return path

    def test_clean_file_passes_silently(self):
        result = run(self.write("good.dict", GOOD))
        self.assertEqual((result.returncode, result.stdout), (0, ""))

    def test_warnings_alone_pass_and_errors_fail(self):
        warned = {"G": dict(GOOD["G"], BoardWidht=7)}
        broken = {"G": dict(GOOD["G"], BoardWidth=300)}
        w, b = self.write("w.dict", warned), self.write("b.dict", broken)
        result = run(w)
        self.assertEqual(result.returncode, 0)
        self.assertRegex(result.stdout, r"^%s:\d+:\d+: warning: G: BoardWidht: .*did you mean BoardWidth\?\n$" % w)
        result = run(w, b)
        self.assertEqual(result.returncode, 1)
        self.assertRegex(result.stdout, r"%s:\d+:\d+: error: G: BoardWidth: 300 is read as 44" % b)

    def test_binary_files_give_the_path_of_keys(self):
        broken = {"G": dict(GOOD["G"], SupportedEvents=[{"EventType": 13}] + GOOD["G"]["SupportedEvents"])}
        path = self.write("b.bdict", broken, plistlib.FMT_BINARY)
        result = run(path)
        self.assertEqual(result.returncode, 1)
        self.assertIn("%s:G/SupportedEvents/0/EventType: error: G: EventType: EventType 13" % path, result.stdout)

    def test_json_for_editors(self):
        path = self.write("b.dict", {"G": dict(GOOD["G"], NumColors=[3])})
        result = run("--json", path)
        self.assertEqual(result.returncode, 1)
        report = json.loads(result.stdout)
        self.assertEqual(report["file"], path)
        [problem] = report["problems"]
        self.assertEqual((problem["severity"], problem["game"], problem["key"]), ("error", "G", "NumColors"))
        self.assertGreater(problem["line"], 0)

    def test_command_line(self):
        self.assertEqual(run().returncode, 2)
        self.assertEqual(run("--bogus", "x").returncode, 2)  # --help and --version: the programs' own test
        missing = run(os.path.join(self.dir.name, "none.dict"))
        self.assertEqual(missing.returncode, 1)
        self.assertIn(": error: ", missing.stdout)


if __name__ == "__main__":
    unittest.main()
