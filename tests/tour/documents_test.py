#!/usr/bin/env python3
"""What check_documents.py says of documents that are wrong: a link, a heading, the index, a decision."""
import pathlib
import subprocess
import sys
import tempfile
import unittest

CHECK = pathlib.Path(__file__).resolve().parents[2] / "tools" / "check_documents.py"
RIGHT = {
    "README.md": "# A\n\n[docs](docs/README.md), [here](docs/other.md#two-words), ![no](docs/other.md)\n",
    "docs/README.md": "# Index\n\n[o](other.md) [d](decisions.md) [web](https://example.com/x)\n",
    "docs/other.md": "# Other\n\n## Two words\n\n    [in code](nowhere.md)\n\n`[and](nowhere.md)`\n",
    "docs/decisions.md": "# D\n\n### One\n- **What:** a.\n- **Why:** b.\n- **Would change it:** c.\n",
    "a.cpp": "// docs/decisions.md: One\n",
}


class Documents(unittest.TestCase):
    def said(self, **changed):
        with tempfile.TemporaryDirectory() as folder:
            for name, text in (RIGHT | {key.replace("__", "/"): text for key, text in changed.items()}).items():
                path = pathlib.Path(folder) / name.replace("|", ".")
                path.parent.mkdir(parents=True, exist_ok=True)
                path.write_text(text)
            done = subprocess.run([sys.executable, CHECK, folder], capture_output=True, text=True, check=False)
            self.assertEqual(done.returncode, 1 if done.stderr else 0)
            return done.stderr

    def wrong(self, name, text):
        return self.said(**{name: text})

    def test_nothing_is_said_of_what_is_right(self):
        self.assertEqual(self.said(), "")

    def test_a_link_that_leads_nowhere(self):
        self.assertIn("README.md: gone.md leads nowhere", self.wrong("README.md", "[x](gone.md)"))

    def test_a_heading_that_is_not_there(self):
        self.assertIn("other.md has no heading for #three", self.wrong("README.md", "[x](docs/other.md#three)"))

    def test_a_heading_that_is_not_in_the_same_document(self):
        self.assertIn("no heading for #b", self.wrong("README.md", "# A\n[x](#b)"))

    def test_a_document_that_is_not_in_the_index(self):
        self.assertIn("docs/README.md: other.md is not in it", self.wrong("docs/README.md", "[d](decisions.md)"))

    def test_a_decision_without_its_three_lines(self):
        self.assertIn("One has not the three lines", self.wrong("docs/decisions.md", "### One\n- **What:** a.\n"))

    def test_a_decision_that_is_there_twice(self):
        self.assertIn("One is there twice", self.wrong("docs/decisions.md", 2 * (RIGHT["docs/decisions.md"] + "\n")))

    def test_a_title_that_no_decision_has(self):
        self.assertIn("a.cpp: no decision is called Two", self.wrong("a.cpp", "// docs/decisions.md: Two\n"))


unittest.main()
