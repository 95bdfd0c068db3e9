#!/usr/bin/env python3
"""Takes messages out of piles by what their rows say, and compares what the commands then give with
the rows, with the bytes, and with what they give of files that hold the messages alone.

tests/scan/address_test.py TOOL
"""

import bz2
import hashlib
import pathlib
import subprocess
import tarfile
import tempfile
import unittest

import scanned
from scanned import SEPARATOR

SAMPLES = scanned.TOP / "tests/data/messages"
QUOTED = b"Subject: q\nContent-Length: %d\n\n" + b"x\n\n" + SEPARATOR + b"a: b\n\ny\n"
QUOTED = QUOTED % (len(QUOTED) - len(b"Subject: q\nContent-Length: %d\n\n"))
TEXTS = [(SAMPLES / name).read_bytes()
         for name in ("forwarded.eml", "mixed-with-attachment-crlf.eml")]
TEXTS += [b"Subject: a\n\nFrom here on\n\n" + b"line\n" * 600_000, QUOTED, b"Subject: last\n\nx\n"]
PILE = b"".join(SEPARATOR + text + b"\n" for text in TEXTS)
RANGES = ("header", "mime", "body", "contents", "epilogue")
COMMANDS = (("tree",), ("json",), ("part", "--list"), ("part", ""), ("check",), ("map",),
            ("dump",))


def run(*arguments, folder=None):
    """What the tool does."""
    return subprocess.run([scanned.TOOL, *arguments], check=False, stdout=subprocess.PIPE,
                          stderr=subprocess.PIPE, cwd=folder)


def outcome(done):
    """All that a user sees."""
    return done.returncode, done.stdout, done.stderr


class Addresses(unittest.TestCase):
    """Messages in the pile, in the pile compressed, and in archives."""

    @classmethod
    def setUpClass(cls):
        folder = tempfile.TemporaryDirectory()
        cls.addClassCleanup(folder.cleanup)
        cls.folder = pathlib.Path(folder.name)
        (cls.folder / "pile").write_bytes(PILE)
        (cls.folder / "pile@7").write_bytes(PILE)
        (cls.folder / "one").write_bytes(TEXTS[0])
        (cls.folder / "pile.bz2").write_bytes(bz2.compress(PILE))
        with tarfile.open(cls.folder / "all::x.tgz", "w:gz") as archive:
            archive.add(SAMPLES / "plain.eml", "one")
            archive.add(cls.folder / "pile", "a::b/pile")

    def check_commands(self, address, message):
        """In the folder of the piles, the name is an address. In another one, it is the name of a
        file with the same bytes."""
        other_folder = self.folder / "taken"
        file = other_folder / address
        file.parent.mkdir(parents=True, exist_ok=True)
        file.write_bytes(message)
        for command in COMMANDS:
            with self.subTest(command):
                done = outcome(run(*command, address, folder=self.folder))
                self.assertEqual(done, outcome(run(*command, address, folder=other_folder)))
                self.assertNotEqual(done[1:], (b"", b""))

    def check(self, name):
        """Takes every message of a source out."""
        rows = scanned.rows(self.folder / name)
        messages = scanned.of_kind("message", rows)
        for message in messages:
            address = message["source"]
            if message["member"] is not None:
                address += "::" + message["member"]
            address += f"@{message['message']}"
            with self.subTest(address):
                taken = run("part", "", address)
                self.assertEqual(taken.stderr, b"")
                self.assertEqual(len(taken.stdout), message["length"])
                self.assertEqual(hashlib.sha256(taken.stdout).hexdigest(), message["sha256"])
                lines = scanned.rows_of(run("json", "--flat", address).stdout)
                own = [row for row in scanned.of_kind("entity", rows)
                       if row["message"] == message["message"]
                       and row["member"] == message["member"]]
                self.assertEqual(len(own), len(lines))
                for entity, line in zip(own, lines):
                    self.assertEqual(entity["section"], line["section"])
                    for each in RANGES:
                        self.assertEqual(entity[each], line[each], each)
                self.check_commands(address.removeprefix(f"{self.folder}/"), taken.stdout)
        return len(messages)

    def test_of_all_messages(self):
        self.assertEqual(self.check("pile"), len(TEXTS))
        self.assertEqual(self.check("pile@7"), len(TEXTS))
        self.assertEqual(self.check("one"), 1)
        self.assertEqual(self.check("pile.bz2"), len(TEXTS))
        self.assertEqual(self.check("all::x.tgz"), len(TEXTS) + 1)

    def test_of_no_message(self):
        for name, complaint in (
            ("pile@0", b"no message begins at that byte of the source"),
            ("pile@48", b"no message begins at that byte of the source"),
            ("pile@99999999999", b"no message begins at that byte of the source"),
            ("one@1", b"no message begins at that byte of the source"),
            ("pile.bz2@48", b"no message begins at that byte of the source"),
            ("pile::pile@47", b"the source is no archive"),
            ("all::x.tgz::two@0", b"the archive has no file of that name"),
            ("none@47", b"cannot open: No such file or directory"),
            ("pile@", b"cannot open: No such file or directory"),
            ("pile@x", b"cannot open: No such file or directory"),
            ("pile@99999999999999999999", b"cannot open: No such file or directory"),
        ):
            for command in COMMANDS:
                with self.subTest(name, command=command):
                    done = run(*command, self.folder / name)
                    self.assertEqual((done.stdout, done.returncode), (b"", 1))
                    self.assertIn(complaint, done.stderr)

    def test_of_an_archive_that_is_cut_short(self):
        short = self.folder / "short.bz2"
        short.write_bytes((self.folder / "pile.bz2").read_bytes()[:-50])
        rows = scanned.rows(short)
        last = scanned.of_kind("message", rows)[-1]
        (fault,) = (row for row in rows if row.get("code") == "archive-damaged")
        complaint = f"cannot read: {fault['text']} at byte {fault['byte']}\n"
        for offset in (last["message"], PILE.index(b"Subject: last")):
            done = run("part", "", f"{short}@{offset}")
            self.assertEqual((done.stdout, done.returncode), (b"", 1))
            self.assertTrue(done.stderr.endswith(complaint.encode()), done.stderr)


if __name__ == "__main__":
    unittest.main()
