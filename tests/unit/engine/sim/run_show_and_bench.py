#!/usr/bin/env python3
"""The runner's board as the player sees it, its --help, and the balance bench.

    run_show_and_bench.py TOLVAR_SIM SCENARIO_DIR"""
import os
import re
import subprocess
import sys
import tempfile
import unittest

SIM, DIR = sys.argv.pop(1), sys.argv.pop(1)


def sim(home, args, script=""):
    return subprocess.run([SIM] + args, input=script, capture_output=True, text=True,
                          env=dict(os.environ, XDG_DATA_HOME=home), timeout=300, check=False)


class Runner(unittest.TestCase):
    def setUp(self):
        self.home = tempfile.TemporaryDirectory()

    def tearDown(self):
        self.home.cleanup()

    def test_show_prints_rows_top_first_with_holes_and_selection(self):
        # A click selects a region; a removal leaves holes; show must agree with dump cell by cell.
        rules = os.path.join(DIR, "vexamor-4x4.dict")
        for script in ("select Vexamor\nstart\ntick\nclick 300 300\n",
                       "select Vexamor\nstart\ntick\nclick 300 300\nkey space\ntick\n"):
            out = sim(self.home.name, ["--seed", "7", "--rules", rules], script + "show\ndump\n")
            self.assertEqual(out.returncode, 0, out.stderr)
            cells = {}
            for m in re.finditer(r"^cell (\d+) (\d+) id=(\d+) color=(\d+) shape=\d+ selected=(\d+)$",
                                 out.stdout, re.M):
                x, y, pid, color, sel = map(int, m.groups())
                cells[x, y] = "." if pid == 0 else ("[%d]" if sel else " %d ") % color
            width = 1 + max(x for x, _ in cells)
            height = 1 + max(y for _, y in cells)
            expected = ["".join(cells[x, y] if cells[x, y] != "." else " . " for x in range(width)).rstrip()
                        for y in reversed(range(height))]
            shown = out.stdout.split("\ncell ")[0].splitlines()[-height:]
            self.assertEqual(shown, expected)
        self.assertIn(" . ", "\n".join(shown) + " ")  # the removal left holes
        self.assertIn("[", sim(self.home.name, ["--seed", "7", "--rules", rules],
                               "select Vexamor\nstart\ntick\nclick 300 300\nshow\n").stdout)

    def test_preview_gives_the_score_of_each_move_and_changes_nothing(self):
        # The scenario scripts with a state after every move, then with a preview before it too.
        for key in ("vexamor", "trindle", "glimmet"):
            size = "-5x5" if key == "glimmet" else "-4x4"
            with open(os.path.join(DIR, key + ".seed")) as seed, open(os.path.join(DIR, key + ".script")) as f:
                args = ["--seed", seed.read().strip(), "--rules", os.path.join(DIR, key + size + ".dict")]
                moves = f.read().splitlines()
            plain, previewed = [], []
            for line in moves:
                words = line.split()
                if words and words[0] in ("click", "drag"):
                    previewed.append("preview " + " ".join(words[1:]))
                for script in (plain, previewed):
                    script.append(line)
                    if line == "tick" and len(script) > 4:  # after a move's tick
                        script.append("state")
            runs = []
            for script in (plain, previewed):  # each in a data folder of its own, made afresh
                with tempfile.TemporaryDirectory() as home:
                    runs.append(sim(home, args, "\n".join(script) + "\n"))
            for run in runs:
                self.assertEqual(run.returncode, 0, run.stderr)
            lines = runs[1].stdout.splitlines()
            previews = [n for n, text in enumerate(lines) if text.startswith("preview")]
            self.assertEqual([text for text in lines if not text.startswith("preview")],
                             runs[0].stdout.splitlines(), key)
            self.assertEqual(len(previews), sum(w.startswith(("click", "drag")) for w in plain), key)
            scored = 0
            for n in previews:
                after = next(t for t in lines[n:] if t.startswith("state "))
                before = [t for t in lines[:n] if t.startswith("state ")]
                score = re.match(r"state score=(\d+) ", after).group(1)
                if lines[n] == "preview none":
                    self.assertTrue(before and before[-1] == after, (key, n))
                else:
                    self.assertEqual(lines[n], "preview score=" + score, (key, n))
                    scored += 1
            self.assertGreater(scored, 2, key)

    def test_show_without_a_game(self):
        self.assertTrue(sim(self.home.name, [], "show\n").stdout.endswith("show: no board\n"))

    def test_help_lists_options_and_commands(self):
        out = sim(self.home.name, ["--help"])
        self.assertEqual(out.returncode, 0)
        for word in ("--seed", "--rules", "--autoplay", "--game", "--player", "--jobs", "--csv",
                     "select TITLE", "tick [N]", "show", "board", "dump", "state", "menu N",
                     "preview X Y, preview X1 Y1 X2 Y2"):
            self.assertIn(word, out.stdout)
        self.assertEqual(sim(self.home.name, ["--bogus"]).returncode, 2)

    def test_bench_is_the_same_for_a_seed_whatever_the_jobs_and_leaves_no_scores(self):
        tables = []
        for jobs in ("1", "2"):
            csv = os.path.join(self.home.name, "games%s.csv" % jobs)
            out = sim(self.home.name, ["--autoplay", "12", "--game", "Glimmet", "--seed", "4", "--jobs", jobs,
                                       "--csv", csv])
            self.assertEqual(out.returncode, 0, out.stderr)
            lines = out.stdout.splitlines()
            self.assertTrue(lines[-1].startswith("games per second "), lines)
            tables.append((lines[:-1], open(csv).read()))  # the speed alone may differ
        self.assertEqual(tables[0], tables[1])
        table, csv = tables[0]
        self.assertEqual(len(csv.splitlines()), 13)
        self.assertEqual(table[0], 'autoplay: 12 games of "Glimmet", random player, seeds 4 to 15')
        self.assertRegex(table[1], r"^score +min \d+ +q1 [\d.]+ +median [\d.]+ +q3 [\d.]+ +max \d+ +mean [\d.]+$")
        self.assertEqual(table[3], "ended by itself 100.0 %")
        self.assertFalse(os.path.exists(os.path.join(self.home.name, "Tolvar", "BestScores.dict")))

    def test_each_player_ends_every_built_in_game(self):
        for game in ("Vexamor", "Trindle", "Glimmet"):
            for player in ("random", "greedy"):
                out = sim(self.home.name, ["--autoplay", "3", "--game", game, "--player", player])
                self.assertEqual(out.returncode, 0, out.stderr)
                self.assertIn("ended by itself 100.0 %", out.stdout, (game, player))
        self.assertEqual(sim(self.home.name, ["--autoplay", "3", "--game", "Nothing"]).returncode, 2)


if __name__ == "__main__":
    unittest.main()
