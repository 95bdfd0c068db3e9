#!/usr/bin/env python3
"""Holds the index against its schema in doc/, against the files, and against what the command part
writes of the same messages.

tests/extract/index_test.py TOOL
"""

import hashlib
import io
import json
import pathlib
import re
import subprocess
import tarfile
import tempfile
import unittest

import jsonschema

from extracted import contents_of, message, pile_of, rows_in, run
from scanned import TOOL, TOP, of_kind, rows_of

SCHEMA = json.loads((TOP / "doc/extract.schema.json").read_text())
ROW = jsonschema.Draft202012Validator(SCHEMA)
SAMPLES = sorted(path for path in (TOP / "tests/data").rglob("*") if path.is_file())
ATTACHED = b"Content-Disposition: attachment; filename="
HOSTILE = [
    message((ATTACHED + b"../../outside.pdf", b"one"), (ATTACHED + b'"/etc/passwd"', b"two"),
            (b"Content-Type: ../x; name=..", b"three"), (ATTACHED + b"\xe4\x00\x1b.txt", b"four")),
    message((ATTACHED + b"a.bin", b"!!! no base64\n"), encoding=b"base64\nX: y"),
    b"Content-Type: a/b\nContent-Transfer-Encoding: base64\n\n!!! no base64\n",
    b"Content-Type: a/b\nContent-Transfer-Encoding: \xf8bit\n\nas it is\n",
    b"Content-Type: message/rfc822\n",
    b"MIME-Version: 1.0\nContent-Type: message/rfc822\n\n" * 120 + b"Subject: innermost\n\nx\n",
]
PLACE = ("source", "member", "message")


class Index(unittest.TestCase):
    """The rows of attachments, and the files that they name."""

    def setUp(self):
        folder = tempfile.TemporaryDirectory()
        self.addCleanup(folder.cleanup)
        self.top = pathlib.Path(folder.name)
        self.folder = self.top / "out"

    def extract(self, *arguments, given=None):
        """Extracts, and checks what holds of any source. Returns the rows."""
        done = run("-o", self.folder, *arguments, given=given)
        rows = rows_in(self.folder)
        contents = contents_of(self.folder)
        attachments = of_kind("attachment", rows)
        for row in rows:
            ROW.validate(row)
        for row in attachments:
            content = contents[row["file"]]
            self.assertEqual(row["decoded_size"], len(content))
            self.assertEqual(row["decoded_sha256"], hashlib.sha256(content).hexdigest())
        self.assertEqual({row["file"] for row in attachments}, set(contents))
        self.assertEqual(len({row["decoded_sha256"] for row in attachments}), len(contents))
        has_errors = any(row["level"] == "error" for row in of_kind("fault", rows))
        self.assertEqual(done.returncode, int(has_errors))
        totals = dict(re.findall(r"^(.*?)  +(\d+)$", done.stdout.decode(), re.MULTILINE))
        self.assertEqual(int(totals["attachments"]), len(attachments))
        self.assertEqual(int(totals["new files"]), len(contents))
        self.assertEqual(int(totals["new bytes"]), sum(map(len, contents.values())))
        return rows

    def check_places(self, rows):
        """Checks that the command part writes the same bytes from the place that a row names."""
        taken = 0
        for row in of_kind("attachment", rows):
            address = row["source"] + (f"::{row['member']}" if row["member"] else "")
            if row["section"] is None or row["decode_status"] == "unknown-encoding":
                continue
            part = [TOOL, "part", "--decode=lenient", row["section"],
                    f"{address}@{row['message']}"]
            done = subprocess.run(part, stdout=subprocess.PIPE, stderr=subprocess.PIPE, check=True)
            self.assertEqual(done.stdout, (self.folder / row["file"]).read_bytes())
            self.assertEqual(done.stderr == b"", row["decode_status"] == "ok")
            taken += 1
        return taken

    def test_of_samples(self):
        for rules in ("standard", "classic"):
            rows = self.extract(f"--rules={rules}", TOP / "tests/data/messages")
            (self.folder / "index.ndjson").rename(self.top / rules)
            for path in contents_of(self.folder):
                (self.folder / path).unlink()
        self.assertGreater(len(rows), 10)

    def test_names_places_that_the_command_part_knows(self):
        pile = self.top / "pile"
        pile.write_bytes(pile_of(HOSTILE))
        with tarfile.open(self.top / "packed.tgz", "w:gz") as archive:
            archive.add(pile, "inner/pile")
            archive.add(TOP / "tests/data/messages/mixed-with-attachment.eml", "one")
        rows = self.extract(pile, self.top / "packed.tgz")
        self.assertGreater(self.check_places(rows), 12)
        statuses = {row["decode_status"] for row in of_kind("attachment", rows)}
        self.assertEqual(statuses, {"ok", "damaged", "unknown-encoding"})
        codes = {row["code"] for row in of_kind("fault", rows)}
        self.assertEqual(codes, {"damaged-attachment", "unknown-encoding"})

    def test_has_what_the_command_part_calls_attachments(self):
        """The same sections, types and sizes, in the same order."""
        compared = 0
        own = []
        for number, text in enumerate(HOSTILE):
            own.append(self.top / str(number))
            own[-1].write_bytes(text)
        for path in SAMPLES + own:
            for rules in ("standard", "classic"):
                saved = subprocess.run(
                    [TOOL, "part", "--all", f"--rules={rules}", "-o", self.top / "saved",
                     path], stdout=subprocess.PIPE, stderr=subprocess.PIPE, check=False)
                if saved.returncode != 0 or path.read_bytes().startswith(b"From "):
                    continue # damaged, or no message
                wanted = [line.split("\t")[:3] for line in saved.stdout.decode().splitlines()]
                index = run("-o", self.folder, "--index=-", "--one", f"--rules={rules}", path)
                found = [[row["section"] or "...", f"{row['type']}/{row['subtype']}",
                          str(row["decoded_size"])] for row in rows_of(index.stdout)]
                self.assertEqual(found, wanted, path.name)
                compared += len(wanted)
        self.assertGreater(compared, 10)

    def test_tells_what_the_scan_tells(self):
        """The hash and the status of decoding are those of the row of the entity."""
        pile = self.top / "pile"
        pile.write_bytes(pile_of(HOSTILE))
        scanned = subprocess.run([TOOL, "scan", "--hash=parts", pile], check=True,
                                 stdout=subprocess.PIPE).stdout
        entities = {tuple(row[name] for name in (*PLACE, "section")): row
                    for row in of_kind("entity", rows_of(scanned))}
        compared = 0
        for row in of_kind("attachment", self.extract(pile)):
            entity = entities[tuple(row[name] for name in (*PLACE, "section"))]
            for name in ("type", "subtype", "filename", "disposition"):
                self.assertEqual(row[name], entity[name])
            if entity.get("decoded_sha256") is None: # an inner node, or an unknown encoding
                continue
            for name in ("decoded_sha256", "decoded_size", "decode_status"):
                self.assertEqual(row[name], entity[name])
            compared += 1
        self.assertGreater(compared, 5)

    def test_does_not_depend_on_the_number_of_threads(self):
        pile = self.top / "pile"
        pile.write_bytes(pile_of([message((ATTACHED + b"%d.csv" % (number % 50),
                                           b"%d," % (number % 700) * 3000))
                                  for number in range(900)] + HOSTILE))
        indexes = []
        for threads in ("1", "2", "7"):
            out = self.top / threads
            indexes.append(run("--index=-", f"--threads={threads}", "-o", out, pile).stdout)
            contents = contents_of(out)
            self.assertEqual(len(contents), 700 + len(HOSTILE) + 2)
        self.assertGreater(len(rows_of(indexes[0])), 900)
        self.assertEqual(indexes, indexes[:1] * 3)

    def test_has_faults_in_their_places(self):
        """In the order of the input, before what they are about."""
        broken = b"Subject: a\rb\n" + message((ATTACHED + b"a", b"x"))
        whole = message((ATTACHED + b"b", b"y"))
        damaged = message((ATTACHED + b"c", b"!!!!\n"), encoding=b"7bit\nContent-Type: a/b")
        damaged = damaged.replace(b"7bit", b"base64")
        (self.top / "pile").write_bytes(pile_of([whole, broken, damaged, whole]))
        rows = self.extract("--rules=classic", self.top / "none", self.top / "pile")
        kinds = [row.get("code", row["kind"]) for row in rows]
        self.assertEqual(kinds, ["cannot-open", "attachment", "bad-message", "damaged-attachment",
                                 "attachment", "attachment"])
        pile = (self.top / "pile").read_bytes()
        self.assertEqual(rows[3]["byte"], pile.index(b"!!!!"))

    def test_of_messages_that_are_not_held_in_memory(self):
        large = bytes(range(256)) * (25 << 12) # more than 32 MiB in base64
        pile = pile_of([message((ATTACHED + b"a.txt", b"small")),
                        message((ATTACHED + b"b.txt", large), (ATTACHED + b"c.txt", b"after it")),
                        message((ATTACHED + b"d.txt", b"last"))])
        packed = io.BytesIO()
        with tarfile.open(fileobj=packed, mode="w") as archive:
            entry = tarfile.TarInfo("pile")
            entry.size = len(pile)
            archive.addfile(entry, io.BytesIO(pile))
        for given in (pile, packed.getvalue()):
            rows = self.extract("-", given=given)
            self.assertEqual([row["filename"] for row in rows],
                             ["a.txt", "b.txt", "c.txt", "d.txt"])
            self.assertEqual((self.folder / rows[1]["file"]).read_bytes(), large)
            self.folder = self.top / "packed"


class Schema(unittest.TestCase):
    """The schema is a valid one, and strict."""

    def test_is_strict(self):
        jsonschema.Draft202012Validator.check_schema(SCHEMA)
        with tempfile.TemporaryDirectory() as folder:
            given = pile_of(HOSTILE)
            rows = rows_of(run("-o", folder, "--index=-", given=given).stdout)
        self.assertEqual({row["kind"] for row in rows}, {"attachment", "fault"})
        for row in rows:
            ROW.validate(row)
            self.assertFalse(ROW.is_valid({**row, "surprise": 1}))
            for name in row:
                self.assertFalse(ROW.is_valid({key: row[key] for key in row if key != name}), name)
                self.assertFalse(ROW.is_valid({**row, name: ["x"]}), name)
        [first] = of_kind("attachment", rows)[:1]
        for name in ("../x", "ab/cd.pdf", first["file"] + "/x", "/" + first["file"]):
            self.assertFalse(ROW.is_valid({**first, "file": name}))


if __name__ == "__main__":
    unittest.main()
