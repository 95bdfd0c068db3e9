#!/usr/bin/env python3
"""Holds the rows against their schema in doc/, against the bytes of the mail, and against what
`mailstructure json` says of the same message.

tests/scan/schema_test.py TOOL
"""

import copy
import hashlib
import json
import pathlib
import re
import subprocess
import tempfile
import unittest

import jsonschema

import scanned
from scanned import SEPARATOR

SCHEMA = json.loads((scanned.TOP / "doc/scan.schema.json").read_text())
SAMPLES = sorted(path for path in (scanned.TOP / "tests/data").rglob("*") if path.is_file())
ROW = jsonschema.Draft202012Validator(SCHEMA)

HOSTILE = [
    b"Subject: Gr\xfc\xdfe \xed\xa0\x80\nFrom: \xe5 <\xe6@mail.example>, b\nDate: \xe3\n"
    b"Content-Type: te\xffxt/pl\xfeain; name=\xe4.txt; charset=\xe9\nMessage-ID: <\xe2>\n"
    b"Content-Transfer-Encoding: \xf8bit\nContent-Disposition: \xe0; x\n\nx\n",
    b"Subject: \x1b[2J\x07\x7f\xc2\x9b31m \xe2\x80\xae \xe2\x80\xa8 \"\\\"\0\n\n",
    b"Date: Tue, 4 Mar 99999 18:40:12 +0100\nContent-Type: multipart/mixed; boundary=b\n\n--b--\n",
    b"Content-Type: message/rfc822\n",
    b"Content-Transfer-Encoding: base64\n\n!!! no base64\n",
    b"MIME-Version: 1.0\nContent-Type: message/rfc822\n\n" * 120 + b"Subject: innermost\n\nx\n",
    b"a: b\n\nFrom here on\n",
    b"Message-ID: <CALckR-a8UDkRjO4xJyjd_s0GPxQWw@mail.gmail.com>\n\n>From here\n>>From there\n",
]


def pile_of(messages):
    """An mbox of these messages."""
    return b"".join(SEPARATOR + message + b"\n" for message in messages)


class Documents(unittest.TestCase):
    """What the document says of the values, beside the schema and the sources."""

    def test_have_the_codes_of_all_faults(self):
        table = re.findall(r"^\| (`.*`) \| (?:error|note) \| .* \|$",
                           (scanned.TOP / "doc/scan.md").read_text(), re.MULTILINE)
        documented = re.findall(r"`([a-z-]+)`", " ".join(table))
        allowed = SCHEMA["$defs"]["fault"]["properties"]["code"]["enum"]
        self.assertEqual(sorted(documented), sorted(allowed))
        sources = "".join(path.read_text() for path in (scanned.TOP / "tools/scan").rglob("*.cpp"))
        self.assertEqual([code for code in allowed if f'"{code}"' not in sources], [])


class Rows(unittest.TestCase):
    """The rows of the samples, and of an mbox of hostile messages."""

    def check(self, path, *options):
        """Checks all rows of a source."""
        pile = path.read_bytes()
        rows = scanned.rows("--hash=parts", *options, path)
        for row in rows:
            ROW.validate(row)
        self.assertEqual(rows[-1]["kind"], "source")
        self.assertEqual(rows[-1]["size"], len(pile))
        self.assertEqual(rows[-1]["modified_ns"], path.stat().st_mtime_ns)
        messages = scanned.of_kind("message", rows)
        self.assertEqual(rows[-1]["messages"], len(messages))
        self.assertEqual(rows[-1]["faults"], len(scanned.of_kind("fault", rows)))
        entities = scanned.of_kind("entity", rows)
        for message in messages:
            begin = message["message"]
            text = pile[begin : begin + message["length"]]
            self.assertEqual(message["sha256"], hashlib.sha256(text).hexdigest())
            self.check_facts_of_bytes(message, text)
            own = [row for row in entities if row["message"] == begin]
            self.assertEqual([row["index"] for row in own], list(range(message["entities"])))
            if own and message["rules"] == "standard":
                body = text[own[0]["header"]["offset"] + own[0]["header"]["length"] :]
                self.assertEqual(message["body_sha256"], hashlib.sha256(body).hexdigest())
            self.assertEqual(message["depth"], max((row["depth"] for row in own), default=0))
            for row in own:
                self.check_entity(row, own, text)
        return rows

    def check_facts_of_bytes(self, message, text):
        """Checks what the row of a message says without its tree."""
        body = re.sub(rb"\A(?:[^\n]*[^\r\n][^\n]*(?:\n|\Z))*(?:\r*\n|\r*\Z)", b"", text)
        self.assertEqual(message["body_sha256"], hashlib.sha256(body).hexdigest())
        quoted = re.findall(rb"^>+From ", text, re.MULTILINE)
        self.assertEqual(message["quoted_from_lines"], len(quoted))
        name = message["message_id"]
        self.assertEqual(message["mih"] is None, name is None)
        if name and "\ufffd" not in name: # the bytes are those of the message
            self.assertEqual(message["mih"], hashlib.md5(f"<{name}>".encode()).hexdigest())

    def check_entity(self, row, siblings, text):
        """Checks what the row of an entity says about the text of the message."""
        for name in ("header", "mime", "body", "contents", "epilogue"):
            self.assertLessEqual(row[name]["offset"] + row[name]["length"], len(text))
        if row["parent"] is None:
            self.assertEqual((row["index"], row["depth"]), (0, 0))
        else:
            self.assertEqual(row["depth"], siblings[row["parent"]]["depth"] + 1)
        is_leaf = not any(other["parent"] == row["index"] for other in siblings)
        self.assertEqual("sha256" in row, is_leaf)

    def check_digests(self, path, rules, rows):
        """Checks the digests of all bodies in a file of one message against what the command part
        writes. Returns the transfer encodings."""
        encodings = set()
        for row in scanned.of_kind("entity", rows):
            if "sha256" not in row:
                continue
            part = [scanned.TOOL, "part", f"--rules={rules}", row["section"], path]
            body = subprocess.run(part, check=True, stdout=subprocess.PIPE).stdout
            self.assertEqual(row["sha256"], hashlib.sha256(body).hexdigest())
            decoding = subprocess.run([*part, "--decode=lenient"], check=False,
                                      stdout=subprocess.PIPE, stderr=subprocess.PIPE)
            unknown = row["decode_status"] == "unknown-encoding"
            self.assertEqual(unknown, decoding.returncode != 0)
            if not unknown:
                decoded = hashlib.sha256(decoding.stdout).hexdigest()
                self.assertEqual((row["decoded_sha256"], row["decoded_size"]),
                                 (decoded, len(decoding.stdout)))
            self.assertEqual(row["decode_status"] == "ok", decoding.stderr == b"")
            encodings.add((row["transfer_encoding"] or "").lower())
        return encodings

    def test_of_samples(self):
        encodings = set()
        for path in SAMPLES:
            for rules in ("standard", "classic"):
                with self.subTest(path.name, rules=rules):
                    rows = self.check(path, f"--rules={rules}")
                    if not path.read_bytes().startswith(b"From "):
                        encodings |= self.check_digests(path, rules, rows)
        self.assertLessEqual({"", "base64", "quoted-printable"}, encodings)

    def test_of_hostile_messages(self):
        with tempfile.TemporaryDirectory() as folder:
            path = pathlib.Path(folder, "pile")
            path.write_bytes(pile_of(HOSTILE))
            rows = self.check(path)
        self.assertEqual(rows[-1]["messages"], len(HOSTILE))
        self.assertIn("1de319c276884bd0c9e2f1621ada26cc", [row.get("mih") for row in rows])
        statuses = {row.get("decode_status") for row in rows}
        self.assertLessEqual({"ok", "damaged", "unknown-encoding"}, statuses)

    def check_findings(self, rows, begin, text):
        """Checks the counted findings of one message against what the command check prints."""
        told = subprocess.run([scanned.TOOL, "check", "--json", "-"], check=False, input=text,
                              stdout=subprocess.PIPE).stdout
        wanted = {}
        for found in scanned.rows_of(told):
            if found["name"] != "rule-sets-differ":
                wanted.setdefault((found["level"], found["name"]), []).append(found["offset"])
        own = [row for row in scanned.of_kind("finding", rows) if row["message"] == begin]
        counted = {(row["level"], row["name"]): (row["times"], row["byte"]) for row in own}
        self.assertEqual(len(counted), len(own))
        self.assertEqual(counted, {key: (len(places), begin + min(places))
                                   for key, places in wanted.items()})
        [message] = [row for row in scanned.of_kind("message", rows) if row["message"] == begin]
        for level in ("danger", "fault", "note"):
            times = sum(len(places) for key, places in wanted.items() if key[0] == level)
            self.assertEqual(message[f"findings_{level}"], times)
        return {level for level, _ in wanted}

    def test_count_what_the_command_check_finds(self):
        """The rules for the tree make no difference."""
        levels = set()
        with tempfile.TemporaryDirectory() as folder:
            path = pathlib.Path(folder, "pile")
            path.write_bytes(pile_of(HOSTILE + [path.read_bytes() for path in SAMPLES]))
            for rules in ("standard", "classic"):
                rows = scanned.rows("--mbox=any", f"--rules={rules}", path)
                pile = path.read_bytes()
                for message in scanned.of_kind("message", rows):
                    begin = message["message"]
                    text = pile[begin : begin + message["length"]]
                    levels |= self.check_findings(rows, begin, text)
        self.assertEqual(levels, {"danger", "fault", "note"})

    def test_count_no_findings_where_nobody_looks(self):
        sample = scanned.TOP / "tests/data/messages/stray-cr.eml"
        for options, is_counted in (([], True), (["--findings=none"], False),
                                    (["--max-size=9"], False)):
            rows = scanned.rows(*options, sample)
            [message] = scanned.of_kind("message", rows)
            self.assertEqual(scanned.of_kind("finding", rows) != [], is_counted)
            for level in ("danger", "fault", "note"):
                self.assertEqual(message[f"findings_{level}"] is not None, is_counted)

    def test_say_the_same_of_a_message_that_is_not_held_in_memory(self):
        """Its digests and its quoted lines."""
        text = b"Message-ID: <x@y>\n\n" + b">From here\nand so on\n" * (33 << 20 >> 4)
        [message] = scanned.of_kind("message", scanned.rows("-", given=text))
        self.assertEqual(message["sha256"], hashlib.sha256(text).hexdigest())
        self.check_facts_of_bytes(message, text)
        self.assertIsNone(message["findings_danger"])

    def test_hash_nothing_where_nothing_is_asked_for(self):
        sample = scanned.TOP / "tests/data/messages/plain.eml"
        [message] = scanned.of_kind("message", scanned.rows("--hash=none", sample))
        self.assertEqual([message[name] for name in ("sha256", "body_sha256", "mih")], [None] * 3)

    def test_say_what_the_command_json_says(self):
        """For each sample, entity by entity."""
        names = {"section": "section", "type": "type", "subtype": "subtype", "charset": "charset",
                 "transfer_encoding": "transfer_encoding", "filename": "filename",
                 "disposition": "disposition", "multipart": "multipart",
                 "message": "message_within", "lines": "lines", "depth": "depth",
                 "parent": "parent"}
        ranges = ("header", "mime", "body", "contents", "epilogue")
        for path in SAMPLES:
            rows = scanned.rows("--one", path)
            told = subprocess.run([scanned.TOOL, "json", "--flat", path], check=True,
                                  stdout=subprocess.PIPE).stdout
            lines = scanned.rows_of(told)
            [message] = scanned.of_kind("message", rows)
            if path.read_bytes().startswith(b"From "):
                continue # the other command passes over the separator
            with self.subTest(path.name):
                root = lines[0]
                self.assertEqual((message["subject"], message["date"], message["message_id"]),
                                 (root["subject"], root["date_utc"], root["message_id"]))
                entities = scanned.of_kind("entity", rows)
                self.assertEqual(len(entities), len(lines))
                for entity, line in zip(entities, lines):
                    for theirs, ours in names.items():
                        self.assertEqual(entity[ours], line[theirs], ours)
                    for each in ranges:
                        self.assertEqual(entity[each], line[each], each)


class Schema(unittest.TestCase):
    """The schema is a valid one, and refuses what is not as described."""

    @classmethod
    def setUpClass(cls):
        sample = scanned.TOP / "tests/data/messages/mixed-with-attachment.eml"
        broken = scanned.TOP / "tests/data/messages/stray-cr.eml"
        cls.rows = scanned.rows("--hash=parts", "no-such-file", sample, broken)

    def test_is_a_schema(self):
        jsonschema.Draft202012Validator.check_schema(SCHEMA)

    def test_is_strict(self):
        self.assertEqual({row["kind"] for row in self.rows},
                         {"message", "entity", "finding", "fault", "source"})
        for row in self.rows:
            ROW.validate(row)
            self.assertFalse(ROW.is_valid({**row, "surprise": 1}))
            for name in row:
                changed = copy.deepcopy(row)
                del changed[name]
                self.assertFalse(ROW.is_valid(changed), f"{row['kind']} without {name}")

    def test_refuses_bad_values(self):
        first = {row["kind"]: row for row in reversed(self.rows)}
        for kind, name, value in (
            ("message", "date", "2025-03-04 17:40:12"),
            ("message", "sha256", "ab"),
            ("message", "length", -1),
            ("message", "rules", "strict"),
            ("entity", "header", {"offset": 0, "length": 2**32}),
            ("entity", "decode_status", "good"),
            ("message", "mih", "1de3"),
            ("message", "findings_note", -1),
            ("finding", "level", "error"),
            ("finding", "name", "bare cr"),
            ("finding", "times", 0),
            ("fault", "code", "bad"),
            ("fault", "level", "warning"),
            ("source", "format", "text"),
        ):
            with self.subTest(kind=kind, name=name):
                self.assertFalse(ROW.is_valid({**first[kind], name: value}))


if __name__ == "__main__":
    unittest.main()
