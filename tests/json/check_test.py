#!/usr/bin/env python3
"""Holds what `mailstructure check --json` prints of the sample messages against its schema, against
the bytes of the messages, and against what `check` prints for people.

check_test.py TOOL
"""

import json
import pathlib
import re
import subprocess
import sys
import unittest

import jsonschema

TOP = pathlib.Path(__file__).resolve().parent.parent.parent
SCHEMA = jsonschema.Draft202012Validator(json.loads((TOP / "doc/check.schema.json").read_text()))
SAMPLES = sorted(path for path in (TOP / "tests/data").rglob("*") if path.is_file())
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
        described = (TOP / "doc/check.md").read_text()
        for row in self.rows:
            self.assertIn(f"`{row['name']}`", described)


if __name__ == "__main__":
    unittest.main()
