#!/usr/bin/env python3
"""What `submit` makes of its command line. A script that writes down its arguments stands in for
Slurm's sbatch.

tests/cluster/submit_test.py TOOL SOURCE_FOLDER
"""

import os
import pathlib
import subprocess
import sys
import tempfile
import unittest

TOOL, TOP = (pathlib.Path(sys.argv.pop(1)).resolve() for _ in range(2))
SCRIPTS = TOP / "share/mailstructure/slurm"
SUBMIT = SCRIPTS / "submit"

# Answers with the numbers 101, 102, … and fails if there is a file of the name `fails`.
SBATCH = """#!/usr/bin/env bash
cd -- "$(dirname -- "$0")" || exit
number=$((101 + $(ls | grep -c '^call')))
printf '%s\\0' "$@" > "call-$number"
[[ ! -e fails-$number ]] || exit 1
echo "$number;cluster"
"""


class Submit(unittest.TestCase):
    """A folder with sources, and one with the programs that PATH has first."""

    def setUp(self):
        folder = tempfile.TemporaryDirectory()
        self.addCleanup(folder.cleanup)
        self.folder = pathlib.Path(folder.name) / "a folder"
        self.programs = pathlib.Path(folder.name) / "programs"
        self.folder.mkdir()
        self.programs.mkdir()
        (self.folder / "mail").mkdir()
        (self.programs / "mailstructure").symlink_to(TOOL)
        self.add_program("sbatch", SBATCH)
        self.add_program("scancel", '#!/bin/sh\necho "$@" > "$(dirname "$0")/cancelled"\n')

    def add_program(self, name, text):
        """A script that PATH finds."""
        (self.programs / name).write_text(text)
        (self.programs / name).chmod(0o755)

    def submit(self, *arguments, path="/usr/bin:/bin"):
        """The exit status, and what is printed on both outputs."""
        done = subprocess.run([SUBMIT, *arguments], cwd=self.folder, capture_output=True, text=True,
                              env={"PATH": f"{self.programs}:{path}"}, check=False)
        return done.returncode, done.stdout, done.stderr

    def call(self, number):
        """The arguments of a call of sbatch."""
        return (self.programs / f"call-{number}").read_bytes().decode().split("\0")[:-1]

    def check_misused(self, what, *arguments):
        """No call of sbatch, but a complaint."""
        status, output, complaint = self.submit(*arguments)
        self.assertEqual((status, output), (2, ""), arguments)
        self.assertIn(what, complaint)
        self.assertIn("submit --help", complaint)
        self.assertFalse((self.programs / "call-101").exists())

    def check_fails(self, what, *arguments, **how):
        """The same, for what is no mistake in the command line."""
        status, output, complaint = self.submit(*arguments, **how)
        self.assertEqual((status, output), (1, ""), arguments)
        self.assertIn(what, complaint)

    def test_help_names_all_options(self):
        status, output, complaint = self.submit("--help")
        self.assertEqual((status, complaint), (0, ""))
        for option in ("-o", "--output", "--sqlite", "--shards", "--cpus", "--at-once", "--scan",
                       "--sbatch", "--work", "--tool", "--help"):
            self.assertIn(f"{option}", output)

    def test_mistakes_in_the_command_line(self):
        self.check_misused("no sources", "-o", "rows")
        self.check_misused("no file for the rows", "mail")
        self.check_misused("only one file", "-o", "rows", "--sqlite=tables", "mail")
        self.check_misused("the name is empty", "-o", "", "mail")
        for count in ("0", "x", "-1", "01", "1000001", "99999999999999999999", ""):
            for option in ("--shards", "--cpus", "--at-once"):
                self.check_misused("not a number", "-o", "rows", option, count, "mail")
        self.check_misused("no such option: --shard", "-o", "rows", "--shard=3", "mail")
        self.check_misused("no such option: -x", "-o", "rows", "-x", "mail")
        self.check_misused("--scan: no value", "-o", "rows", "mail", "--scan")

    def test_what_is_not_there_or_too_much(self):
        self.check_fails("nothing: no such file or folder", "-o", "rows", "mail", "nothing")
        self.check_fails("nowhere: no such program", "-o", "rows", "--tool=nowhere", "mail")
        (self.folder / "rows").symlink_to("elsewhere")
        self.check_fails("rows: the file exists already", "-o", "rows", "mail")
        self.check_fails("a backslash", "-o", "other", "--work=a\\b", "mail")
        (self.programs / "sbatch").unlink()
        self.add_program("bash", '#!/bin/sh\nexec /bin/bash "$@"\n')
        self.check_fails("there is no sbatch", "-o", "other", "mail", path="/nowhere")

    def test_two_jobs(self):
        status, output, complaint = self.submit("-o", "100% of it", "--shards=3", "--cpus=2",
                                                "--at-once=2", "--sbatch=--partition=a b",
                                                "--scan=--hash=parts", "--", "mail", "mail/")
        self.assertEqual((status, complaint), (0, ""))
        self.assertIn("Job 101 scans 3 shards, then job 102 merges them", output)
        work = f"{self.folder}/100% of it.shards"
        scan, merge = self.call(101), self.call(102)
        self.assertEqual(scan[-8:], [f"{SCRIPTS}/scan_shard", work, "3",
                                     f"{self.programs}/mailstructure", "--hash=parts", "--", "mail",
                                     "mail/"])
        self.assertEqual(merge[-4:], [f"{SCRIPTS}/merge_shards", work,
                                      f"{self.programs}/mailstructure",
                                      f"--output={self.folder}/100% of it"])
        log = f"{self.folder}/100%% of it.shards/log"
        for option in ("--array=1-3%2", "--cpus-per-task=2", "--requeue", "--partition=a b",
                       f"--output={log}/%a.log", f"--chdir={self.folder}"):
            self.assertIn(option, scan)
        for option in ("--dependency=afterok:101", "--partition=a b", f"--output={log}/merge.log"):
            self.assertIn(option, merge)
        self.assertTrue(os.path.isdir(f"{work}/log"))

    def test_is_called_by_a_relative_name(self):
        """Where cd prints the folder that CDPATH has led it to."""
        folder = SUBMIT.parents[1]
        done = subprocess.run(["slurm/submit", "-o", self.folder / "rows", self.folder / "mail"],
                              cwd=folder, check=False, stdout=subprocess.DEVNULL,
                              env={"PATH": f"{self.programs}:/usr/bin:/bin", "CDPATH": folder})
        self.assertEqual(done.returncode, 0)
        self.assertIn(f"{SUBMIT.parent}/scan_shard", self.call(101))

    def test_tables(self):
        self.assertEqual(self.submit("--sqlite", "db", "--work", "w", "mail")[0], 0)
        self.assertEqual(self.call(102)[-1], f"--sqlite={self.folder}/db")
        self.assertEqual(self.call(102)[-3], f"{self.folder}/w")

    def test_the_shards_of_another_scan_are_not_used(self):
        self.assertEqual(self.submit("-o", "rows", "mail")[0], 0)
        self.assertEqual(self.submit("-o", "rows", "mail")[0], 0)
        for change in ("--shards=5", "--scan=--one", "mail"):
            self.check_fails("shards of another scan", "-o", "rows", change, "mail")
        self.assertFalse((self.programs / "call-105").exists())

    def test_sbatch_refuses(self):
        (self.programs / "fails-101").touch()
        self.check_fails("not taken the job that scans", "-o", "rows", "mail")
        self.assertFalse((self.programs / "cancelled").exists())
        (self.programs / "fails-103").touch()
        self.check_fails("not taken the job that merges", "-o", "rows", "mail")
        self.assertEqual((self.programs / "cancelled").read_text(), "102\n")


if __name__ == "__main__":
    unittest.main()
