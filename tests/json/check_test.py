#!/usr/bin/env python3
"""Holds what `mailstructure check --json` prints of the sample messages against its schema, against
the bytes of the messages, and against what `check` prints for people. Holds the table of DOCUMENT
against real mail (see real_mail.py), if it is the mail that was counted.

check_test.py TOOL
"""

import collections
import json
import pathlib
import re
import subprocess
import sys
import unittest

import jsonschema

sys.path.insert(0, str(pathlib.Path(__file__).resolve().parent.parent / "support"))
import real_mail  # pylint: disable=wrong-import-position

TOP = pathlib.Path(__file__).resolve().parent.parent.parent
SCHEMA = jsonschema.Draft202012Validator(json.loads((TOP / "doc/check.schema.json").read_text()))
SAMPLES = sorted(path for path in (TOP / "tests/data").rglob("*") if path.is_file())
DOCUMENT = TOP / "doc/check.md"
COUNTED_MESSAGES = 778
LEVELS = ("danger", "fault", "note")
TOOL = sys.argv.pop()


def printed(*arguments):
    """The lines that the tool prints; it may find what makes it fail."""
    done = subprocess.run([TOOL, "check", *arguments], capture_output=True, check=False)
    assert done.returncode in (0, 1) and not done.stderr, done
    return done.stdout.decode().splitlines()


class Findings(unittest.TestCase):
    """Those of all samples."""

    @classmethod
    def setUpClass(cls):
        cls.rows = [json.loads(line) for line in printed("--json", *SAMPLES)]

    def test_fit_the_schema(self):
        for row in self.rows:
            SCHEMA.validate(row)
        self.assertGreater(len({row["name"] for row in self.rows}), 10)

    def test_name_lines_that_hold_their_bytes(self):
        for row in self.rows:
            message = pathlib.Path(row["file"]).read_bytes()
            self.assertLessEqual(row["offset"] + row["length"], len(message))
            self.assertEqual(row["line"], message[:row["offset"]].count(b"\n") + 1)

    def test_are_those_that_people_see(self):
        places = [(f"{row['file']}:{row['line']}", row["level"], row["name"], row["offset"])
                  for row in self.rows]
        form = re.compile(r"(\S+): (\w+): ([a-z0-9-]+) at byte (\d+)")
        seen = [form.fullmatch(line).groups() for line in printed(*SAMPLES)[::4]]
        self.assertEqual(places, [(*words, int(offset)) for *words, offset in seen])

    def test_are_described(self):
        described = DOCUMENT.read_text()
        for row in self.rows:
            self.assertIn(f"`{row['name']}`", described)


class RealMail(unittest.TestCase):
    """How many messages have a finding of each name."""

    def test_has_the_findings_that_the_document_counts(self):
        files = real_mail.messages()
        if files is None:
            self.skipTest("there is no real mail")
        rows = [json.loads(line) for line in printed("--json", *files)]
        found = {(row["file"], row["name"], row["level"]) for row in rows}
        table = collections.defaultdict(collections.Counter)
        for _, name, level in found:
            table[name][level] += 1
        self.assertGreater(len(table), 40)
        lines = [f"| `{name}` | " + " | ".join(str(counts[level] or "") for level in LEVELS) + " |"
                 for name, counts in sorted(table.items())]
        lines = "".join(line.replace("  |", " |") + "\n" for line in lines)
        print(lines)
        if len(files) == COUNTED_MESSAGES:
            self.assertIn(f"|---|---:|---:|---:|\n{lines}\n", DOCUMENT.read_text())


if __name__ == "__main__":
    unittest.main()
