#!/usr/bin/env python3
"""Scans on a Slurm cluster of two nodes, whose result must be that of one scan on one machine.
Skipped where Slurm is not installed.

tests/cluster/slurm_test.py TOOL SOURCE_FOLDER
"""

import base64
import os
import pathlib
import random
import shlex
import signal
import subprocess
import sys
import tempfile
import unittest

import loopback_slurm

TOOL, TOP = (pathlib.Path(sys.argv.pop(1)).resolve() for _ in range(2))
SCRIPTS = TOP / "share/mailstructure/slurm"
SEPARATOR = b"From ada@mail.example Mon Mar  3 09:15:00 2025\n"
SHARDS = 6
OPTIONS = ["--hash=parts", "--mbox=strict"]

# In place of the tool. Stops the first scan of the shards 3 and 5 in the middle, and says which
# process it has stopped.
STOPPING_TOOL = """#!/usr/bin/env bash
for number in 3 5; do
    if [[ $2 == --shard=$number/* ]] && mkdir {stops}/$number 2> {null}; then
        {tool} "$@" &
        sleep 0.05
        kill -STOP $!
        echo $! > {stops}/$number.new
        mv {stops}/$number.new {stops}/$number/process
        wait $!
        exit
    fi
done
exec {tool} "$@"
"""


def write_mail(folder):
    """Mailboxes, of which one is large, in a folder with names that shells take for something."""
    random.seed(7)
    attachment = base64.encodebytes(random.randbytes(30_000))
    message = (b"From: Ada <ada@mail.example>\nSubject: message %d\nMIME-Version: 1.0\n"
               b"Content-Type: multipart/mixed; boundary=b\n\n--b\n\nFrom here on\n--b\n"
               b"Content-Type: application/octet-stream\nContent-Transfer-Encoding: base64\n\n%s"
               b"--b--\n\n")
    folder.mkdir()
    for name, count in (("a large 'one'", 6000), ('$(touch "x")', 50), ("100%a\\n\n*", 50)):
        with open(folder / name, "wb") as file:
            for number in range(count):
                file.write(SEPARATOR + message % (number, attachment))
    (folder / "none").symlink_to("nowhere") # a fault


class Slurm(unittest.TestCase):
    """A cluster for all cases, and mail that all nodes see."""

    @classmethod
    def setUpClass(cls):
        folder = tempfile.TemporaryDirectory()
        cls.addClassCleanup(folder.cleanup)
        cls.folder = pathlib.Path(folder.name) / "it's 100%a"
        cls.folder.mkdir()
        os.chdir(cls.folder)
        (cls.folder.parent / "bin").mkdir()
        (cls.folder.parent / "bin/mailstructure").symlink_to(TOOL)
        os.environ["PATH"] = f"{cls.folder.parent}/bin:{os.environ['PATH']}"
        (cls.folder.parent / "slurm").mkdir()
        cls.cluster = loopback_slurm.Cluster(cls.folder.parent / "slurm")
        cls.addClassCleanup(cls.cluster.close)
        write_mail(cls.folder / "mail")
        done = subprocess.run([TOOL, "scan", *OPTIONS, "-o", "one", "mail"], check=False,
                              stderr=subprocess.DEVNULL)
        assert done.returncode == 1 # for the fault

    def setUp(self):
        for job in self.cluster.jobs():
            self.cluster.run("scancel", job)
        self.cluster.wait_for_all()

    def tearDown(self):
        if self._outcome.result.errors or self._outcome.result.failures:
            for log in self.folder.glob("*.shards/log/*"):
                print(f"== {log.name}", log.read_text(errors="replace"), sep="\n")

    def submit(self, output, *options):
        """The numbers of the two jobs."""
        text = self.cluster.run(SCRIPTS / "submit", "-o", output, f"--shards={SHARDS}",
                                *(f"--scan={option}" for option in OPTIONS), *options, "mail")
        words = text.split()
        return words[1], words[words.index("job") + 1]

    @staticmethod
    def state_of(process):
        """The letter of ps for it; X if there is no such process."""
        try:
            status = pathlib.Path(f"/proc/{process}/status").read_text()
        except FileNotFoundError:
            return "X"
        return status.split("State:\t")[1][0]

    def stopped_process(self, stops, number):
        """The process that scans the shard, when it is stopped in the middle."""
        file = stops / str(number) / "process"
        loopback_slurm.wait_until(f"shard {number} does not begin", file.exists)
        process = int(file.read_text())
        loopback_slurm.wait_until("the process is not stopped",
                                  lambda: self.state_of(process) == "T", seconds=10)
        return process

    def test_tasks_that_are_killed_are_run_again(self):
        stops = self.folder / "stops"
        stops.mkdir()
        tool = self.folder / "stopping tool"
        tool.write_text(STOPPING_TOOL.format(tool=shlex.quote(str(TOOL)), null="/dev/null",
                                             stops=shlex.quote(str(stops))))
        tool.chmod(0o755)
        scan, merge = self.submit("rows", "--tool", tool)

        os.kill(self.stopped_process(stops, 3), signal.SIGKILL)
        self.cluster.start_at_once(f"{scan}_3")
        process = self.stopped_process(stops, 5)
        self.cluster.run("scontrol", "requeue", f"{scan}_5")
        self.cluster.start_at_once(f"{scan}_5")
        loopback_slurm.wait_until("the process lives on", lambda: self.state_of(process) in "XZ")
        self.assertEqual(self.cluster.jobs().get(merge), "PENDING")
        self.cluster.wait_for_all()

        self.assertEqual(pathlib.Path("rows").read_bytes(), pathlib.Path("one").read_bytes())
        self.assertEqual(self.cluster.end_state(merge), "COMPLETED")
        log = pathlib.Path("rows.shards/log")
        for number in range(1, SHARDS + 1):
            runs = (log / f"{number}.log").read_text().count(f"shard {number} of {SHARDS}")
            self.assertEqual(runs, 2 if number in (3, 5) else 1, number)
        self.assertIn("The scan was killed", (log / "3.log").read_text())
        self.assertIn("cannot-open 1", (log / "merge.log").read_text())
        self.assertFalse(pathlib.Path("x").exists())
        self.check_completed_shards_are_kept()

    def check_completed_shards_are_kept(self):
        """The same words again, after a shard and the result are lost."""
        pathlib.Path("rows").unlink()
        shards = pathlib.Path("rows.shards")
        (shards / "2.ndjson").unlink()
        before = {path.name: path.stat().st_ino for path in shards.glob("*.ndjson")}
        self.submit("rows")
        self.cluster.wait_for_all()
        after = {path.name: path.stat().st_ino for path in shards.glob("*.ndjson")}
        self.assertEqual(set(after) - set(before), {"2.ndjson"})
        self.assertEqual(before, {name: after[name] for name in before})
        for number in range(1, SHARDS + 1):
            was_complete = "complete already" in (shards / f"log/{number}.log").read_text()
            self.assertEqual(was_complete, number != 2, number)
        self.assertEqual(pathlib.Path("rows").read_bytes(), pathlib.Path("one").read_bytes())

    def test_nothing_is_merged_if_a_task_fails(self):
        failing = self.folder / "failing tool"
        failing.write_text(f'#!/bin/sh\ncase $2 in --shard=2/*) exit 7 ;; esac\n'
                           f'exec {shlex.quote(str(TOOL))} "$@"\n')
        failing.chmod(0o755)
        scan, merge = self.submit("none", f"--tool={failing}")
        self.cluster.wait_for_all()
        self.assertEqual(self.cluster.end_state(f"{scan}_2"), "FAILED")
        self.assertEqual(self.cluster.end_state(f"{scan}_1"), "COMPLETED")
        self.assertEqual(self.cluster.end_state(merge), "CANCELLED")
        self.assertFalse(pathlib.Path("none").exists())


if __name__ == "__main__":
    if reason := loopback_slurm.why_not():
        print("skipped:", reason)
        sys.exit(77)
    unittest.main()
