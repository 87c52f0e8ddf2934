#!/usr/bin/env python3
"""What mutants.py says of a list of changes that is wrong: the file, the entry and what is wrong."""

import pathlib
import subprocess
import sys
import tempfile
import unittest

ROOT = pathlib.Path(__file__).resolve().parents[2]
GOOD = '''[sound]
says = "Another sound."
file = "springboard/launcher.cpp"
from = "kLaunchSound = 1352"
to = "kLaunchSound = 1353"
'''


class List(unittest.TestCase):
    def check(self, text, *more):
        with tempfile.TemporaryDirectory() as folder:
            (pathlib.Path(folder) / "area.toml").write_text(text)
            return subprocess.run([sys.executable, str(ROOT / "tools" / "mutants.py"), "--data",
                                   folder, *more], capture_output=True, text=True, check=False)

    def is_wrong(self, text, what):
        done = self.check(text, "--check")
        self.assertEqual(done.returncode, 2)
        self.assertIn(f"mutants: area.toml: {what}", done.stderr)

    def test_a_good_list_is_counted(self):
        done = self.check(GOOD, "--check")
        self.assertEqual((done.returncode, done.stderr), (0, ""))
        self.assertTrue(done.stdout.startswith("1 mutants, 0 of them argued"))

    def test_a_text_that_has_gone(self):
        self.is_wrong(GOOD.replace("= 1352", "= 99"),
                      "sound: its text does not occur in springboard/launcher.cpp")

    def test_a_text_that_occurs_twice(self):
        self.is_wrong(GOOD.replace("kLaunchSound = 1352", "kLaunchSound"),
                      "sound: its text occurs 2 times in springboard/launcher.cpp")

    def test_an_occurrence_too_far(self):
        self.is_wrong(GOOD + "occurrence = 2\n", "sound: its text occurs only 1 times")

    def test_a_missing_file(self):
        self.is_wrong(GOOD.replace("launcher.cpp", "lancher.cpp"),
                      "sound: there is no springboard/lancher.cpp")

    def test_a_change_of_nothing(self):
        self.is_wrong(GOOD.replace("1353", "1352"), "sound: changes nothing")

    def test_a_missing_sentence(self):
        self.is_wrong(GOOD.replace("says", "said"), "sound: unknown said, no says")

    def test_a_name_that_comes_twice(self):
        self.is_wrong(GOOD + GOOD, "Cannot declare")

    def test_what_is_no_toml(self):
        self.is_wrong("sound\n", "")

    def test_a_name_that_nobody_has(self):
        done = self.check(GOOD, "--only", "silence")
        self.assertEqual(done.returncode, 2)
        self.assertIn("no mutant is called silence", done.stderr)


if __name__ == "__main__":
    unittest.main()
