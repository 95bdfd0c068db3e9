#!/usr/bin/env python3
"""Tests the runner of transcripts: what it must accept, and what it must not."""

import pathlib
import stat
import subprocess
import sys
import tempfile
import unittest

RUNNER = pathlib.Path(__file__).resolve().parent / "run"

# Stands in for the tool. It prints what is hard to write down, and exits with status 3.
ODD_TOOL = rb"""#!/bin/sh
printf 'plain\n-- stdout\n-- \ntab\tinside\nat the end\t\nblank \n'
printf '\\n\n\0\r\n\351 \303\251\n\nno end'
printf 'complaint\n' >&2
exit 3
"""

ODD_TRANSCRIPT = rb"""mailstructure
-- stdout, with escapes
plain
\x2d- stdout
\x2d-\x20
tab	inside
at the end\t
blank\x20
\\n
\x00\r
\xe9 """ + "\N{LATIN SMALL LETTER E WITH ACUTE}".encode() + rb"""

no end\
-- stderr
complaint
-- status 3
"""


class RunnerTest(unittest.TestCase):
    def setUp(self):
        folder = tempfile.TemporaryDirectory()
        self.addCleanup(folder.cleanup)
        self.folder = pathlib.Path(folder.name)
        self.tool = self.folder / "tool"
        self.tool.write_bytes(ODD_TOOL)
        self.tool.chmod(self.tool.stat().st_mode | stat.S_IXUSR)
        self.transcript = self.folder / "odd.transcript"

    def run_on(self, text, *options):
        """Runs the transcript; returns the runner's status and what it said."""
        self.transcript.write_bytes(text)
        done = subprocess.run([sys.executable, "-B", RUNNER, "--tool", self.tool, *options,
                               self.transcript], capture_output=True, check=False)
        self.assertEqual(done.stderr, b"")
        return done.returncode, done.stdout.decode()

    def assert_fails(self, old, new, reason):
        """The odd transcript fails once one part of it is replaced, and the reason is given."""
        self.assertEqual(ODD_TRANSCRIPT.count(old), 1)
        status, said = self.run_on(ODD_TRANSCRIPT.replace(old, new))
        self.assertEqual(status, 1)
        self.assertIn(reason, said)

    def test_accepts_what_is_right(self):
        self.assertEqual(self.run_on(ODD_TRANSCRIPT), (0, ""))

    def test_refuses_another_output(self):
        self.assert_fails(b"\nplain\n", b"\nplane\n", "\n-plane\n+plain\n")
        self.assert_fails(b"\nplain\n", b"\n", "\n+plain\n")
        self.assert_fails(b"\nno end\\\n", b"\nno end\n", "\n-no end\n+no end\\\n")
        self.assert_fails(b"\\x00\\r", b"\\x00", "\n-\\x00\n+\\x00\\r\n")
        self.assert_fails(b"\\xe9", b"\\xe8", "\n-\\xe8")

    def test_refuses_other_errors(self):
        self.assert_fails(b"complaint\n", b"", "\n+complaint\n")
        self.assert_fails(b"complaint\n", b"complaint\nanother\n", "\n-another\n")

    def test_refuses_another_status(self):
        self.assert_fails(b"-- status 3", b"-- status 0", "\n--- status 0\n+-- status 3\n")

    def test_refuses_sections_that_are_missing_or_wrong(self):
        self.assert_fails(b"-- stderr\ncomplaint\n", b"", "2 sections")
        self.assert_fails(b"-- status 3\n", b"", "2 sections")
        self.assert_fails(b"-- stdout, with escapes\n", b"", "2 sections")
        self.assert_fails(b"-- stderr\n", b"-- errors\n", "expected '-- stderr'")
        self.assert_fails(b"-- stderr\n", b"-- stdout\n", "expected '-- stderr'")
        self.assert_fails(b"-- status 3\n", b"-- status 3\n-- stdout\n", "4 sections")
        self.assert_fails(b"-- status 3\n", b"-- status 3\nmore\n", "expected '-- status N'")
        self.assert_fails(b"-- status 3\n", b"-- status\n", "expected '-- status N'")
        self.assert_fails(b"-- status 3\n", b"-- status 3", "no end")
        self.assert_fails(b"\\x00", b"\\0", "unknown escape")

    def test_update_writes_what_is_right(self):
        for text in (b"mailstructure\n", b"mailstructure\n-- stdout\nwrong\n-- status 0\n"):
            self.assertEqual(self.run_on(text, "--update"), (0, ""))
            self.assertEqual(self.transcript.read_bytes(), ODD_TRANSCRIPT)

    def test_update_leaves_what_is_right(self):
        self.assertEqual(self.run_on(ODD_TRANSCRIPT, "--update"), (0, ""))
        self.assertEqual(self.transcript.read_bytes(), ODD_TRANSCRIPT)

    def test_goes_on_after_a_failure(self):
        other = self.folder / "other.transcript"
        other.write_bytes(ODD_TRANSCRIPT.replace(b"status 3", b"status 1"))
        status, said = self.run_on(ODD_TRANSCRIPT.replace(b"status 3", b"status 2"), other)
        self.assertEqual(status, 1)
        self.assertIn("--- status 1\n", said)
        self.assertIn("--- status 2\n", said)

    def test_refuses_a_transcript_or_a_tool_that_is_not_there(self):
        self.transcript.write_bytes(ODD_TRANSCRIPT)
        for tool, name in ((self.tool, "no_such_case"), (self.folder / "none", self.transcript)):
            done = subprocess.run([sys.executable, "-B", RUNNER, "--tool", tool, name],
                                  capture_output=True, check=False)
            self.assertEqual(done.returncode, 2)


if __name__ == "__main__":
    unittest.main()
