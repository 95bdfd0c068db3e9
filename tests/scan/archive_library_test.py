#!/usr/bin/env python3
"""The library that unpacks is loaded when there is something to unpack, and not before.

tests/scan/archive_library_test.py TOOL
"""

import gzip
import os
import pathlib
import re
import subprocess
import tempfile
import unittest

from scanned import TOOL, of_kind, rows_of

MESSAGE = b"From: ada@mail.example\n\nhello\n"
SONAME = re.search(rb"libarchive\.so\.[0-9]+", pathlib.Path(TOOL).read_bytes())


class WithoutTheLibrary(unittest.TestCase):
    """A file of its name that is no library stands where it is looked for first."""

    def setUp(self):
        folder = tempfile.TemporaryDirectory()
        self.addCleanup(folder.cleanup)
        self.folder = pathlib.Path(folder.name)
        (self.folder / "plain.eml").write_bytes(MESSAGE)
        (self.folder / "packed.gz").write_bytes(gzip.compress(MESSAGE))
        self.assertIsNotNone(SONAME, "the tool names no library")
        (self.folder / "lib").mkdir()
        (self.folder / "lib" / SONAME.group().decode()).write_text("no library\n")

    def run_tool(self, *arguments):
        """The finished process."""
        folders = [str(self.folder / "lib"), os.environ.get("LD_LIBRARY_PATH", "")]
        environment = {**os.environ, "LD_LIBRARY_PATH": ":".join(filter(None, folders))}
        return subprocess.run([TOOL, *arguments], stdin=subprocess.DEVNULL, capture_output=True,
                              env=environment, check=False)

    def test_other_files_are_read(self):
        for command in ("tree", "json", "scan"):
            done = self.run_tool(command, self.folder / "plain.eml")
            self.assertEqual((done.returncode, done.stderr), (0, b""), command)

    def test_a_packed_file_is_a_fault(self):
        done = self.run_tool("scan", self.folder / "packed.gz", self.folder / "plain.eml")
        self.assertEqual(done.returncode, 1)
        rows = rows_of(done.stdout)
        (fault,) = of_kind("fault", rows)
        self.assertEqual(fault["code"], "cannot-read")
        self.assertIn(SONAME.group().decode(), fault["text"])
        (message,) = of_kind("message", rows)
        self.assertEqual(message["source"], str(self.folder / "plain.eml"))

    def test_a_message_in_an_archive_is_a_complaint(self):
        done = self.run_tool("tree", str(self.folder / "packed.gz") + "::name@0")
        self.assertEqual(done.returncode, 1)
        self.assertIn(b"cannot read: ", done.stderr)
        self.assertIn(SONAME.group(), done.stderr)


if __name__ == "__main__":
    unittest.main()
