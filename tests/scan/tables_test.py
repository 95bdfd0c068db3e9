#!/usr/bin/env python3
"""Compares the tables of `mailstructure scan --sqlite` with the rows, and with their documents.

tests/scan/tables_test.py TOOL
"""

import os
import pathlib
import signal
import sqlite3
import subprocess
import tarfile
import tempfile
import unittest

import scanned

SAMPLES = scanned.TOP / "tests/data/messages"
SCHEMA = (scanned.TOP / "doc/scan.sql").read_text()
PILE = b"".join(
    b"From ada@mail.example Mon Mar  3 09:15:00 2025\nSubject: n\xc3\xb6 %d \xff\n"
    b"Message-ID: <%d@mail.example>\nFrom: a\0b <ada@mail.example>\n\nFrom here\n\n" % (n, n % 3)
    for n in range(50))
RANGES = ("header", "mime", "body", "contents", "epilogue")
RENAMED = {"from": "from_text", "to": "to_text", "index": "number"}


def flattened(row):
    """The row as it is in its table, without the members that name its message or source."""
    columns = {}
    for name, value in row.items():
        if name in RANGES:
            columns[f"{name}_offset"] = value["offset"]
            columns[f"{name}_length"] = value["length"]
        elif isinstance(value, str):
            columns[RENAMED.get(name, name)] = value.replace("\0", "\ufffd")
        else:
            columns[RENAMED.get(name, name)] = value
    return columns


class Tables(unittest.TestCase):
    """The file that is written."""

    def setUp(self):
        folder = tempfile.TemporaryDirectory()
        self.addCleanup(folder.cleanup)
        self.folder = pathlib.Path(folder.name)
        self.pile = self.folder / "pile"
        self.pile.write_bytes(PILE)
        self.packed = self.folder / "tar"
        with tarfile.open(self.packed, "w:gz") as archive:
            archive.add(self.pile, "a/pile")
            archive.add(SAMPLES / "plain.eml", "b")
        self.sources = [SAMPLES, "no-such-file", self.pile, self.packed]

    def written(self, *options):
        """The tables, and the exit status."""
        file = self.folder / "tables"
        file.unlink(missing_ok=True)
        output, status = scanned.run("--sqlite", file, *options, *self.sources)
        self.assertEqual(output, b"")
        self.assertEqual(sorted(os.listdir(self.folder)), ["pile", "tables", "tar"])
        table = sqlite3.connect(file)
        self.addCleanup(table.close)
        table.row_factory = sqlite3.Row
        return table, status

    def select(self, table, query):
        """The rows in the result of a query, as dictionaries."""
        return [dict(row) for row in table.execute(query)]

    def check(self, *options):
        """Compares all tables with the rows."""
        rows = scanned.rows(*options, *self.sources)
        table, status = self.written(*options)
        self.assertEqual(status, 1) # there is no such file
        wanted = {}
        for row in rows:
            wanted.setdefault(row["kind"], []).append(flattened(row))
        queries = {
            "source": "SELECT *, 'source' AS kind FROM source ORDER BY id",
            "message": "SELECT message.*, source, member, 'message' AS kind FROM message"
                       " JOIN source ON source.id = source_id ORDER BY message.id",
            "fault": "SELECT fault.*, source, member, 'fault' AS kind FROM fault"
                     " JOIN source ON source.id = source_id ORDER BY fault.rowid",
            "entity": "SELECT entity.*, source, member, message, 'entity' AS kind FROM entity"
                      " JOIN message ON message.id = of_message"
                      " JOIN source ON source.id = source_id ORDER BY entity.rowid",
            "finding": "SELECT finding.*, source, member, message, 'finding' AS kind FROM finding"
                       " JOIN message ON message.id = of_message"
                       " JOIN source ON source.id = source_id ORDER BY finding.rowid",
        }
        for kind, query in queries.items():
            found = self.select(table, query)
            self.assertGreater(len(found), 1)
            self.assertEqual(len(found), len(wanted[kind]))
            for number, (ours, theirs) in enumerate(zip(found, wanted[kind])):
                if "id" in ours:
                    self.assertEqual(ours.pop("id"), number + 1)
                ours.pop("source_id", None)
                ours.pop("of_message", None)
                digests = ("sha256", "decoded_sha256", "decoded_size", "decode_status")
                for name in digests if kind == "entity" else ():
                    theirs.setdefault(name, None)
                self.assertEqual(ours, theirs)
        return table

    def test_hold_what_the_rows_say(self):
        self.check()
        self.check("--hash=parts", "--rules=classic", "--threads=1")

    def test_are_those_of_the_document(self):
        documented = sqlite3.connect(":memory:")
        self.addCleanup(documented.close)
        documented.executescript(SCHEMA)
        query = "SELECT type, name, sql FROM sqlite_master ORDER BY name"
        table, _ = self.written()
        self.assertEqual([tuple(row) for row in table.execute(query)],
                         documented.execute(query).fetchall())
        self.assertEqual(table.execute("PRAGMA integrity_check").fetchone()[0], "ok")
        self.assertEqual(table.execute("PRAGMA foreign_key_check").fetchall(), [])
        self.assertEqual(table.execute("PRAGMA user_version").fetchone()[0], 1)

    def test_do_not_depend_on_the_threads(self):
        self.pile.write_bytes(PILE * 400)
        dumps = []
        for threads in (1, 4):
            table, _ = self.written(f"--threads={threads}")
            dumps.append(list(table.iterdump()))
        self.assertEqual(dumps[0], dumps[1])
        self.assertGreater(len(dumps[0]), 50 * 400)

    def test_leave_nothing_when_a_signal_comes(self):
        waiting = subprocess.Popen([scanned.TOOL, "scan", "--sqlite", self.folder / "tables", "-"],
                                   stdin=subprocess.PIPE)
        while len(os.listdir(self.folder)) < 3:
            self.assertIsNone(waiting.poll())
        self.assertNotIn("tables", os.listdir(self.folder))
        waiting.send_signal(signal.SIGTERM)
        waiting.communicate()
        self.assertEqual(waiting.returncode, -signal.SIGTERM)
        self.assertEqual(sorted(os.listdir(self.folder)), ["pile", "tar"])


if __name__ == "__main__":
    unittest.main()
