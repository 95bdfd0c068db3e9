#!/usr/bin/env python3
"""Runs the lines of doc/scan.md that share a scan by GNU parallel: on this machine alone, and
interrupted once. Skipped where GNU parallel is not installed.

tests/scan/parallel_test.py TOOL
"""

import os
import pathlib
import re
import shutil
import signal
import subprocess
import sys
import tempfile
import time
import unittest

import mailbox_test
import scanned

SHARDS = 8
# Runs the tool. A scan of shard 5 waits until there is the file $GO, or until the test has ended.
WRAPPER = """#!/bin/sh
case $* in *--shard\\ 5/*) until test -e "$GO"; do test -e mail || exit; sleep 0.02; done ;; esac
exec "$TOOL" "$@"
"""


def documented_lines():
    """What makes the folder, what scans, and what merges."""
    text = (scanned.TOP / "doc/scan.md").read_text()
    block = re.search(r"```sh\n([^`]*\| parallel [^`]*)```", text)[1]
    make, scan, merge = block.replace("\\\n", "").splitlines()
    return make, scan, merge


def is_installed():
    """Another program has the same name."""
    if shutil.which("parallel") is None:
        return False
    version = subprocess.run(["parallel", "--version"], capture_output=True, check=False)
    return b"GNU parallel" in version.stdout


class Parallel(unittest.TestCase):
    """A pile of mail, a folder to work in, and the tool in the path."""

    def setUp(self):
        folder = tempfile.TemporaryDirectory()
        self.addCleanup(folder.cleanup)
        self.folder = pathlib.Path(folder.name)
        self.mail = self.folder / "mail"
        self.mail.write_bytes(mailbox_test.random_pile(3, b"\n") * 40)
        programs = self.folder / "bin"
        programs.mkdir()
        wrapper = programs / "mailstructure"
        wrapper.write_text(WRAPPER)
        wrapper.chmod(0o755)
        self.environment = {
            "HOME": folder.name, "LC_ALL": "C.UTF-8", "PATH": f"{programs}:{os.environ['PATH']}",
            "SHELL": "/bin/sh", "TOOL": str(scanned.TOOL)}
        self.make, self.scan, self.merge = [
            line.replace("one,two,three", ":").replace("/mail", str(self.mail))
            .replace("48", str(SHARDS)) for line in documented_lines()]

    def start(self, line):
        """Starts the line in a group of processes of its own."""
        return subprocess.Popen(line, shell=True, cwd=self.folder, env=self.environment,
                                start_new_session=True, stdin=subprocess.DEVNULL)

    def jobs(self):
        """The lines about jobs that have ended."""
        log = self.folder / "jobs"
        return log.read_text().splitlines()[1:] if log.exists() else []

    def test_interrupted_and_started_again(self):
        self.assertEqual(self.start(self.make).wait(), 0)
        self.environment["GO"] = "none" # the wrapper may outlive the program that has started it
        interrupted = self.start(self.scan)
        while len(self.jobs()) < 4:
            self.assertIsNone(interrupted.poll())
            time.sleep(0.02)
        os.killpg(interrupted.pid, signal.SIGKILL)
        interrupted.wait()
        before = self.jobs()
        self.environment["GO"] = "mail"
        self.assertEqual(self.start(self.scan).wait(), 0)
        after = self.jobs()
        self.assertEqual(after[:4], before)
        self.assertEqual(sorted(int(line.split("\t")[0]) for line in after),
                         list(range(1, SHARDS + 1)))
        self.assertEqual(self.start(self.merge).wait(), 0)
        self.assertEqual((self.folder / "rows.ndjson").read_bytes(), scanned.run(self.mail)[0])


if __name__ == "__main__":
    if not is_installed():
        print("GNU parallel is not installed")
        sys.exit(77)
    unittest.main()
