#!/usr/bin/env python3
"""Divides mboxes and compares the messages with those that others find: Python's `mailbox`, and the
rules of doc/scan.md, written here a second time with regular expressions.

Each difference from `mailbox` stands under a named rule.

tests/scan/mailbox_test.py TOOL
"""

import contextlib
import mailbox
import pathlib
import random
import re
import tempfile
import unittest

import scanned

# --- The rules, line by line ---

DATE = re.compile(
    rb"(?:Mon|Tue|Wed|Thu|Fri|Sat|Sun),?[ \t]+"
    rb"(?:Jan|Feb|Mar|Apr|May|Jun|Jul|Aug|Sep|Oct|Nov|Dec)[ \t]+[0-9]{1,2},?[ \t]+"
    rb"(?:TIME(?:[ \t]+ZONE){0,2}[ \t]+[0-9]{4}|[0-9]{4}[ \t]+TIME)(?:[ \t]+ZONE){0,2}"
    rb"(?:[ \t]+remote from .*)?[ \t]*"
    .replace(b"TIME", rb"[0-9]{1,2}:[0-9]{2}(?::[0-9]{2})?")
    .replace(b"ZONE", rb"(?:[A-Z]{1,5}(?: DST)?|[+-][0-9]{4}|GMT[+-][0-9]{2}:?[0-9]{2}|\([^)]*\))")
)
STRICT = re.compile(
    rb"From \s*\S+\s+\w{3}\s+\w{3}\s+\d?\d\s+\d?\d:\d\d(:\d\d)?(\s+\S+)?\s+\d{4}\s*")
FIELD = re.compile(rb"[!-9;-~]+[ \t]*:")
PATCH = re.compile(rb"From ([0-9a-f]{40}|[0-9a-f]{64}) Mon Sep 17 00:00:00 2001")


def ends_with_date(line):
    """Whether "From ", at most 320 bytes and a date are all of the line."""
    rest = line[5:]
    places = [0] + [at + 1 for at in range(min(len(rest), 320)) if rest[at : at + 1] in b" \t"]
    return any(DATE.fullmatch(rest, at) for at in places)


def separators(pile, rules):
    """The offsets of the lines that separate, and of those that do not, without Content-Length."""
    lines = pile.splitlines(keepends=True)
    texts = [line.removesuffix(b"\n").removesuffix(b"\r") for line in lines]
    offsets = [0]
    for line in lines:
        offsets.append(offsets[-1] + len(line))

    def are_two_fields(at):
        if not FIELD.match(b"".join(texts[at : at + 1])):
            return False
        at += 1
        while texts[at : at + 1] and texts[at][:1] in (b" ", b"\t"):
            at += 1
        return bool(FIELD.match(b"".join(texts[at : at + 1])))

    def separates(at):
        text = texts[at]
        if rules == "any":
            return True
        if rules == "strict":
            return bool(STRICT.fullmatch(text))
        if rules == "thunderbird":
            return are_two_fields(at + 1)
        if PATCH.fullmatch(text) and not PATCH.fullmatch(texts[0]):
            return False
        follows = texts[at + 1 : at + 2]
        if ends_with_date(text) and (not follows or FIELD.match(follows[0])
                                     or follows[0].startswith(b">From ")):
            return True
        alone = text == b"From " or at == 0 or texts[at - 1] == b""
        return alone and are_two_fields(at + 1)

    froms = [at for at, text in enumerate(texts) if text.startswith(b"From ")]
    found = [offsets[at] for at in froms if separates(at)]
    return found, sorted({offsets[at] for at in froms} - set(found))


# --- Mboxes to divide ---

LINES = [
    b"", b"", b"text", b"a: b", b"Subject: c", b" folded", b"\tfolded: so", b": none",
    b">From quoted",
    b"From ", b"From", b"From: ada", b"From here on", b"From ada Mon Mar  3 09:15:00 2025",
    b"From ada@mail.example Mon Mar  3 09:15:00 2025 +0100",
    b"From 1545@xxx Fri Sep 16 22:26:51 +0000 2016", b"From \"a b\"@c Fri, Sep 16, 2016 2:26",
    b"From ada Fri Sep 16 22:26:51 MET DST 2016 remote from host",
    b"From ada Fri Sep 16 22:26:51 A B C 2016",
    b"From ada Fri Sep 16 22:26:51 (late) GMT+01:00 2016",
    b"From 0123456789abcdef0123456789abcdef01234567 Mon Sep 17 00:00:00 2001",
    b"From " + b"x" * 319 + b" Mon Mar  3 09:15:00 2025",
    b"From " + b"x" * 320 + b" Mon Mar  3 09:15:00 2025", b"Mon Mar  3 09:15:00 2025",
]


def random_pile(seed, line_end):
    """An mbox of some of these lines, which begins with a separator."""
    chance = random.Random(seed)
    lines = [b"From ada Mon Mar  3 09:15:00 2025", b"a: b", b"c: d"]
    lines += chance.choices(LINES, k=chance.randrange(40))
    pile = line_end.join(lines)
    return pile + line_end if chance.random() < 0.8 else pile


class Divided(unittest.TestCase):
    """The messages of an mbox in a file."""

    def setUp(self):
        self.folder = tempfile.TemporaryDirectory()
        self.addCleanup(self.folder.cleanup)
        self.path = pathlib.Path(self.folder.name, "pile")

    def found(self, rules, pile, *options):
        """The rows about an mbox."""
        self.path.write_bytes(pile)
        return scanned.rows("--hash=none", f"--mbox={rules}", *options, self.path)

    def test_random_piles_by_all_rules(self):
        """Separators and doubtful lines are those of the rules above, with LF and with CR LF."""
        separating = doubtful = 0
        for seed in range(100):
            pile = random_pile(seed, b"\r\n" if seed % 3 == 0 else b"\n")
            for rules in ("auto", "strict", "any", "thunderbird"):
                if not separators(pile, rules)[0][:1] == [0]:
                    continue # the file begins with no separator: it is one message
                rows = self.found(rules, pile, "--content-length=ignore")
                wanted = separators(pile, rules)
                messages = [row["from_offset"] for row in scanned.of_kind("message", rows)]
                lines = [row["byte"] for row in scanned.of_kind("fault", rows)
                         if row["code"] == "doubtful-from"]
                self.assertEqual((messages, lines), wanted, f"seed {seed}, {rules}: {pile!r}")
                separating += len(messages)
                doubtful += len(lines)
        self.assertGreater(separating, 1000)
        self.assertGreater(doubtful, 300)

    def messages_in(self, pile, rows):
        """The bytes of the messages."""
        return [pile[row["message"] :][: row["length"]] for row in scanned.of_kind("message", rows)]

    def of_python(self, pile):
        """The messages that `mailbox` finds."""
        self.path.write_bytes(pile)
        with contextlib.closing(mailbox.mbox(self.path, create=False)) as box:
            return [box.get_bytes(key) for key in box.keys()]

    def test_random_piles_beside_mailbox(self):
        """`mailbox` takes every "From " line for a separator, and so does --mbox=any."""
        differences = {"every_from_line_separates": 0, "cr_lf_is_no_empty_line": 0}
        for seed in range(100):
            line_end = b"\r\n" if seed % 3 == 0 else b"\n"
            pile = random_pile(seed, line_end)
            theirs = self.of_python(pile)
            ours = self.messages_in(pile, self.found("any", pile, "--content-length=ignore"))
            if line_end == b"\r\n":
                # The empty line before a separator stays with the message if it ends with CR LF.
                differences["cr_lf_is_no_empty_line"] += theirs != ours
                theirs = [their[: -2] if their == our + b"\r\n" else their
                          for their, our in zip(theirs, ours)]
            self.assertEqual(ours, theirs, f"seed {seed}: {pile!r}")
            automatic = self.found("auto", pile, "--content-length=ignore")
            doubtful = [row for row in scanned.of_kind("fault", automatic)
                        if row["code"] == "doubtful-from"]
            self.assertEqual(len(scanned.of_kind("message", automatic)) + len(doubtful),
                             len(theirs))
            differences["every_from_line_separates"] += bool(doubtful)
        self.assertTrue(all(differences.values()), differences)

    def test_piles_that_mailbox_has_written(self):
        """Nothing differs: `mailbox` quotes what would separate."""
        texts = [b"Subject: a\n\none\n", b"Subject: b\n\nFrom here on\n\nFrom \nc: d\ne: f\n",
                 b"Subject: c\n\n\n\n", b"Subject: d\n\nFrom ada Mon Mar  3 09:15:00 2025\na: b\n"]
        box = mailbox.mbox(self.path)
        for text in texts:
            box.add(text)
        box.close()
        pile = self.path.read_bytes()
        self.assertEqual(self.messages_in(pile, self.found("auto", pile)), self.of_python(pile))
        self.assertEqual(len(self.of_python(pile)), len(texts))

    def test_content_length_of_a_pile_that_quotes_nothing(self):
        """Bodies with separators of their own are whole where each message tells its length."""
        body = b"x\n\nFrom ada Mon Mar  3 09:15:00 2025\nSubject: inside\n\ny\n"
        message = b"Subject: a\nContent-Length: %d\n\n" % len(body) + body
        pile = (b"From ada Mon Mar  3 09:15:00 2025\n" + message + b"\n") * 300
        rows = self.found("auto", pile)
        self.assertEqual(self.messages_in(pile, rows), [message] * 300)
        self.assertEqual(scanned.of_kind("fault", rows), [])
        rows = self.found("auto", pile, "--content-length=ignore")
        self.assertEqual(len(scanned.of_kind("message", rows)), 600)


if __name__ == "__main__":
    unittest.main()
