#!/usr/bin/env python3
"""Holds what each parser finds in the messages of our table against what the table says.

messages_test.py NAME=PROGRAM...: the programs of this folder. A parser without a program is not
tested. When a parser has changed, the failure names the parser and the message and shows what the
parser finds now, in the form in which the table has it.
"""

import pathlib
import sys
import tempfile
import unittest

import leaves
import message_table

PARSERS = leaves.parsers(sys.argv[1:])
PARSERS.pop("classic", None)  # the table has no column for it
MESSAGES = list(message_table.messages())
RULES = range(1, 36)  # those that entities can show

# A multipart within a multipart, so often; and how many entities each parser finds then.
LEVELS = 1100
ENTITIES_OF_LEVELS = {
    "standard": LEVELS + 1,
    "python": 0,  # raises RecursionError
    "gmime": 1024 + 1,  # goes no deeper
    "dovecot": LEVELS + 1,  # an IMAP server stops at a hundred, which is a setting of the parser
}


def deep_message():
    """A multipart within a multipart, and so on; the innermost has a part."""
    levels = (
        f"Content-Type: multipart/mixed; boundary=b{level}\n\n--b{level}\n"
        for level in range(LEVELS)
    )
    return ("".join(levels) + "\nhi\n").encode()


class Messages(unittest.TestCase):
    """Every parser on every message."""

    maxDiff = None

    @classmethod
    def setUpClass(cls):
        cls.folder = tempfile.TemporaryDirectory()
        cls.addClassCleanup(cls.folder.cleanup)

    def files(self, mails):
        """The mails in files of their own."""
        files = [pathlib.Path(self.folder.name, str(number)) for number in range(len(mails))]
        for file, mail in zip(files, mails):
            file.write_bytes(mail)
        return files

    def test_each_parser_finds_what_the_table_says(self):
        files = self.files([message.mail for message in MESSAGES])
        for name, parser in PARSERS.items():
            for message, found in zip(MESSAGES, parser(files)):
                with self.subTest(parser=name, message=message.name):
                    self.assertEqual(message.expected[name], leaves.as_text(found))

    def test_depth(self):
        files = self.files([deep_message()])
        for name, parser in PARSERS.items():
            with self.subTest(parser=name):
                self.assertEqual(ENTITIES_OF_LEVELS[name], len(parser(files)[0]))


class Table(unittest.TestCase):
    """What must hold of the table itself."""

    def test_names_each_message_once(self):
        names = [message.name for message in MESSAGES]
        self.assertEqual(sorted(names), sorted(set(names)))

    def test_has_each_rule(self):
        self.assertEqual(set(RULES), {rule for message in MESSAGES for rule in message.rules})

    def test_lists_a_parser_only_where_it_differs(self):
        for message in MESSAGES:
            for peer in message.differing:
                with self.subTest(parser=peer, message=message.name):
                    self.assertNotEqual(message.expected["standard"], message.expected[peer])


if __name__ == "__main__":
    for peer in message_table.PEERS:
        if peer not in PARSERS:
            print(f"{peer}: skipped, its library is not installed")
    del sys.argv[1:]
    unittest.main()
