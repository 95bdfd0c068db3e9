#!/usr/bin/env python3
"""Divides mboxes as `formail -s` does, and holds the separators against those of `scan`. Each
difference stands under a named rule. Skipped where formail is not installed.

tests/scan/formail_test.py TOOL
"""

import collections
import pathlib
import random
import re
import shutil
import subprocess
import sys
import tempfile
import unittest

import scanned

DATED = re.compile(rb"From .*(?:Mon|Fri) \w{3} [ \d]\d \d\d:\d\d:\d\d 2[\d +]*\Z")
PATCH = b"From 0123456789abcdef0123456789abcdef01234567 Mon Sep 17 00:00:00 2001"
FIELD = re.compile(rb"[!-9;-~]+[ \t]*:")
# Fields that let formail believe that a header block begins. It knows some more.
KNOWN_FIELD = re.compile(rb"(?:From|Subject|Date|Content-Length):")


def rule_of(finder, before, line, following):
    """The rule under which only one of the two takes the line for a separator.

    finder     "scan" or "formail"
    before     the line before
    line       the line that begins with "From "
    following  the lines after it
    """
    header = []
    for text in following:
        if not (FIELD.match(text) or text[:1] in (b" ", b"\t") or text.startswith(b">From ")):
            break
        header.append(text)
    is_known = any(map(KNOWN_FIELD.match, header))
    if finder == "scan":
        if before != b"":
            return "formail wants an empty line before a separator"
        if line == b"From ":
            return "formail wants something after From"
        if not is_known:
            return "formail wants a field that it knows"
    elif before == b"":
        if line == PATCH:
            return "scan takes a patch that is quoted for text"
        first = [text for text in header if text[:1] not in (b" ", b"\t")][:2]
        are_two_fields = len(first) == 2 and all(map(FIELD.match, first))
        if is_known and not DATED.match(line) and not are_two_fields:
            return "scan wants a date or two fields"
    return None


RULES = {
    "formail wants an empty line before a separator",
    "formail wants something after From",
    "formail wants a field that it knows",
    "scan takes a patch that is quoted for text",
    "scan wants a date or two fields",
}

# In these piles, a line that begins with "From " has a mark before it if a separator is found
# there: "=" by both, "<" by scan alone, ">" by formail alone.
CASES = {
    "two messages": "=From a Mon Mar  3 09:15:00 2025\nSubject: b\n\nc\n\n"
                    "=From d Mon Mar  3 09:15:00 2025\nSubject: e\n\nf\n",
    "offset after the date": "=From a Mon Mar  3 09:15:00 2025 +0100\nSubject: b\n\nc\n\n"
                             "=From d Mon Mar  3 09:15:00 2025 +0100\nSubject: e\n\nf\n",
    "offset before the year": "=From 15@xxx Fri Sep 16 22:26:51 +0000 2016\nSubject: b\n\nc\n\n"
                              "=From 16@xxx Fri Sep 16 22:26:51 +0000 2016\nSubject: e\n\nf\n",
    "prose": "=From a Mon Mar  3 09:15:00 2025\nSubject: b\n\nc\n\n"
             "From here on\nall is prose\n\nFrom there: too\n",
    "prose with one field": "=From a Mon Mar  3 09:15:00 2025\nSubject: b\n\nc\n\n"
                            ">From here on\nSubject: e\n\nf\n",
    "prose with two fields": "=From a Mon Mar  3 09:15:00 2025\nSubject: b\n\nc\n\n"
                             "=From here on\nSubject: e\nDate: f\n\ng\n",
    "no empty line": "=From a Mon Mar  3 09:15:00 2025\nSubject: b\n\nc\n"
                     "<From d Mon Mar  3 09:15:00 2025\nSubject: e\n\nf\n",
    "From alone": "=From a Mon Mar  3 09:15:00 2025\nSubject: b\n\nc\n\n"
                  "<From \nSubject: e\nDate: f\n\ng\n",
    "unknown fields": "=From a Mon Mar  3 09:15:00 2025\nSubject: b\n\nc\n\n"
                      "<From d Mon Mar  3 09:15:00 2025\ne: f\ng: h\n\ni\n",
    "no header": "=From a Mon Mar  3 09:15:00 2025\nSubject: b\n\nc\n\n"
                 "<From d Mon Mar  3 09:15:00 2025\n",
    "quoted line": "=From a Mon Mar  3 09:15:00 2025\nSubject: b\n\n>>From c\n\n"
                   "=From d Mon Mar  3 09:15:00 2025\nSubject: e\n\nf\n",
    "quoted patch": "=From a Mon Mar  3 09:15:00 2025\nSubject: b\n\nc\n\n"
                    f">{PATCH.decode()}\nFrom: d\nSubject: e\n\nf\n",
    "Content-Length": "=From a Mon Mar  3 09:15:00 2025\nSubject: b\nContent-Length: 50\n\n"
                      "From c Mon Mar  3 09:15:00 2025\nSubject: inside\n\n\n"
                      "=From d Mon Mar  3 09:15:00 2025\nSubject: e\n\nf\n",
}

SEPARATORS = [b"From ada Mon Mar  3 09:15:00 2025", b"From ada@mail.example Mon Mar  3 09:15:00"
              b" 2025 +0100", b"From here on", b"From ", PATCH]
HEADERS = [b"From: ada\nSubject: c\n", b"Subject: c\n", b"", b"a: b\nc: d\n", b"a: b\n",
           b">From quoted\nSubject: c\n", b"Subject: c\n folded\nDate: d\n"]
BODIES = [b"\ntext\n", b"\n>From quoted\n", b"\n", b"", b"text\n"]


def random_pile(seed):
    """An mbox whose first separator all agree on."""
    chance = random.Random(seed)
    pile = SEPARATORS[0] + b"\nFrom: ada\nSubject: c\n\ntext\n"
    for _ in range(chance.randrange(2, 12)):
        pile += chance.choice([b"\n", b"\n", b""]) + chance.choice(SEPARATORS) + b"\n"
        pile += chance.choice(HEADERS) + chance.choice(BODIES)
    return pile


def lines_with_text(data):
    """The numbers of lines that are not empty, and the lines."""
    return [(number, line) for number, line in enumerate(data.split(b"\n")) if line]


class BesideFormail(unittest.TestCase):
    """The numbers of lines that separate, by both programs."""

    def setUp(self):
        folder = tempfile.TemporaryDirectory()
        self.addCleanup(folder.cleanup)
        self.path = pathlib.Path(folder.name, "pile")

    def of_formail(self, pile, *options):
        """formail adds empty lines to messages, so lines with text alone are counted."""
        done = subprocess.run(
            ["formail", "-b", "-f", "-q", *options, "-s", "sh", "-c", r"cat; printf '\0'"],
            input=pile, stdout=subprocess.PIPE, check=True)
        messages = [lines_with_text(message) for message in done.stdout.split(b"\0")[:-1]]
        lines = lines_with_text(pile)
        self.assertEqual([text for message in messages for _, text in message],
                         [text for _, text in lines])
        found, count = set(), 0
        for message in messages:
            found.add(lines[count][0])
            count += len(message)
        return found

    def of_scan(self, pile, *options):
        """By the rules of --mbox=auto."""
        self.path.write_bytes(pile)
        rows = scanned.of_kind("message", scanned.rows("--hash=none", *options, self.path))
        return {pile.count(b"\n", 0, row["from_offset"]) for row in rows}

    def differences(self, pile, ours, theirs):
        """The rule of each line that only one of the programs takes for a separator."""
        lines = pile.split(b"\n")
        for number in ours ^ theirs:
            finder = "scan" if number in ours else "formail"
            rule = rule_of(finder, lines[number - 1], lines[number], lines[number + 1 :])
            self.assertIsNotNone(rule, f"{finder} alone finds line {number} of {pile!r}")
            yield rule

    def test_table_of_cases(self):
        for name, marked in CASES.items():
            with self.subTest(name):
                marks = [line[0] if re.match("[=<>]From ", line) else " "
                         for line in marked.split("\n")]
                pile = re.sub("^[=<>](?=From )", "", marked, flags=re.MULTILINE).encode()
                ours, theirs = self.of_scan(pile), self.of_formail(pile)
                self.assertEqual(ours, {n for n, mark in enumerate(marks) if mark in "=<"})
                self.assertEqual(theirs, {n for n, mark in enumerate(marks) if mark in "=>"})
                list(self.differences(pile, ours, theirs))

    def test_random_piles(self):
        """No difference is without a rule, and each rule is needed."""
        rules = collections.Counter()
        agreed = 0
        for seed in range(60):
            pile = random_pile(seed)
            ours = self.of_scan(pile, "--content-length=ignore")
            theirs = self.of_formail(pile, "-Y")
            agreed += len(ours & theirs)
            rules.update(self.differences(pile, ours, theirs))
        self.assertEqual(set(rules), RULES)
        self.assertGreater(agreed, 100)


if __name__ == "__main__":
    if not shutil.which("formail"):
        print("skipped: there is no formail; the package procmail has it")
        sys.exit(77)
    unittest.main()
