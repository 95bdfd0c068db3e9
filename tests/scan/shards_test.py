#!/usr/bin/env python3
"""Scans in shards, which merge must make the rows of one scan of.

tests/scan/shards_test.py TOOL
"""

import json
import os
import pathlib
import random
import subprocess
import tarfile
import tempfile
import unittest

import jsonschema
import mailbox_test
import scanned
from scanned import SEPARATOR

ROW = jsonschema.Draft202012Validator(
    json.loads((scanned.TOP / "doc/scan.schema.json").read_text()))


def merge(*arguments):
    """What the command prints on standard output and on standard error, and its exit status."""
    done = subprocess.run([scanned.TOOL, "merge", *arguments], capture_output=True, check=False)
    return done.stdout, done.stderr.decode(), done.returncode


class Shards(unittest.TestCase):
    """A folder for sources and shards."""

    def setUp(self):
        folder = tempfile.TemporaryDirectory()
        self.addCleanup(folder.cleanup)
        self.folder = pathlib.Path(folder.name)
        self.mail = self.folder / "mail"
        self.mail.mkdir()

    def write(self, name, text):
        """Writes a source."""
        path = self.mail / name
        path.parent.mkdir(parents=True, exist_ok=True)
        path.write_bytes(text)
        return path

    def shard(self, number, count, *arguments):
        """The file with the rows of a shard."""
        path = self.folder / f"{number}-of-{count}"
        done = subprocess.run([scanned.TOOL, "scan", f"--shard={number}/{count}", *arguments],
                              capture_output=True, check=False)
        self.assertIn(done.returncode, (0, 1), done.stderr)
        path.write_bytes(done.stdout)
        last = scanned.rows_of(done.stdout)[-1]
        ROW.validate(last)
        self.assertEqual((last["kind"], last["shard"], last["of"]), ("shard", number, count))
        return path

    def shards(self, count, *arguments):
        """The files with the rows of all shards."""
        return [self.shard(number, count, *arguments) for number in range(1, count + 1)]

    def check(self, counts, *arguments):
        """Compares what merge makes of so many shards with one scan."""
        one = subprocess.run([scanned.TOOL, "scan", *arguments], capture_output=True, check=False)
        self.assertIn(one.returncode, (0, 1))
        for count in counts:
            shards = self.shards(count, *arguments)
            random.Random(count).shuffle(shards)
            merged = merge(*shards)
            self.assertEqual(merged[1:], (one.stderr.decode(), one.returncode), count)
            self.assertEqual(merged[0], one.stdout, count)
        return scanned.rows_of(one.stdout)


class Joined(Shards):
    """Shards that join."""

    def test_random_mboxes_in_up_to_sixteen_shards(self):
        for seed, rules in ((3, "auto"), (5, "strict"), (8, "any"), (12, "thunderbird")):
            text = mailbox_test.random_pile(seed, b"\r\n" if seed % 3 == 0 else b"\n")
            more = mailbox_test.random_pile(seed + 100, b"\n")
            self.write("a", text * 3)
            self.write("b", more)
            counts = range(1, 17) if rules == "auto" else (2, 5, 9)
            rows = self.check(counts, f"--mbox={rules}", self.mail)
            self.assertGreater(len(scanned.of_kind("message", rows)), 2)

    def test_an_mbox_with_lines_that_look_like_separators(self):
        text = b"".join(
            SEPARATOR + b"Subject: %d\n\n" % number
            + b"From here on\n\nFrom there\nnone\n" * (number % 7) + b"\n" for number in range(40))
        path = self.write("a", text)
        rows = self.check((2, 3, 7, 16), "--hash=parts", path)
        self.assertEqual(len(scanned.of_kind("message", rows)), 40)
        self.assertGreater(len(scanned.of_kind("fault", rows)), 40)

    def test_a_message_that_is_larger_than_a_shard(self):
        small = SEPARATOR + b"a: b\n\nhi\n\n"
        large = SEPARATOR + b"a: b\n\n" + b"0123456\n" * 1000 + b"\n"
        path = self.write("a", small + large + small)
        self.check((2, 3, 8, 16), path)
        [middle] = scanned.rows_of(self.shard(4, 8, path).read_bytes())[1:]
        self.assertEqual((middle["first"], middle["last"]), (None, None))

    def test_folders_archives_and_files_that_cannot_be_read(self):
        for number in range(9):
            self.write(f"cur/{number}", b"Subject: %d\n\nhi\n" % number * (number + 1))
        self.write("empty", b"")
        self.write("not-mail", b"\x7fELF")
        pile = self.write("pile", mailbox_test.random_pile(1, b"\n") * 3)
        with tarfile.open(self.mail / "tar.gz", "w:gz") as archive:
            archive.add(pile, "one")
            archive.add(pile, "two")
        (self.mail / "z").symlink_to("nowhere")
        rows = self.check((1, 2, 3, 5, 16, 50), self.mail, self.folder / "none", pile)
        self.assertEqual(len(scanned.of_kind("source", rows)), 9 + 3 + 3 + 1 + 2)

    def test_nothing_at_all(self):
        self.check((1, 3), self.mail)

    def test_other_options(self):
        path = self.write("a", mailbox_test.random_pile(3, b"\n") * 4)
        for option in ("--one", "--rules=classic", "--max-size=20", "--content-length=ignore"):
            self.check((3,), option, path)

    def test_in_tables(self):
        path = self.write("a", mailbox_test.random_pile(3, b"\n") * 40)
        one = self.folder / "one.db"
        scanned.run("--hash=parts", "--sqlite", one, path)
        shards = self.shards(5, "--hash=parts", path)
        merged = self.folder / "merged.db"
        output, _, status = merge("--sqlite", merged, *shards)
        self.assertEqual((output, status), (b"", 0))
        self.assertEqual(merged.read_bytes(), one.read_bytes())

    def test_in_a_file(self):
        path = self.write("a", mailbox_test.random_pile(3, b"\n") * 40)
        shards = []
        for number in (1, 2):
            shards.append(self.folder / f"{number}.ndjson")
            self.assertEqual(scanned.run(f"--shard={number}/2", "-o", shards[-1], path), (b"", 0))
        merged = self.folder / "merged"
        self.assertEqual(merge("-o", merged, *shards)[::2], (b"", 0))
        self.assertEqual(merged.read_bytes(), scanned.run(path)[0])
        _, complaint, status = merge("-o", merged, *shards)
        self.assertEqual((status, "File exists" in complaint), (1, True))

    def test_the_progress_is_that_of_the_shard(self):
        path = self.write("a", (SEPARATOR + b"Subject: a\n\n" + b"0123456\n" * 127) * 4096)
        shard = subprocess.run([scanned.TOOL, "scan", "--shard=2/4", "--progress=always", path],
                               capture_output=True, check=False)
        size = round(path.stat().st_size / 4 / 2 ** 20, 1)
        self.assertIn(f" of {size} MiB (".encode(), shard.stderr)

    def test_shards_have_equal_shares(self):
        text = (SEPARATOR + b"Subject: a\n\n" + b"0123456\n" * 1000 + b"\n") * 1000
        path = self.write("a", text)
        counts = [len(scanned.of_kind("message", scanned.rows_of(each.read_bytes())))
                  for each in self.shards(4, path)]
        self.assertEqual(counts, [250] * 4)


class ContentLength(Shards):
    """Bodies with lines that look like separators, which Content-Length fields protect."""

    body = b"x\n\n" + SEPARATOR + b"Subject: inside\n\ny\n" * 9
    message = SEPARATOR + b"Subject: a\nContent-Length: %d\n\n" % len(body) + body + b"\n"

    def test_an_mbox_of_them_is_not_divided(self):
        path = self.write("a", self.message * 20)
        one = scanned.run(path)
        shards = self.shards(3, path)
        self.assertEqual(merge(*shards)[::2], one)
        counts = [len(scanned.of_kind("message", scanned.rows_of(each.read_bytes())))
                  for each in shards]
        self.assertEqual(counts, [20, 0, 0])
        done = subprocess.run([scanned.TOOL, "scan", "--shard=2/3", path], capture_output=True,
                              check=True)
        self.assertIn(b"not divided", done.stderr)

    def test_shards_that_were_misled_are_not_merged(self):
        plain = SEPARATOR + b"Subject: b\n\n" + b"z\n" * 1_000_000 + b"\n"
        path = self.write("a", plain + self.message * 8000)
        refused = 0
        for count in range(2, 9):
            output, complaint, status = merge(*self.shards(count, "--hash=none", path))
            if status == 0:
                self.assertEqual(output, scanned.run("--hash=none", path)[0])
            else:
                self.assertEqual(output, b"")
                self.assertIn("make a plan", complaint)
                refused += 1
        self.assertGreater(refused, 0)


class Planned(Shards):
    """Shards by a plan."""

    def plan(self, count, *arguments):
        """The file with a plan for so many shards."""
        path = self.folder / f"{count}.plan"
        path.write_bytes(scanned.run(f"--plan={count}", *arguments)[0])
        [row] = scanned.rows_of(path.read_bytes())
        ROW.validate(row)
        self.assertEqual((row["kind"], row["of"], len(row["begins"])), ("plan", count, count))
        return path

    def check_planned(self, counts, *arguments):
        """Compares what merge makes of so many shards with one scan."""
        one = scanned.run(*arguments)
        for count in counts:
            plan = self.plan(count, *arguments)
            shards = self.shards(count, "--by-plan", plan, *arguments)
            self.assertEqual(merge(*shards)[::2], one, count)

    def test_of_lengths_that_protect_separators(self):
        path = self.write("a", ContentLength.message * 40)
        one = scanned.run(path)
        self.assertEqual(len(scanned.of_kind("message", scanned.rows_of(one[0]))), 40)
        self.check_planned(range(1, 17), path)
        counts = [len(scanned.of_kind("message", scanned.rows_of(each.read_bytes())))
                  for each in self.shards(8, "--by-plan", self.plan(8, path), path)]
        self.assertEqual(counts, [5] * 8)

    def test_of_lengths_behind_the_first_megabyte(self):
        plain = SEPARATOR + b"Subject: b\n\n" + b"z\n" * 1_000_000 + b"\n"
        path = self.write("a", plain + ContentLength.message * 8000)
        self.check_planned((2, 3, 7), "--hash=none", path)

    def test_of_several_sources(self):
        for number in range(5):
            self.write(f"cur/{number}", b"Subject: %d\n\nhi\n" % number * (number + 1))
            self.write(f"pile/{number}", mailbox_test.random_pile(number, b"\n") * 2)
        self.write("empty", b"")
        (self.mail / "z").symlink_to("nowhere")
        with tarfile.open(self.mail / "tar.gz", "w:gz") as archive:
            archive.add(self.mail / "pile", "pile")
        self.check_planned((1, 2, 5, 16, 40), self.mail)
        self.check_planned((4,), "--one", self.mail)

    def test_of_a_header_block_of_a_megabyte(self):
        header = SEPARATOR + b"a: b\n" * ((1 << 20) // 5 - 10)
        length = b"Content-Length: %d\n\n" % len(ContentLength.body)
        path = self.write("a", (header + length + ContentLength.body + b"\n") * 3)
        self.assertEqual(len(scanned.of_kind("message", scanned.rows_of(scanned.run(path)[0]))), 3)
        self.check_planned((3,), "--hash=none", path)

    def test_which_is_not_for_this_scan(self):
        path = self.write("a", ContentLength.message * 4)
        plan = self.plan(2, path)
        text = plan.read_bytes()
        unsorted = json.loads(text)
        unsorted["begins"].reverse()
        for wrong in (b"", text[:-3], b"[]\n", json.dumps(unsorted).encode(),
                      text.replace(b'"plan"', b'"plot"'), text.replace(b'"of":2', b'"of":3')):
            self.refused(wrong, "no whole plan", "--shard=1/2", path)
        self.refused(text, "a plan for 2 shards", "--shard=1/3", path)
        self.refused(text, "not a plan for these", "--shard=1/2", path, path)
        beyond = json.loads(text)
        beyond["begins"][1]["source"] = 9
        self.refused(json.dumps(beyond).encode(), "not a plan for these", "--shard=1/2", path)
        self.refused(text, "not a plan for these", "--shard=1/2", "--mbox=any", path)
        os.utime(path)
        self.refused(text, "not a plan for these", "--shard=1/2", path)

    def refused(self, text, what, *arguments):
        """Scans in vain by a plan."""
        plan = self.folder / "wrong.plan"
        plan.write_bytes(text)
        done = subprocess.run([scanned.TOOL, "scan", "--by-plan", plan, *arguments],
                              capture_output=True, check=False)
        self.assertEqual((done.stdout, done.returncode), (b"", 1))
        self.assertIn(what, done.stderr.decode())

    def test_is_the_same_for_all_shards(self):
        path = self.write("a", mailbox_test.random_pile(3, b"\n") * 10)
        first = self.shard(1, 2, "--by-plan", self.plan(2, path), path)
        first = first.rename(self.folder / "first")
        self.assertIn("not of the same", merge(first, self.shard(2, 2, path))[1])

    def test_goes_into_a_file(self):
        path = self.write("a", ContentLength.message * 4)
        file = self.folder / "file"
        self.assertEqual(scanned.run("--plan=2", "-o", file, path), (b"", 0))
        self.assertEqual(file.read_bytes(), self.plan(2, path).read_bytes())
        self.assertEqual(scanned.run("--plan=2", "-o", file, path), (b"", 1))

    def test_without_sense(self):
        path = self.write("a", ContentLength.message)
        plan = self.plan(1, path)
        for options in (["--by-plan", plan], ["--plan=0"], ["--plan=x"], ["--plan=2", "--summary"],
                        ["--plan=2", "--shard=1/2"], ["--plan=2", f"--sqlite={self.folder}/db"]):
            self.assertEqual(scanned.run(*options, path), (b"", 2), options)
        self.assertEqual(scanned.run("--plan=2", "-", given=b"a: b\n"), (b"", 2))


class Refused(Shards):
    """Shards that do not make up one scan."""

    def setUp(self):
        super().setUp()
        self.path = self.write("a", mailbox_test.random_pile(3, b"\n") * 10)
        self.three = self.shards(3, self.path)

    def check_refused(self, what, *shards):
        """Merges in vain, whatever the form of the output."""
        output, complaint, status = merge(*shards)
        self.assertEqual((output, status), (b"", 1))
        self.assertIn(what, complaint)
        file = self.folder / "out"
        for option in ("-o", "--sqlite"):
            self.assertEqual(merge(option, file, *shards)[2], 1)
            self.assertFalse(file.exists())

    def test_missing(self):
        self.check_refused("shard 2 of 3 is missing", self.three[0], self.three[2])
        self.check_refused("shard 3 of 3 is missing", *self.three[:2])
        self.check_refused("cannot open", *self.three[:2], self.folder / "none")

    def test_twice(self):
        self.check_refused("shard 2 of 3 is there more than once", *self.three, self.three[1])

    def test_of_other_sources_options_or_counts(self):
        for others in ([self.path, self.path], ["--hash=none", self.path],
                       ["--mbox=any", self.path]):
            other = self.folder / "other"
            other.write_bytes(scanned.run("--shard=2/3", *others)[0])
            self.check_refused("not of the same sources", self.three[0], other, self.three[2])
        other.write_bytes(scanned.run("--shard=2/4", self.path)[0])
        self.check_refused("not of the same sources", self.three[0], other, self.three[2])
        os.utime(self.path)
        other.write_bytes(scanned.run("--shard=2/3", self.path)[0])
        self.check_refused("not of the same sources", self.three[0], other, self.three[2])

    def test_incomplete(self):
        whole = self.three[1].read_bytes()
        for cut in (0, 1, len(whole) // 2, whole.rindex(b'{"kind":"shard"'), len(whole) - 1):
            self.three[1].write_bytes(whole[:cut])
            self.check_refused("may be incomplete", *self.three)
        self.three[1].write_bytes(whole[1:])
        self.check_refused("damaged", *self.three)
        self.three[1].write_bytes(whole + whole)
        self.check_refused("damaged", *self.three)

    def test_without_the_row_of_a_divided_source(self):
        lines = self.three[1].read_bytes().splitlines(keepends=True)
        shard = json.loads(lines[-1])
        shard["bytes"] -= len(lines[-2])
        last = json.dumps(shard, separators=(",", ":")).encode() + b"\n"
        self.three[1].write_bytes(b"".join(lines[:-2]) + last)
        output, complaint, status = merge(*self.three)
        self.assertEqual(status, 1)
        self.assertIn("damaged", complaint)
        self.assertNotEqual(output, scanned.run(self.path)[0])

    def test_with_other_rows_of_a_divided_source(self):
        whole = self.three[1].read_bytes()
        self.three[1].write_bytes(whole.replace(b'"format":"mbox"', b'"format":"none"'))
        _, complaint, status = merge(*self.three)
        self.assertEqual((status, "damaged" in complaint), (1, True))

    def test_without_its_messages(self):
        lines = self.three[2].read_bytes().splitlines(keepends=True)
        shard = json.loads(lines[-1])
        shard.update(first=None, last=None)
        last = json.dumps(shard, separators=(",", ":")).encode() + b"\n"
        self.three[2].write_bytes(b"".join(lines[:-1]) + last)
        self.check_refused("does not have the message at byte", *self.three)

    def test_that_do_not_join(self):
        lines = self.three[1].read_bytes().splitlines(keepends=True)
        for place in ("begin", "first"):
            shard = json.loads(lines[-1])
            shard[place]["byte"] += 1
            last = json.dumps(shard, separators=(",", ":")).encode() + b"\n"
            self.three[1].write_bytes(b"".join(lines[:-1]) + last)
            self.check_refused("and the shard before ends at" if place == "begin"
                               else "make a plan", *self.three)

    def test_of_what_has_no_size(self):
        for sources in (["-"], [], ["/dev/zero"]):
            self.assertEqual(scanned.run("--shard=1/2", *sources, given=b"a: b\n"), (b"", 2))
        for text in ("0/2", "3/2", "1", "1/0", "a/b", "1/2/3", "/"):
            self.assertEqual(scanned.run(f"--shard={text}", self.path), (b"", 2))
        for option in ("--summary", f"--sqlite={self.folder}/db"):
            self.assertEqual(scanned.run("--shard=1/2", option, self.path), (b"", 2))


if __name__ == "__main__":
    unittest.main()
