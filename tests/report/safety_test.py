#!/usr/bin/env python3
"""A report is closed to scripts and to the network, and small, whatever is in the rows; and a file
that means harm gives an error or a page, and does nothing else.

tests/report/safety_test.py TOOL
"""

import json
import os
import pathlib
import random
import re
import sqlite3
import subprocess
import sys
import tempfile
import unittest

from report_page import TOOL, queries, report, scan

import hostile
import safe_document
from safe_document import SVG, XHTML

MOST_BYTES = 2 * 1024 * 1024

ELEMENTS = {
    *(SVG + name for name in ("svg", "title", "g", "rect", "path", "text")),
    *(XHTML + name for name in (
        "html", "head", "meta", "title", "style", "body", "header", "nav", "main", "section", "div",
        "h1", "h2", "h3", "p", "b", "ul", "li", "span", "code", "details", "summary", "table",
        "caption", "thead", "tbody", "tr", "th", "td", "a")),
}
SECTIONS = "types|domains|years|months|largest|duplicates|findings|faults"
VALUES = {
    "href": rf"#(?:[df]\d+|{SECTIONS})", "id": rf"[df]\d+|{SECTIONS}",
    "class": r"[a-z]+\d?(?: [a-z]+\d?)?", "x": r"[\d.]+", "y": r"[\d.]+",
    "width": r"[\d.]+|100%", "height": r"[\d.]+|100%", "viewBox": r"0 0 [\d.]+ [\d.]+",
    "scope": "row|col|rowgroup", "colspan": "[34]", "role": "img", "aria-labelledby": SECTIONS,
    "d": r"M[\d.]+ [\d.]+[hHvV\d.]+", **safe_document.HEAD_VALUES,
}


class Safety(unittest.TestCase):
    def setUp(self):
        self.temporary = tempfile.TemporaryDirectory()
        self.folder = pathlib.Path(self.temporary.name)

    def tearDown(self):
        self.temporary.cleanup()

    def check(self, document):
        self.assertLess(len(document), MOST_BYTES)
        root = safe_document.check(self, document, ELEMENTS, VALUES)
        safe_document.check_page(self, document, ELEMENTS)
        self.assertNotIn(b"<script", document)
        return root

    def test_of_hostile_mail(self):
        for name, text in hostile.TEXTS.items():
            file = os.path.join(os.fsencode(self.folder),
                                text.replace(b"/", b"").replace(b"\0", b"")[:150] + name.encode())
            with open(file, "wb") as output:
                output.write(hostile.mailbox(text))
            with self.subTest(text=name):
                scan(self.folder, "--sqlite=rows", "--", os.path.basename(file))
                page = self.check(report(self.folder / "rows"))
                headings = [heading.text for heading in page.iter(XHTML + "h3")]
                self.assertIn("blank-before-colon", headings)
                (self.folder / "rows").unlink()

    def hostile_rows(self, change):
        """The lines of a scan of the sample in which each text is changed."""
        queries.scan_sample(self.folder)
        known = ("kind", "decoded_sha256", "sha256", "body_sha256", "mih")
        for line in (self.folder / "rows.ndjson").read_text().splitlines():
            row = json.loads(line)
            for name, value in row.items():
                if isinstance(value, str) and name not in known:
                    row[name] = change(name, value)
            yield json.dumps(row)

    def test_of_hostile_rows(self):
        """Also of texts that no scan would write: levels, names of faults, dates."""
        rows = list(self.hostile_rows(lambda name, value: f"{value}\0TEXT"))
        for name, text in hostile.TEXTS.items():
            written = json.dumps(text.decode("utf-8", errors="replace"))[1:-1]
            data = "\n".join(rows).replace("\\u0000TEXT", written) + "\n"
            with self.subTest(text=name):
                self.check(report("-", data=data.encode()))

    def tables(self):
        """The tables of a small pile."""
        (self.folder / "mbox").write_bytes(hostile.mailbox(b"text") * 3)
        scan(self.folder, "--sqlite=rows", "mbox")
        return sqlite3.connect(self.folder / "rows")

    def test_of_as_much_as_there_can_be(self):
        """Every text takes as many bytes as it can, and there is more of everything than fits."""
        tables = self.tables()
        many = ("WITH RECURSIVE n(i) AS (SELECT 1 UNION ALL SELECT i + 1 FROM n WHERE i < 3000), "
                "long(text) AS (SELECT replace(hex(zeroblob(900)), '0', '&')) ")
        tables.execute("DELETE FROM entity")
        tables.execute("DELETE FROM message")
        tables.execute("UPDATE source SET source = replace(hex(zeroblob(495)), '0', '&')")
        tables.execute(many + "INSERT INTO message SELECT i, 1, i, i, i, 'standard', text, text, "
                       "i || '@' || text || i, text, "
                       "printf('%04d-%02d-01T00:00:00Z', i, i % 12 + 1), text, text, "
                       "1, 1, NULL, NULL, NULL, 0, 1, 1, 1 FROM n, long")
        tables.execute(many + "INSERT INTO entity SELECT i, 0, NULL, 0, i, text || i, text, text, "
                       "text, text, text, 0, 0, 0, 0, 0, 0, 0, i, 0, 0, 0, 0, 0, 'x', i % 1500, "
                       "i, 'ok' FROM n, long")
        tables.execute(many + "INSERT INTO finding SELECT i, i, 'danger', i % 300 || text, i "
                       "FROM n, long")
        tables.execute(many + "INSERT INTO fault SELECT 1, i, i, 'error', i % 300 || text, text "
                       "FROM n, long")
        tables.commit()
        tables.close()
        page = self.check(report(self.folder / "rows"))
        text = "".join(page.itertext())
        for extent in ("The first 15 of 3,000 media types", "The first 20 of 3,000 attachments",
                       "The first 15 of 3,000 years", "The first 1,200 of 3,000 months",
                       "The first 100 of 30. names", "The first 100 of 30. kinds"):
            self.assertTrue(re.search(extent, text), extent)

    def test_of_numbers_of_any_size(self):
        for number in ("9223372036854775807", "-5", "1e300", "'text'", "x'00ff'", "NULL"):
            tables = self.tables()
            tables.execute(f"UPDATE OR IGNORE message SET length = {number}"
                           if number != "NULL" else "UPDATE message SET date = NULL")
            for change in ("entity SET body_length", "entity SET decoded_size",
                           "finding SET times"):
                tables.execute(f"UPDATE OR IGNORE {change} = {number}")
            tables.commit()
            tables.close()
            with self.subTest(number=number):
                self.page_or_error(self.folder / "rows")
            (self.folder / "rows").unlink()

    def page_or_error(self, file):
        """Either there is a page, or one line says what is wrong."""
        done = subprocess.run([TOOL, "report", file], capture_output=True, check=False)
        self.assertIn(done.returncode, (0, 1))
        if done.returncode == 0:
            self.check(done.stdout)
        else:
            self.assertEqual((done.stdout, done.stderr.count(b"\n")), (b"", 1))
        return done.returncode

    def test_runs_nothing_that_is_in_the_file(self):
        tables = self.tables()
        tables.execute("CREATE VIEW harm AS SELECT load_extension('/tmp/none')")
        tables.execute("CREATE TRIGGER more AFTER INSERT ON message "
                       "BEGIN SELECT writefile('x', 'y'); END")
        tables.commit()
        tables.close()
        before = (self.folder / "rows").read_bytes()
        self.check(report(self.folder / "rows"))
        self.assertEqual((self.folder / "rows").read_bytes(), before)
        self.assertEqual({path.name for path in self.folder.iterdir()}, {"mbox", "rows"})

    def test_of_damaged_tables(self):
        self.tables().close()
        whole = (self.folder / "rows").read_bytes()
        damaged = self.folder / "damaged"
        chance = random.Random(1)
        statuses = set()
        for count in range(150):
            data = bytearray(whole)
            if count % 5 == 0:
                del data[chance.randrange(len(data)):]
            for _ in range(chance.choice((1, 4, 40))):
                if data:
                    place = chance.randrange(len(data) if count % 2 else min(2000, len(data)))
                    data[place] = chance.choice((0, 1, 127, 255, chance.randrange(256)))
            damaged.write_bytes(data)
            with self.subTest(count=count):
                statuses.add(self.page_or_error(damaged))
        self.assertEqual(statuses, {0, 1})


if __name__ == "__main__":
    unittest.main(argv=sys.argv)
