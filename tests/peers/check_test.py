#!/usr/bin/env python3
"""Holds the dangers that `mailstructure check` reports against three parsers of mail.

check_test.py tool=TOOL NAME=PROGRAM...: the tool, and the programs of this folder. Without GMime or
Dovecot the exit status is 77, which ctest takes as skipped.

Wherever two of the parsers find different entities in a message, or different bytes in one of them,
the tool has to report a danger. The messages are those of our table, real mail (see real_mail.py;
left out where there is none), and both of them damaged. Prints the counts as Markdown; DOCUMENT
shows those of the real mail.
"""

import collections
import json
import pathlib
import random
import subprocess
import sys
import tempfile
import unittest

import damage
import leaves
import message_table

sys.path.insert(0, str(pathlib.Path(__file__).resolve().parent.parent / "support"))
import real_mail  # pylint: disable=wrong-import-position

PARSERS = leaves.parsers(sys.argv[1:])
TOOL = next((word[5:] for word in sys.argv if word.startswith("tool=")), None)
PEERS = message_table.PEERS
DOCUMENT = pathlib.Path(__file__).resolve().parent.parent.parent / "doc/check.md"

# What was measured on the real mail that these figures were accepted with. Other mail has others.
ACCEPTED_MESSAGES = 778
ACCEPTED = {"disagree": 205, "exceptions": 0, "agree": 573, "false alarms": 43}

LONGEST_DAMAGED = 20000  # bytes; longer messages take longer and show no more
DAMAGED_MESSAGES = 1000


def without_last_line_end(entities):
    """What Python finds, in the form of the others: it keeps the last line end of a message within
    that is in no multipart, where they drop it (see the last rule of leaves.py)."""
    types = {entity.path: entity.type for entity in entities}
    for entity in entities:
        path = entity.path.split(".") if entity.path else []
        ancestors = [".".join(path[:depth]) for depth in range(len(path))]
        in_multipart = any(types[ancestor].startswith("multipart/") for ancestor in ancestors)
        if entity.body and ancestors and not in_multipart:
            entity = entity._replace(body=leaves.without_last_line_end(entity.body))
        yield entity


def dangers(files):
    """For each file the names of the dangers that the tool reports."""
    found = collections.defaultdict(set)
    for begin in range(0, len(files), 500):
        some = files[begin : begin + 500]
        done = subprocess.run([TOOL, "check", "--json", *some], stdout=subprocess.PIPE, check=False)
        assert done.returncode in (0, 1), done
        for row in map(json.loads, done.stdout.splitlines()):
            if row["level"] == "danger":
                found[row["file"]].add(row["name"])
    return [found[str(file)] for file in files]


class Comparison:
    """The parsers and the tool on some messages."""

    def __init__(self, files):
        found = {peer: PARSERS[peer](files, drop_last_line_end=True) for peer in PEERS}
        found["python"] = [list(without_last_line_end(each)) for each in found["python"]]
        self.disagree, self.exceptions, self.agree, self.false_alarms = [], [], [], []
        for number, (*answers, names) in enumerate(zip(*found.values(), dangers(files))):
            agree = all(answer == answers[0] for answer in answers)
            (self.agree if agree else self.disagree).append(number)
            if agree and names:
                self.false_alarms.append(number)
            if not agree and not names:
                self.exceptions.append(number)

    def counts(self):
        """How many there are of each."""
        return {
            "disagree": len(self.disagree),
            "exceptions": len(self.exceptions),
            "agree": len(self.agree),
            "false alarms": len(self.false_alarms),
        }

    def row(self, title):
        """The counts as a row of a table in Markdown."""
        return f"| {title} | " + " | ".join(str(count) for count in self.counts().values()) + " |"


def in_files(mails, folder):
    """The mails in files of their own."""
    files = [pathlib.Path(folder, str(number)) for number in range(len(mails))]
    for file, mail in zip(files, mails):
        file.write_bytes(mail)
    return files


class Dangers(unittest.TestCase):
    """Where the parsers disagree, and elsewhere."""

    @classmethod
    def setUpClass(cls):
        temporary = tempfile.TemporaryDirectory()
        cls.addClassCleanup(temporary.cleanup)
        cls.folder = pathlib.Path(temporary.name)
        cls.messages = list(message_table.messages())
        cls.real = real_mail.messages()

    def compared(self, mails):
        """The comparison over these mails."""
        with tempfile.TemporaryDirectory(dir=self.folder) as folder:
            return Comparison(in_files(mails, folder))

    def test_are_reported_in_each_message_of_the_table_that_parsers_read_differently(self):
        comparison = self.compared([message.mail for message in self.messages])
        names = [self.messages[number].name for number in comparison.exceptions]
        self.assertEqual(names, [])
        self.assertGreater(len(comparison.disagree), len(self.messages) // 3)
        self.assertGreater(len(comparison.agree), len(comparison.false_alarms))

    def test_are_reported_in_real_mail_that_parsers_read_differently(self):
        if self.real is None:
            self.skipTest("there is no real mail")
        comparison = Comparison(self.real)
        print(comparison.row("real mail"), flush=True)
        self.assertLessEqual(len(comparison.exceptions), len(comparison.disagree) // 100)
        if len(self.real) == ACCEPTED_MESSAGES:
            self.assertEqual(comparison.counts(), ACCEPTED)
            self.assertIn(comparison.row("real mail"), DOCUMENT.read_text(encoding="utf-8"))

    def test_are_reported_in_damaged_mail_that_parsers_read_differently(self):
        chance = random.Random(1)
        sources = [message.mail for message in self.messages]
        real = [file.read_bytes() for file in self.real or []]
        sources += [mail for mail in real if len(mail) <= LONGEST_DAMAGED]
        mails = [damage.damaged(chance.choice(sources), chance) for _ in range(DAMAGED_MESSAGES)]
        comparison = self.compared(mails)
        print(comparison.row("damaged mail"), flush=True)
        self.assertGreater(len(comparison.disagree), DAMAGED_MESSAGES // 4)
        self.assertGreater(len(comparison.agree), len(comparison.false_alarms))
        self.assertLessEqual(len(comparison.exceptions), len(comparison.disagree) // 100)


if __name__ == "__main__":
    missing = [name for name in PEERS if name not in PARSERS] + ([] if TOOL else ["the tool"])
    if missing:
        print(f"skipped: there is no program for {', '.join(missing)}")
        sys.exit(77)
    del sys.argv[1:]
    unittest.main()
