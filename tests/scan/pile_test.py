#!/usr/bin/env python3
"""Piles that are large, and files that change while they are read.

tests/scan/pile_test.py TOOL
"""

import os
import pathlib
import subprocess
import tempfile
import unittest

import scanned
from scanned import SEPARATOR

MEBIBYTE = 1 << 20
MOST_MEMORY = 256 * MEBIBYTE
LINE = b"0123456789012345678901234567890123456789012345678901234567890123456789\n"


def message(number, body_bytes):
    """A message of an mbox, with its separator and an attachment of about that many bytes."""
    return (SEPARATOR + b"Message-ID: <%d@mail.example>\n" % number
            + b"Content-Type: multipart/mixed; boundary=b\n\n--b\n\n"
            + LINE * (body_bytes // len(LINE)) + b"\n--b--\n\n")


SMALL_ONES = b"".join(message(number, number * 37 % 9000) for number in range(230)) # 1 MiB


class Memory(unittest.TestCase):
    """What address space a scan needs."""

    def scan(self, pieces, *options):
        """Scans what the pieces make up, which arrives through a pipe, in little memory. Returns
        the summary as numbers, or skips where the tool cannot be limited."""
        limited = ["sh", "-c", f"ulimit -v {MOST_MEMORY // 1024}; exec \"$@\"", "sh", scanned.TOOL]
        if subprocess.run([*limited, "--version"], capture_output=True, check=False).returncode:
            self.skipTest("a tool with a sanitizer cannot be limited")
        with subprocess.Popen([*limited, "scan", "--summary", "--threads=2", *options],
                              stdin=subprocess.PIPE, stdout=subprocess.PIPE) as tool:
            for piece in pieces:
                tool.stdin.write(piece)
            tool.stdin.close()
            summary = tool.stdout.read().decode()
        self.assertEqual(tool.returncode, 0)
        self.assertNotIn("fault", summary)
        return {name: int(count) for name, count in map(str.split, summary.splitlines())}

    def test_does_not_grow_with_the_pile(self):
        found = self.scan([SMALL_ONES] * 400)
        self.assertEqual(found["messages"], 400 * 230)

    def test_does_not_grow_with_a_message(self):
        huge = [SEPARATOR + b"Subject: a\n\n"] + [LINE * 14000] * 320 + [b"\n"]
        found = self.scan([SMALL_ONES, *huge, SMALL_ONES])
        self.assertEqual(found["messages"], 461)

    def test_holds_few_messages_that_are_large(self):
        found = self.scan([message(number, 24 * MEBIBYTE) for number in range(12)])
        self.assertEqual(found["messages"], 12)

    @unittest.skipUnless(os.environ.get("MAILSTRUCTURE_LONG"), "MAILSTRUCTURE_LONG is not set")
    def test_does_not_grow_with_ten_gibibytes(self):
        count = 10 * 1024 * MEBIBYTE // len(SMALL_ONES) + 1
        found = self.scan(SMALL_ONES for _ in range(count))
        self.assertEqual(found["messages"], count * 230)


class Changing(unittest.TestCase):
    """Files that change while the scan waits for the reader of its rows."""

    def setUp(self):
        folder = tempfile.TemporaryDirectory()
        self.addCleanup(folder.cleanup)
        self.folder = pathlib.Path(folder.name)
        (self.folder / "a").write_bytes(SMALL_ONES * 40)
        (self.folder / "b").write_bytes(SMALL_ONES[:100_000])

    def scan(self, change):
        """Changes something once the first row has come. Returns all rows."""
        with subprocess.Popen([scanned.TOOL, "scan", "--threads=2", self.folder],
                              stdout=subprocess.PIPE, stderr=subprocess.PIPE) as tool:
            first = tool.stdout.readline()
            change()
            rows = scanned.rows_of(first + tool.stdout.read())
            self.assertIn(b"fault", tool.stderr.read())
        self.assertEqual(tool.returncode, 1)
        return rows

    def faults(self, rows):
        """Where and what is wrong."""
        return [(os.path.basename(row["source"]), row["code"])
                for row in scanned.of_kind("fault", rows)]

    def test_shrinks(self):
        rows = self.scan(lambda: os.truncate(self.folder / "a", 30 * MEBIBYTE))
        self.assertEqual(self.faults(rows), [("a", "shrunk")])
        [shrunk, whole] = scanned.of_kind("source", rows)
        most = 30 * MEBIBYTE * 230 // len(SMALL_ONES)
        self.assertIn(shrunk["messages"], range(most - 230, most + 231))
        self.assertEqual(whole["faults"], 0)

    def test_vanishes(self):
        rows = self.scan((self.folder / "b").unlink)
        self.assertEqual(self.faults(rows), [("b", "cannot-open")])
        self.assertEqual(len(scanned.of_kind("message", rows)), 230 * 40)


class Threads(unittest.TestCase):
    """The rows do not depend on the number of threads."""

    def test_of_a_pile_in_many_pieces(self):
        with tempfile.TemporaryDirectory() as name:
            folder = pathlib.Path(name)
            (folder / "a").write_bytes(SMALL_ONES * 5 + message(0, 40 * MEBIBYTE) + SMALL_ONES)
            for number in range(300):
                (folder / f"b{number}").write_bytes(b"a: %d\n\n" % number + LINE * (number % 40))
            outputs = [scanned.run(f"--threads={threads}", folder) for threads in (1, 2, 5)]
        self.assertEqual(outputs[0][1], 0)
        self.assertEqual(len(scanned.of_kind("message", scanned.rows_of(outputs[0][0]))),
                         6 * 230 + 1 + 300)
        self.assertEqual(outputs[1], outputs[0])
        self.assertEqual(outputs[2], outputs[0])


if __name__ == "__main__":
    unittest.main()
