#!/usr/bin/env python3
"""Interrupts `mailstructure scan` in many ways, and compares what --resume makes of it with what an
uninterrupted scan gives.

tests/scan/resume_test.py TOOL LIBRARY     LIBRARY is made of failing_calls.c

MAILSTRUCTURE_KILLS is the number of scans that are killed at a random moment. Of the system calls,
each one of MAILSTRUCTURE_STEP fails in its turn. MAILSTRUCTURE_SEED repeats a run.
"""

import errno
import gzip
import io
import os
import pathlib
import random
import re
import shutil
import signal
import sqlite3
import subprocess
import sys
import tarfile
import tempfile
import time
import unittest

LIBRARY = pathlib.Path(sys.argv.pop(2)).resolve()

import scanned # pylint: disable=wrong-import-position # it takes the tool from the arguments
from scanned import SEPARATOR  # pylint: disable=wrong-import-position

KILLS = int(os.environ.get("MAILSTRUCTURE_KILLS", "24"))
STEP = int(os.environ.get("MAILSTRUCTURE_STEP", "9"))
SEED = int(os.environ.get("MAILSTRUCTURE_SEED", random.randrange(1 << 30)))
FORMS = ("-o", "--sqlite")
# In memory, writing through to the disk costs no time.
MEMORY = "/dev/shm" if os.access("/dev/shm", os.W_OK) else None


def mailbox(messages, chance):
    """An mbox with messages of many lengths, and lines that are doubtful."""
    pieces = []
    for number in range(messages):
        pieces.append(SEPARATOR + b"Message-ID: <%d@mail.example>\nSubject: a %d\n"
                      b"Content-Type: multipart/mixed; boundary=b\n\n--b\n\n" % (number, number)
                      + b"0123456789\n" * chance.randrange(150) + b"\n--b\n\nx\n--b--\n"
                      + b"From here on\n" * (number % 7 == 0) + b"\n" * (number % 11 != 0))
    return b"".join(pieces)


def packed(files):
    """A .tar.zst of names and contents."""
    data = io.BytesIO()
    with tarfile.open(fileobj=data, mode="w") as archive:
        for name, contents in files:
            member = tarfile.TarInfo(name)
            member.size = len(contents)
            archive.addfile(member, io.BytesIO(contents))
    return subprocess.run(["zstd", "-q", "-c"], input=data.getvalue(), stdout=subprocess.PIPE,
                          check=True).stdout


class Interrupted(unittest.TestCase):
    """A pile, and scans of it that do not come to their end."""

    def setUp(self):
        folder = tempfile.TemporaryDirectory(dir=MEMORY)
        self.addCleanup(folder.cleanup)
        self.folder = pathlib.Path(folder.name)
        self.out = self.folder / "out"
        self.out.mkdir()
        self.sources = []

    def make_pile(self, messages, chance):
        """An mbox, a folder with an mbox and some messages, and an archive."""
        mbox = self.folder / "mbox"
        mbox.write_bytes(mailbox(messages, chance))
        mail = self.folder / "mail"
        mail.mkdir()
        for number in range(12):
            (mail / f"{number}").write_bytes(b"Subject: %d\n\nhello\n" % number)
        (mail / "broken").write_bytes(b"\x7fELF")
        (mail / "2-mbox").write_bytes(mailbox(messages // 3, chance))
        archive = self.folder / "mail.tar.zst"
        archive.write_bytes(packed([("a", b"a: b\n\nhi\n"), ("b", mailbox(messages, chance)),
                                    ("c", mailbox(2, chance))]))
        self.sources = [mbox, mail, archive, self.folder / "no-such-file", mbox]

    def command(self, form, *options):
        """The command that writes out/rows."""
        return [scanned.TOOL, "scan", form, self.out / "rows", *options, *self.sources]

    def scan(self, form, *options, failing=None):
        """Runs the command. A call may fail, as the library has it. Gives the exit status and the
        complaints."""
        environment = dict(os.environ, FAILING_CALL_LOG=str(self.folder / "log"))
        if failing:
            environment.update(LD_PRELOAD=str(LIBRARY), FAILING_CALL=failing)
        done = subprocess.run(self.command(form, *options), env=environment, check=False,
                              stdin=subprocess.DEVNULL, stdout=subprocess.PIPE,
                              stderr=subprocess.PIPE)
        self.assertEqual(done.stdout, b"")
        return done.returncode, done.stderr.decode()

    def wanted(self, form):
        """What an uninterrupted scan writes, and its complaints."""
        status, complaints = self.scan(form)
        self.assertEqual(status, 1) # there is a file that cannot be opened
        return self.take_result(), complaints

    def take_result(self):
        """The bytes of out/rows, which must be all that is there."""
        self.assertEqual(os.listdir(self.out), ["rows"])
        result = (self.out / "rows").read_bytes()
        (self.out / "rows").unlink()
        return result

    def check_equal(self, found, wanted, what):
        """Compares without showing megabytes."""
        self.assertTrue(found == wanted, f"the result differs: {what}, seed {SEED}")


class AtEveryCall(Interrupted):
    """Scans in which one system call is the last one, or fails."""

    def calls(self, form, how, kind):
        """Has the calls fail in turn. Gives the name of the case, and how the scan has ended."""
        for number in range(1 + SEED % STEP, 5000, STEP):
            failing = f"{how}:{kind}:{number}"
            (self.folder / "log").unlink(missing_ok=True)
            status, complaints = self.scan(form, "--checkpoint=0", "--threads=1", failing=failing)
            log = self.folder / "log"
            if log.exists() and int(log.read_text()) < number:
                self.assertGreater(number, 20)
                self.take_result()
                return
            yield f"{form} {failing}", status, complaints
        self.fail("there is no end of calls")

    def check_each(self, how, kind):
        """Every interrupted scan can be completed."""
        self.make_pile(9, random.Random(SEED))
        for form in FORMS:
            wanted, complaints = self.wanted(form)
            for case, status, _ in self.calls(form, how, kind):
                if how in ("kill", "tear"):
                    self.assertEqual(status, -signal.SIGKILL, case)
                if (self.out / "rows").exists(): # all that failed was to tidy up
                    for each in self.out.iterdir():
                        if each.name != "rows":
                            each.unlink()
                else:
                    self.assertEqual(self.scan(form, "--resume"), (1, complaints), case)
                self.check_equal(self.take_result(), wanted, case)

    def test_that_changes_a_file_when_killed(self):
        self.check_each("kill", "change")

    def test_that_writes_when_killed_halfway(self):
        self.check_each("tear", "change")

    def test_that_changes_a_file_when_the_disk_is_full(self):
        self.check_each(errno.ENOSPC, "change")

    def test_that_reads_when_killed(self):
        self.check_each("kill", "read")

    def test_that_reads_a_source_and_fails(self):
        """A source that cannot be read is told, and everything else is there."""
        self.make_pile(9, random.Random(SEED))
        self.sources = self.sources[:2]
        self.scan("-o")
        messages = len(scanned.of_kind("message", scanned.rows_of(self.take_result())))
        cases = 0
        for number in range(1, 100):
            status, complaints = self.scan("-o", failing=f"{errno.EIO}:read:{number}")
            if int((self.folder / "log").read_text()) < number:
                break
            cases += 1
            rows = scanned.rows_of(self.take_result())
            faults = [row["code"] for row in scanned.of_kind("fault", rows)]
            self.assertEqual((status, faults.count("cannot-read")), (1, 1))
            self.assertIn("cannot-read 1", complaints)
            self.assertEqual(len(scanned.of_kind("source", rows)), 15)
            self.assertGreaterEqual(len(scanned.of_kind("message", rows)), messages - 9)
        self.assertGreater(cases, 12)


class AtRandomMoments(Interrupted):
    """Scans that are killed."""

    def test_are_completed_without_a_difference(self):
        print(f"seed {SEED}, {KILLS} kills", file=sys.stderr)
        chance = random.Random(SEED)
        self.make_pile(1500, chance)
        wanted = {form: self.wanted(form) for form in FORMS}
        started = time.monotonic()
        for form in FORMS:
            self.scan(form, "--checkpoint=0")
            self.take_result()
        usual = (time.monotonic() - started) / 2
        kills = completed = partial = 0
        while kills < KILLS:
            form = chance.choice(FORMS)
            options = ["--checkpoint=0", f"--threads={chance.choice((1, 2))}"]
            scan = subprocess.Popen(self.command(form, *options), stderr=subprocess.PIPE)
            patience = usual
            while True:
                patience *= 1.2 # the machine may have become slower
                try:
                    _, complaints = scan.communicate(timeout=chance.uniform(0.003, patience))
                except subprocess.TimeoutExpired:
                    scan.send_signal(chance.choice((signal.SIGKILL, signal.SIGTERM)))
                    scan.communicate()
                    kills += scan.returncode < 0
                if scan.returncode >= 0:
                    break
                partial += (self.out / "rows.partial").exists()
                options[1] = f"--threads={chance.choice((1, 2))}"
                if (self.out / "rows").exists(): # it was complete when the signal came
                    complaints = wanted[form][1].encode()
                    (self.out / "rows.partial.checkpoint").unlink(missing_ok=True)
                    break
                scan = subprocess.Popen(self.command(form, "--resume", *options),
                                        stderr=subprocess.PIPE)
            self.assertEqual(complaints.decode(), wanted[form][1])
            self.check_equal(self.take_result(), wanted[form][0], form)
            completed += 1
        print(f"{completed} results of {kills} kills", file=sys.stderr)
        self.assertGreater(completed, 1)
        self.assertGreater(partial, kills // 2)


class Resumption(Interrupted):
    """What --resume goes on with, and what it refuses."""

    def setUp(self):
        super().setUp()
        self.make_pile(3000, random.Random(SEED))

    def interrupt(self, form, *options):
        """Leaves a scan that has come into the middle of the first source."""
        status, _ = self.scan(form, "--checkpoint=0", "--threads=1", *options,
                              failing="kill:change:" + ("35" if form == "-o" else "200"))
        self.assertEqual(status, -signal.SIGKILL)
        self.assertTrue((self.out / "rows.partial").exists())

    def check_refused(self, form, reason, *options):
        """It says why, and changes nothing. SQLite may undo what was not complete."""
        before = {each.name: each.read_bytes() for each in self.out.iterdir()}
        status, complaints = self.scan(form, *options)
        self.assertEqual(status, 1)
        self.assertIn(reason, complaints)
        self.assertEqual(complaints.count("\n"), 1)
        after = {each.name: each.read_bytes() for each in self.out.iterdir()}
        self.assertTrue(before == after or "rows.partial-journal" in before)

    def checkpoint(self, form):
        """The number of the source that the checkpoint is about, and an offset in it."""
        if form == "-o":
            text = (self.out / "rows.partial.checkpoint").read_text()
        else:
            with sqlite3.connect(self.out / "rows.partial") as tables:
                text = tables.execute("SELECT state FROM checkpoint").fetchone()[0]
            tables.close()
        source, _, offset = text.split("\n")[2].split()
        return int(source), int(offset)

    def test_does_not_repeat_what_was_done(self):
        """What was read before the interruption can be something else by then."""
        for form in FORMS:
            wanted, complaints = self.wanted(form)
            self.interrupt(form)
            source, offset = self.checkpoint(form)
            self.assertEqual(source, 0)
            self.assertGreater(offset, 500000)
            mbox = self.folder / "mbox"
            times = os.stat(mbox).st_atime_ns, os.stat(mbox).st_mtime_ns
            original = mbox.read_bytes()
            mbox.write_bytes(original[:5000] + b"x" * (offset - 6000) + original[offset - 1000:])
            os.utime(mbox, ns=times)
            status, _ = self.scan(form, "--resume", "--checkpoint=0", "--threads=1",
                                  failing="kill:change:" + ("75" if form == "-o" else "500"))
            self.assertEqual(status, -signal.SIGKILL)
            self.assertGreater(self.checkpoint(form)[0], 0)
            mbox.write_bytes(original)
            os.utime(mbox, ns=times)
            self.assertEqual(self.scan(form, "--resume"), (1, complaints))
            self.check_equal(self.take_result(), wanted, form)

    def test_shows_what_was_read_before(self):
        mbox = self.folder / "mbox"
        self.sources = [mbox]
        self.interrupt("-o")
        _, offset = self.checkpoint("-o")
        status, complaints = self.scan("-o", "--resume", "--progress=always")
        self.assertEqual(status, 0)
        first = re.search(r"\((\d+) %\), ([\d,]+) messages", complaints)
        self.assertGreater(offset, 500000)
        self.assertGreaterEqual(int(first[1]), 100 * offset // mbox.stat().st_size)
        self.assertGreater(int(first[2].replace(",", "")), 0)
        self.take_result()

    def test_shows_how_much_of_a_packed_file_is_read_again(self):
        mbox = self.folder / "mbox.gz"
        mbox.write_bytes(gzip.compress((self.folder / "mbox").read_bytes()))
        self.sources = [mbox]
        self.interrupt("-o")
        self.assertGreater(self.checkpoint("-o")[1], mbox.stat().st_size)
        status, complaints = self.scan("-o", "--resume", "--progress=always")
        self.assertEqual(status, 0)
        self.assertLess(int(re.search(r"\((\d+) %\)", complaints)[1]), 50)
        self.take_result()

    def test_without_an_interruption_is_a_scan(self):
        for form in FORMS:
            wanted, complaints = self.wanted(form)
            self.assertEqual(self.scan(form, "--resume"), (1, complaints))
            self.check_equal(self.take_result(), wanted, form)

    def test_needs_a_name_to_which_endings_can_be_added(self):
        """What is too long is told before anything is read or written."""
        longest = 255 - len(".partial.checkpoint~")
        for form in FORMS:
            for length in range(longest, 257):
                file = self.out / ("n" * length)
                done = subprocess.run([scanned.TOOL, "scan", form, file, self.folder / "mail/0"],
                                      stderr=subprocess.PIPE, check=False)
                self.assertEqual(done.returncode, length > longest, length)
                if length == longest:
                    file.unlink()
                else:
                    self.assertTrue(done.stderr.endswith(b": cannot write: File name too long\n"))
                self.assertEqual(os.listdir(self.out), [])

    def test_is_asked_for(self):
        for form in FORMS:
            self.interrupt(form)
            self.check_refused(form, "rows.partial is left from an interrupted scan; --resume")
            shutil.rmtree(self.out)
            self.out.mkdir()

    def test_refuses_other_options_and_sources(self):
        for form in FORMS:
            wanted, complaints = self.wanted(form)
            self.interrupt(form)
            self.check_refused(form, "other sources or options", "--resume", "--hash=none")
            self.check_refused(form, "other sources or options", "--resume", self.folder)
            mbox = self.folder / "mbox"
            times = os.stat(mbox).st_atime_ns, os.stat(mbox).st_mtime_ns
            os.utime(mbox)
            self.check_refused(form, "mbox has changed since the interruption", "--resume")
            os.utime(mbox, ns=times)
            self.assertEqual(self.scan(form, "--resume"), (1, complaints))
            self.check_equal(self.take_result(), wanted, form)

    def test_refuses_a_folder_that_has_changed(self):
        self.sources = [self.folder / "mail", self.folder / "mbox"]
        self.interrupt("-o")
        while self.checkpoint("-o")[0] < 14: # the folder is done
            status, _ = self.scan("-o", "--resume", "--checkpoint=0", failing="kill:change:17")
            self.assertEqual(status, -signal.SIGKILL)
        new = self.folder / "mail/0-new"
        new.write_bytes(b"a: b\n\n")
        self.check_refused("-o", "the sources that were read before the interruption have changed",
                           "--resume")
        new.unlink()
        self.scan("-o", "--resume")
        self.take_result()

    def test_refuses_what_is_of_something_else(self):
        for form, reason in zip(FORMS, ("not of an interrupted scan", "not a database")):
            (self.out / "rows.partial").write_bytes(b"mine")
            self.check_refused(form, reason, "--resume")
            (self.out / "rows.partial").unlink()
        with sqlite3.connect(self.out / "rows.partial") as other:
            other.execute("CREATE TABLE mine (a)")
        other.close()
        self.check_refused("--sqlite", "not of an interrupted scan", "--resume")

    def test_refuses_rows_that_are_lost(self):
        self.interrupt("-o")
        os.truncate(self.out / "rows.partial", 10)
        self.check_refused("-o", "rows that were written are lost", "--resume")

    def test_refuses_a_damaged_checkpoint(self):
        self.interrupt("-o")
        place = self.out / "rows.partial.checkpoint"
        place.write_bytes(place.read_bytes().replace(b"0", b"1", 1))
        self.check_refused("-o", "its checkpoint is lost", "--resume")

    def locks(self):
        """The kinds of the locks on the partial file."""
        file = f":{(self.out / 'rows.partial').stat().st_ino}"
        lines = map(str.split, pathlib.Path("/proc/locks").read_text().splitlines())
        return [words[1] for words in lines if any(word.endswith(file) for word in words)]

    def test_is_for_one_program_at_a_time(self):
        os.mkfifo(self.folder / "pipe")
        self.sources.append(self.folder / "pipe")
        for form in FORMS:
            with subprocess.Popen(self.command(form), stderr=subprocess.PIPE) as first:
                with open(self.folder / "pipe", "wb"): # the scan has come there
                    status, complaints = self.scan(form, "--resume")
                    self.assertEqual(status, 1)
                    self.assertIn("rows: cannot write: another scan is writing it\n", complaints)
                    self.assertNotIn("FLOCK", self.locks()) # would keep SQLite out on NFS
                first.communicate()
            self.take_result()

    def test_is_named_when_a_signal_comes(self):
        os.mkfifo(self.folder / "pipe")
        self.sources.append(self.folder / "pipe")
        for form in FORMS:
            for number in (signal.SIGTERM, signal.SIGINT, signal.SIGHUP):
                with subprocess.Popen(self.command(form, "--checkpoint=0"),
                                      stderr=subprocess.PIPE) as waiting:
                    with open(self.folder / "pipe", "wb"): # the scan has come there
                        waiting.send_signal(number)
                        complaints = waiting.communicate()[1].decode()
                self.assertEqual(waiting.returncode, -number)
                self.assertEqual(complaints, f"mailstructure: {self.out}/rows: interrupted; the "
                                 "same command with --resume goes on from "
                                 f"{self.out}/rows.partial\n")
                for each in self.out.iterdir():
                    each.unlink()

    def test_passes_over_what_is_being_written(self):
        shutil.rmtree(self.folder / "mail")
        for form in FORMS:
            (self.out / "a").write_bytes(b"a: b\n\n")
            done = subprocess.run([scanned.TOOL, "scan", "--checkpoint=0", form,
                                   self.out / "rows", self.out], check=False)
            self.assertEqual(done.returncode, 0)
            written = self.out / "rows"
            if form == "-o":
                sources = [row["source"] for row in scanned.rows_of(written.read_bytes())
                           if row["kind"] == "source"]
            else:
                with sqlite3.connect(written) as tables:
                    sources = [row[0] for row in tables.execute("SELECT source FROM source")]
                tables.close()
            self.assertEqual(sources, [str(self.out / "a")])
            written.unlink()


if __name__ == "__main__":
    unittest.main()
