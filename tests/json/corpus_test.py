#!/usr/bin/env python3
"""Loads the flat form of real mail into SQLite and checks what has arrived.

The messages are not part of the project: the environment variable MAILSTRUCTURE_CORPUS names a
folder of them. Without it the exit status is 77, and ctest reports the test as skipped.

tests/json/corpus_test.py TOOL
"""

import os
import pathlib
import sqlite3
import sys
import unittest

import printed

FOLDER = os.environ.get("MAILSTRUCTURE_CORPUS")


class Standard(unittest.TestCase):
    """Every file, in every form, by the standard rules: each is a message."""

    rules = "standard"

    @classmethod
    def setUpClass(cls):
        cls.files = sorted(path for path in pathlib.Path(FOLDER).rglob("*") if path.is_file())
        cls.documents = printed.lines_of(printed.run("--rules", cls.rules, *cls.files)[0])
        cls.flat_form = printed.run("--rules", cls.rules, "--flat", *cls.files)[0]
        cls.lines = printed.lines_of(cls.flat_form)
        cls.table = sqlite3.connect(":memory:")
        cls.table.execute("CREATE TABLE part(line TEXT NOT NULL CHECK (json_valid(line)))")
        cls.table.executemany(
            "INSERT INTO part VALUES (?)",
            ([line] for line in cls.flat_form.decode().split("\n")[:-1]),
        )

    def count(self, query):
        """The only number in the result of a query."""
        return self.table.execute(query).fetchone()[0]

    def test_has_messages(self):
        self.assertEqual(len(self.documents), len(self.files))

    def test_is_the_same_in_both_forms(self):
        flattened = [line for document in self.documents for line in printed.flattened(document)]
        self.assertEqual(self.lines, flattened)

    def test_tells_where_the_bytes_lie(self):
        names = [document["file"] for document in self.documents]
        messages = {name: pathlib.Path(name).read_bytes() for name in names}
        for line in self.lines:
            with self.subTest(file=line["file"], index=line["index"]):
                printed.check_line(line, messages[line["file"]])

    def test_arrives_whole_in_a_table(self):
        fields = [field for line in self.lines for field in line["fields"]]
        params = [param for field in fields for param in field["params"]]
        self.assertEqual(self.count("SELECT count(*) FROM part"), len(self.lines))
        self.assertEqual(
            self.count("SELECT count(DISTINCT (line ->> 'file') || '/' || (line ->> 'index'))"
                " FROM part"),
            len(self.lines),
        )
        self.assertEqual(
            self.count("SELECT count(*) FROM part WHERE line ->> 'parent' IS NULL"),
            len(self.documents),
        )
        self.assertEqual(
            self.count("SELECT sum(line ->> 'child_count') FROM part"),
            len(self.lines) - len(self.documents),
        )
        self.assertEqual(
            self.count("SELECT count(*) FROM part, json_each(line, '$.fields')"), len(fields)
        )
        self.assertEqual(
            self.count(
                "SELECT count(*) FROM part, json_each(line, '$.fields') AS field,"
                " json_each(field.value, '$.params')"
            ),
            len(params),
        )
        self.assertEqual(
            self.count("SELECT sum(line ->> '$.body.length') FROM part"),
            sum(line["body"]["length"] for line in self.lines),
        )
        print(
            f"{self.rules}: {len(self.files)} files, {len(self.documents)} messages,"
            f" {len(self.lines)} entities,"
            f" {len(fields)} fields,"
            f" {len(params)} parameters,"
            f" {sum(len(line['not_utf8']) for line in self.lines)} values not UTF-8"
        )


class Classic(Standard):
    """Every file that is a message by the classic rules."""

    rules = "classic"

    def test_has_messages(self):
        self.assertGreater(len(self.documents), len(self.files) // 2)


if __name__ == "__main__":
    if FOLDER is None or not os.path.isdir(FOLDER):
        print("skipped: MAILSTRUCTURE_CORPUS names no folder of messages")
        sys.exit(77)
    unittest.main()
