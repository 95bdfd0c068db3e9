#!/usr/bin/env python3
"""The numbers of a report are those of the statements in doc/queries.sql, its commands extract what
they say, and it is the same for both forms of a scan.

tests/report/numbers_test.py TOOL LIBRARY     LIBRARY is made of tests/scan/failing_calls.c
"""

import base64
import hashlib
import pathlib
import random
import shlex
import signal
import sqlite3
import subprocess
import sys
import tempfile
import unittest

LIBRARY = pathlib.Path(sys.argv.pop(2)).resolve()

# pylint: disable=wrong-import-position # it takes the tool from the arguments
from report_page import Page, TOOL, number, queries, report, scan

MOST_GROUPS = 15
MOST_ATTACHMENTS = 20
MOST_PLACES = 10


def messages_of_many_kinds():
    """An mbox with more types, domains, years, months and attachments than a page lists."""
    chance = random.Random(1)
    for count in range(400):
        body = base64.encodebytes(chance.randbytes(chance.randrange(100, 5000))).decode()
        copy = "X" if count % 3 else body
        yield (f"From a Mon Jan  1 00:00:00 2024\nFrom: a@d{count % 70}.example\n"
               f"Date: 3 {('Jan', 'Feb', 'Jul')[count % 3]} {1970 + count % 60} 00:00:00 +0000\n"
               f"Subject: number {count}\nContent-Type : multipart/mixed; boundary=x\n\n"
               f"--x\nContent-Type: application/type-{count % 50}; name=file-{count}\n"
               f"Content-Transfer-Encoding: base64\n\n{body}\n"
               f"--x\nContent-Type: image/png; name=copy-{count}\n\n{copy}\n--x--\n\n")


class Numbers(unittest.TestCase):
    def setUp(self):
        self.temporary = tempfile.TemporaryDirectory()
        self.folder = pathlib.Path(self.temporary.name)

    def tearDown(self):
        self.temporary.cleanup()

    def check_ranking(self, page, kind, rows):
        """The table has the first groups and the sum of the others; the drawing, their shares."""
        sum_of_bytes = sum(row[2] for row in rows)
        found = page.table(kind)
        listed = [(name, number(count), number(size)) for name, count, size, _ in found]
        nameless = {"types": "(no type)", "domains": "(no sender)", "years": "(no date)"}[kind]
        expected = [(name or nameless, count, size) for name, count, size in rows]
        if len(rows) > MOST_GROUPS:
            rest = rows[MOST_GROUPS:]
            self.assertTrue(listed[-1][0].startswith(f"{len(rest)} other "), listed[-1])
            self.assertEqual(listed[-1][1:], (sum(row[1] for row in rest),
                                              sum(row[2] for row in rest)))
            listed.pop()
            expected = expected[:MOST_GROUPS]
        self.assertEqual(listed, expected)
        boxes = page.boxes(kind)
        whole = 600 * 340
        self.assertAlmostEqual(sum(boxes.values()) / whole, 1, delta=0.01)
        for name, _, size in expected[:5]:
            self.assertAlmostEqual(boxes.get(name, 0) / whole, size / sum_of_bytes, delta=0.01)

    def check_attachments(self, page, answers):
        rows = answers["largest"][1]
        expected = [(name or "(no file name)", kind, size) for size, kind, name, *_ in rows]
        found = [(row[0], row[1], number(row[2]))
                 for row in page.table("largest") if len(row) == 3]
        self.assertEqual(found, expected[:MOST_ATTACHMENTS])
        self.assertIn(f"{len(rows)} attachments.", page.text)
        rows = answers["duplicates"][1]
        expected = [(name or "(no file name)", kind, times, spare)
                    for times, spare, kind, name, *_ in rows]
        found = [(row[0], row[1], number(row[2]), number(row[3]))
                 for row in page.table("duplicates") if len(row) == 4]
        self.assertEqual(found, expected[:MOST_ATTACHMENTS])
        places = [(row[-2], row[-1]) for name in ("largest", "duplicates")
                  for row in answers[name][1][:MOST_ATTACHMENTS]]
        self.assertEqual([tuple(shlex.split(command)[3:]) for command in page.commands()], places)

    def check_troubles(self, page, answers):
        found = {(row[1], row[0], number(row[3]), number(row[4]))
                 for row in page.table("findings")}
        self.assertEqual(found, set(answers["findings"][1]))
        found = {(row[1], row[0], number(row[3]), row[2]) for row in page.table("faults")}
        self.assertEqual(found, set(answers["faults"][1]))
        for name in {row[0] for row in answers["dangers"][1]}:
            expected = [f"{place} byte {byte:,}: {subject}"
                        for danger, place, byte, subject in answers["dangers"][1]
                        if danger == name]
            self.assertEqual(page.places(name), expected[:MOST_PLACES])
        for name in {row[1] for row in answers["fault_places"][1]}:
            expected = [f"{place} byte {byte:,}"
                        for _, code, byte, place in answers["fault_places"][1] if code == name]
            self.assertEqual(page.places(name), expected[:MOST_PLACES])

    def check_page(self, page, file):
        answers = queries.answers(file)
        ((files, messages, size, entities, first, last),) = answers["totals"][1]
        figures = page.figures()
        self.assertEqual([number(figures.get(several) or figures[one])
                          for one, several in (("file", "files"), ("message", "messages"),
                                               ("byte", "bytes"), ("entity", "entities"))],
                         [files, messages, size, entities])
        self.assertEqual([figures["first date"], figures["last date"]], [first[:10], last[:10]])
        dangers = sum(row[3] for row in answers["findings"][1] if row[0] == "danger")
        errors = sum(row[2] for row in answers["faults"][1] if row[0] == "error")
        self.assertEqual([number(figures.get("dangers") or figures["danger"]),
                          number(figures.get("errors") or figures["error"])], [dangers, errors])
        for kind in ("types", "domains", "years"):
            self.check_ranking(page, kind, answers[kind][1])
        months = [(month, count, size) for month, count, size in answers["months"][1] if month]
        self.assertEqual([(row[0], number(row[1]), number(row[2]))
                          for row in page.table("months")], months)
        drawn = page.bars()
        self.assertEqual(drawn, {month: count for month, count, _ in months if month in drawn})
        self.check_attachments(page, answers)
        self.check_troubles(page, answers)
        return answers

    def test_are_those_of_the_statements(self):
        queries.scan_sample(self.folder)
        self.check_page(Page(report(self.folder / "rows.sqlite")), self.folder / "rows.sqlite")

    def test_are_those_of_the_statements_for_what_is_not_listed(self):
        (self.folder / "many.mbox").write_text("".join(messages_of_many_kinds()))
        scan(self.folder, "--sqlite=rows.sqlite", "many.mbox")
        page = Page(report(self.folder / "rows.sqlite"))
        answers = self.check_page(page, self.folder / "rows.sqlite")
        for name in ("types", "domains", "years", "largest", "dangers"):
            self.assertGreater(len(answers[name][1]), 25, name)
        drawn = sum(page.bars().values())
        self.assertGreater(drawn, 100)
        self.assertIn(f"{400 - drawn} messages not drawn", page.text)

    def test_are_the_same_for_lines_of_json(self):
        queries.scan_sample(self.folder)
        tables = report(self.folder / "rows.sqlite")
        lines = self.folder / "rows.ndjson"
        self.assertEqual(report(lines).replace(b"rows.ndjson", b"rows.sqlite"), tables)
        piped = report("-", data=lines.read_bytes())
        self.assertEqual(piped.replace(b"standard input", b"rows.sqlite"), tables)

    def test_say_what_the_scan_did_not_look_for(self):
        (self.folder / "mbox").write_text("".join(list(messages_of_many_kinds())[:5]))
        subprocess.run([TOOL, "scan", "--hash=none", "--findings=none", "--sqlite=rows", "mbox"],
                       cwd=self.folder, check=True)
        page = Page(report(self.folder / "rows"))
        self.assertIn("it was not run with --hash=parts", page.text)
        self.assertIn("The scan did not look for them.", page.text)
        self.assertEqual(page.table("duplicates") + page.table("findings"), [])
        self.assertNotIn("dangers", page.figures())

    def test_of_no_mail_are_zero(self):
        page = Page(report("-", data=b""))
        self.assertEqual(set(page.figures().values()), {"0"})
        self.assertEqual(page.commands(), [])
        self.assertNotIn("did not look", page.text)


class Commands(unittest.TestCase):
    """The commands on the page, as people paste them into a shell."""

    NAMES = ("plain", "it's", "two  blanks", "$(touch no) `touch no`", "a\nb", "-rf", "bell\x07",
             "back\\slash", "\u202ereversed", "gr\u00fc\u00dfe", "a\"b", "*", "~", "#", "-@0")

    def test_extract_the_attachments(self):
        digests = set()
        with tempfile.TemporaryDirectory() as name:
            folder = pathlib.Path(name)
            (folder / "pile").mkdir()
            for index, file in enumerate(self.NAMES):
                body = f"body {index}".encode()
                digests.add(hashlib.sha256(body).hexdigest())
                (folder / "pile" / file).write_bytes(
                    b"Content-Type: a/b; name=x\nContent-Transfer-Encoding: base64\n\n"
                    + base64.b64encode(body) + b"\n")
            # Names of their own, and names within a folder.
            pile = folder / "pile"
            for sources, here in ((["pile"], folder), (list(self.NAMES), pile)):
                subprocess.run([TOOL, "scan", "--hash=parts", f"--sqlite={folder}/rows", "--",
                                *sources], cwd=here, check=True)
                commands = Page(report(folder / "rows")).commands()
                self.assertEqual(len(commands), len(self.NAMES))
                self.run_all(commands, here, digests)
                (folder / "rows").unlink()
            self.assertEqual(len(list(pile.iterdir())), len(self.NAMES))

    def run_all(self, commands, folder, digests):
        found = set()
        for command in commands:
            self.assertNotIn("\n", command)
            script = f"mailstructure() {{ {shlex.quote(str(TOOL))} \"$@\"; }}\n{command}"
            done = subprocess.run(["bash", "-c", script], cwd=folder, capture_output=True,
                                  check=True)
            found.add(hashlib.sha256(done.stdout).hexdigest())
        self.assertEqual(found, digests)

    def test_are_missing_where_there_is_none(self):
        message = b"Content-Type: a/b; name=x\n\nbody\n"
        done = subprocess.run([TOOL, "scan", "-"], input=message, capture_output=True, check=True)
        page = Page(report("-", data=done.stdout))
        self.assertEqual(page.commands(), [])
        self.assertIn("from standard input", page.text)


class Refusals(unittest.TestCase):
    """Files that are no scan's: each is an error with a reason, and no page is written."""

    def setUp(self):
        self.temporary = tempfile.TemporaryDirectory()
        self.folder = pathlib.Path(self.temporary.name)
        (self.folder / "mbox").write_text("".join(list(messages_of_many_kinds())[:9]))
        self.rows = self.folder / "rows.sqlite"
        for output in ("--sqlite=rows.sqlite", "--output=rows.ndjson"):
            scan(self.folder, output, "mbox")

    def tearDown(self):
        self.temporary.cleanup()

    def changed(self, *commands):
        tables = sqlite3.connect(self.rows)
        for command in commands:
            tables.execute(command)
        tables.commit()
        tables.close()
        return self.rows

    def refused(self, file, reason):
        before = {path: path.read_bytes() for path in self.folder.iterdir() if path.is_file()}
        done = subprocess.run([TOOL, "report", "-o", self.folder / "page.html", file],
                              capture_output=True, check=False, stdin=subprocess.DEVNULL)
        self.assertEqual((done.returncode, done.stdout), (1, b""))
        self.assertEqual(done.stderr.count(b"\n"), 1, done.stderr)
        self.assertIn(reason.encode(), done.stderr)
        self.assertEqual({path: path.read_bytes() for path in self.folder.iterdir()
                          if path.is_file()}, before)

    def test_of_other_files(self):
        text = self.folder / "text"
        text.write_text("Dear reader,\n")
        self.refused(text, "no rows of a scan")
        text.write_bytes(b"SQLite format 3\0" + b"x" * 5000)
        self.refused(text, "SQLite: file is not a database")
        self.refused(self.folder, "Is a directory")
        self.refused(self.folder / "none", "No such file")

    def test_of_lines_that_are_cut(self):
        lines = (self.folder / "rows.ndjson").read_bytes()
        cut = self.folder / "cut"
        cut.write_bytes(lines[:len(lines) // 2])
        self.refused(cut, "no rows of a scan")

    def test_of_other_tables(self):
        self.refused(self.changed("PRAGMA user_version = 77"), "not the tables of a scan")

    def test_of_a_missing_table(self):
        self.refused(self.changed("DROP TABLE finding"), "not the tables of a scan")

    def test_of_a_missing_column(self):
        self.refused(self.changed("ALTER TABLE message DROP COLUMN mih"),
                     "not the tables of a scan")

    def test_of_a_view_in_place_of_a_table(self):
        self.refused(self.changed("ALTER TABLE fault RENAME TO other",
                                  "CREATE VIEW fault AS SELECT * FROM other"),
                     "not the tables of a scan")

    def test_of_standard_input_that_is_no_stream_of_lines(self):
        with open(self.rows, "rb") as file:
            done = subprocess.run([TOOL, "report"], stdin=file, capture_output=True, check=False)
        self.assertEqual(done.returncode, 1)
        self.assertIn(b"has to be named", done.stderr)

    def test_leave_no_temporary_file(self):
        empty = self.folder / "temporary"
        empty.mkdir()
        for data in (b"{}\n", (self.folder / "rows.ndjson").read_bytes()):
            subprocess.run([TOOL, "report"], input=data, env={"TMPDIR": str(empty)},
                           capture_output=True, check=False)
            self.assertEqual(list(empty.iterdir()), [])
        done = subprocess.run([TOOL, "report"], input=data, env={"TMPDIR": str(empty / "none")},
                              capture_output=True, check=False)
        self.assertEqual(done.returncode, 1)
        self.assertIn(b"cannot write", done.stderr)

    def test_leave_no_temporary_file_when_a_signal_comes(self):
        """Before each call that changes a file, and before each that reads."""
        empty = self.folder / "temporary"
        empty.mkdir()
        for kind in ("change", "read"):
            ended = 0
            for count in range(1, 1000):
                log = self.folder / "log"
                log.unlink(missing_ok=True)
                done = subprocess.run(
                    [TOOL, "report", self.folder / "rows.ndjson"], capture_output=True, check=False,
                    env={"TMPDIR": str(empty), "LD_PRELOAD": str(LIBRARY),
                         "FAILING_CALL": f"term:{kind}:{count}", "FAILING_CALL_LOG": str(log)})
                self.assertEqual(list(empty.iterdir()), [], (kind, count))
                if log.exists() and int(log.read_text()) < count:
                    break
                self.assertEqual(done.returncode, -signal.SIGTERM)
                ended += 1
            self.assertGreater(ended, 1, kind)

    def test_reads_a_file_that_nobody_may_write(self):
        whole = report(self.rows)
        self.rows.chmod(0o400)
        self.folder.chmod(0o500)
        self.assertEqual(report(self.rows), whole)
        self.folder.chmod(0o700)


if __name__ == "__main__":
    unittest.main(argv=sys.argv)
