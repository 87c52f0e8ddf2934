#!/usr/bin/env python3
"""trial_test.py BUILD: what mutants.py makes of a change that is noticed, of one that is not, of one
that is argued rightly or wrongly, that does not compile, that ends the program, that hangs."""

import pathlib
import subprocess
import sys
import tempfile
import unittest

ROOT = pathlib.Path(__file__).resolve().parents[2]
BUILD = sys.argv.pop(1)


def change(name, before, after, file="springboard/launcher.cpp", more=""):
    return (f"['{name}']\nsays = 'Says {name}.'\nfile = '{file}'\nfrom = '''{before}'''\n"
            f"to = '''{after}'''\n{more}\n")


SOUND = "constexpr uint32_t kLaunchSound = 1352;"
NOTICED = change("noticed", SOUND, SOUND.replace("1352", "1353"))
INSTALL = ("if (versionIsSupported()) {", "loader/installer.cpp")


class Trial(unittest.TestCase):
    def trial(self, *entries, seconds="120"):
        with tempfile.TemporaryDirectory() as folder:
            (pathlib.Path(folder) / "area.toml").write_text("".join(entries))
            return subprocess.run(
                [sys.executable, str(ROOT / "tools" / "mutants.py"), "--data", folder, "--build",
                 BUILD, "--quick", "--timeout", seconds],
                capture_output=True, text=True, check=False)

    def test_what_is_noticed_is_no_finding(self):
        done = self.trial(NOTICED)
        self.assertEqual(done.returncode, 0, done.stderr)
        self.assertIn("killed    noticed: scenarios/", done.stdout)
        self.assertIn("1 mutants: 1 killed, 0 survived as argued, 0 findings", done.stdout)

    def test_what_is_not_noticed_is_one_unless_argued(self):
        after = SOUND + "\n"
        done = self.trial(change("unnoticed", SOUND, after),
                          change("excused", SOUND, after, more='argued = "A blank line."'))
        self.assertEqual(done.returncode, 1, done.stderr)
        self.assertIn("SURVIVED  unnoticed: Says unnoticed.", done.stdout)
        self.assertIn("argued    excused: A blank line.", done.stdout)
        self.assertIn("1 findings", done.stdout)

    def test_a_wrong_argument_is_an_error(self):
        done = self.trial(NOTICED + 'argued = "Nobody hears it."\n')
        self.assertEqual(done.returncode, 2)
        self.assertIn("area.toml: noticed: argued, but killed: scenarios/", done.stderr)

    def test_what_does_not_compile_is_an_error(self):
        done = self.trial(change("broken", SOUND, "constexpr"))
        self.assertEqual(done.returncode, 2)
        self.assertIn("area.toml: broken: does not compile", done.stderr)

    def test_what_ends_the_program_is_noticed(self):
        test, file = INSTALL
        done = self.trial(change("crash", test, "__builtin_trap();" + test, file))
        self.assertEqual(done.returncode, 0, done.stderr)
        self.assertIn("killed    crash: ends the program in scenarios/", done.stdout)

    def test_what_hangs_is_noticed(self):
        test, file = INSTALL
        done = self.trial(change("hang", test, "for (;;) asm(\"\");" + test, file), seconds="4")
        self.assertEqual(done.returncode, 0, done.stderr)
        self.assertIn("killed    hang: hangs in scenarios/", done.stdout)


if __name__ == "__main__":
    unittest.main()
