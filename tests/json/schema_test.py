#!/usr/bin/env python3
"""Compares the JSON output with its schema in doc/, and its forms with each other.

tests/json/schema_test.py TOOL
"""

import copy
import json
import os
import pathlib
import tempfile
import unittest

import jsonschema

import printed

SCHEMA = json.loads((printed.TOP / "doc/json.schema.json").read_text())
SAMPLES = sorted(path for path in (printed.TOP / "tests/data").rglob("*") if path.is_file())

HOSTILE = {
    "empty": b"",
    "one_byte": b"x",
    "no_header": b"\njust text\n",
    "latin_1": b"Subject: Gr\xfc\xdfe\nContent-Type: te\xffxt/pl\xfeain; "
    b"name=\xe4.txt; charset=\xe9\n"
    b"Content-Transfer-Encoding: \xf8bit\n"
    b"Content-Disposition: \xe0; x\nContent-ID: <\xe1>\nMessage-ID: <\xe2>\nDate: \xe3\n"
    b"From: \xe5 <\xe6@mail.example>\nTo: \xe7\nCc: a, \xe8\n\nx\n",
    "lone_surrogate": b"Subject: \xed\xa0\x80\nX: \xed\xbf\xbf\n\n",
    "overlong": b"Subject: \xc0\xaf\nX: \xe0\x80\x80\nY: \xf0\x80\x80\x80\n\n",
    "too_high": b"Subject: \xf4\x90\x80\x80\nX: \xff\xfe\n\n",
    "cut_short": b"A: \xc3\nB: \xe2\x82\nC: \xf0\x9f\xaa\n\n",
    "nul_at_line_ends": b"Subject: a\0\nX: \0\nContent-Type: text/plain\0\n\n\0\n",
    "nul_at_the_end": b"Subject: a\r\n\r\nb\0",
    "replacement_character_of_its_own": b"Subject: \xef\xbf\xbd\n\n",
    "controls": b"Subject: \x1b[2J\x07\x7f\xc2\x9b31m \xe2\x80\xae \xe2\x80\xa8\n\n",
    "quotes": b'Subject: "\\"\\u0041\nContent-Type: text/plain; name="a\\"b"\n\n',
    "no_type": b"Content-Type: /\nContent-Disposition: attachment; filename=\n\nx\n",
    "mbox": b"From ben@mail.example Mon Mar  3 09:15:00 2025\nSubject: a\n\nb\n",
    "multipart_without_parts": b"Content-Type: multipart/mixed; boundary=b\n\n--b--\n",
    "message_without_a_message": b"Content-Type: message/rfc822\n",
    "many_parameters": b"Content-Type: text/plain" + b"; a=b" * 1000 + b"\n\n",
    "twenty_levels": b"MIME-Version: 1.0\nContent-Type: message/rfc822\n\n" * 20
    + b"Subject: innermost\n\nx\n",
}


def validator_of(definition):
    """The validator of one of the definitions in the schema."""
    return jsonschema.Draft202012Validator(
        {"$defs": SCHEMA["$defs"], "$ref": f"#/$defs/{definition}"}
    )


DOCUMENT = validator_of("document")
LINE = validator_of("line")
WHOLE = jsonschema.Draft202012Validator(SCHEMA)


def objects_in(value):
    """All JSON objects in a value, itself included."""
    if isinstance(value, dict):
        yield value
    members = value.values() if isinstance(value, dict) else value
    for each in members if isinstance(value, (dict, list)) else ():
        yield from objects_in(each)


class Output(unittest.TestCase):
    """The forms of every sample that is a message, and of hostile messages."""

    def check(self, path):
        """Checks the forms for one file. Returns whether it is a message by the classic rules, too;
        by the standard rules it must be one."""
        self.assertTrue(self.check_by("standard", path))
        return self.check_by("classic", path)

    def check_by(self, rules, path):
        """Checks the forms for one file. Returns whether the file is a message by these rules."""
        line_form, status = printed.run("--rules", rules, path)
        flat_form, flat_status = printed.run("--rules", rules, "--flat", path)
        pretty_form, pretty_status = printed.run("--rules", rules, "--pretty", path)
        self.assertEqual({status, flat_status, pretty_status}, {status})
        if status != 0:
            self.assertEqual(line_form + flat_form + pretty_form, b"")
            return False
        [document] = printed.lines_of(line_form)
        self.assertEqual(document["rules"], rules)
        DOCUMENT.validate(document)
        WHOLE.validate(document)
        self.assertEqual(json.loads(pretty_form), document)
        lines = printed.lines_of(flat_form)
        for line in lines:
            LINE.validate(line)
            printed.check_line(line, pathlib.Path(os.fsdecode(path)).read_bytes())
        WHOLE.validate(lines[-1])
        self.assertEqual(lines, printed.flattened(document))
        self.assertEqual(printed.exact_values(document)["/file"], os.fsencode(path))
        self.assertEqual(document["size"], pathlib.Path(os.fsdecode(path)).stat().st_size)
        return True

    def test_of_samples(self):
        messages = 0
        for path in SAMPLES:
            with self.subTest(path.name):
                messages += self.check(path)
        self.assertGreater(messages, 4)

    def test_of_hostile_messages(self):
        with tempfile.TemporaryDirectory() as folder:
            for name, message in HOSTILE.items():
                with self.subTest(name):
                    path = pathlib.Path(folder, name)
                    path.write_bytes(message)
                    self.assertTrue(self.check(path))

    def test_of_files_with_names_that_are_not_utf8(self):
        with tempfile.TemporaryDirectory() as folder:
            for name in (b"\xff.eml", b"\xc3\xbc.eml", b"\xed\xa0\x80", b'"\n\\'):
                path = os.path.join(os.fsencode(folder), name)
                with open(path, "wb") as file:
                    file.write(HOSTILE["latin_1"])
                with self.subTest(name):
                    self.assertTrue(self.check(path))

    def test_keeps_the_bytes_of_values(self):
        with tempfile.TemporaryDirectory() as folder:
            path = pathlib.Path(folder, "message")
            path.write_bytes(HOSTILE["latin_1"])
            [line] = printed.lines_of(printed.run("--flat", path)[0])
        exact = printed.exact_values(line)
        self.assertEqual(line["fields"][0]["value"], "Gr\ufffd\ufffde")
        self.assertEqual(exact["/fields/0/value"], b"Gr\xfc\xdfe")
        self.assertEqual(exact["/type"], b"te\xffxt")
        self.assertEqual(exact["/subtype"], b"pl\xfeain")
        self.assertEqual(exact["/filename"], b"\xe4.txt")
        self.assertEqual(exact["/charset"], b"\xe9")
        self.assertEqual(exact["/transfer_encoding"], b"\xf8bit")
        self.assertEqual(exact["/fields/1/params/0/value"], b"\xe4.txt")
        self.assertEqual(exact["/subject"], b"Gr\xfc\xdfe")
        self.assertEqual(exact["/disposition"], b"\xe0")
        self.assertEqual(exact["/content_id"], b"\xe1")
        self.assertEqual(exact["/message_id"], b"\xe2")
        self.assertEqual(exact["/date"], b"\xe3")
        self.assertEqual(exact["/from/0/name"], b"\xe5")
        self.assertEqual(exact["/from/0/address"], b"\xe6@mail.example")
        self.assertEqual(exact["/to/0/address"], b"\xe7")
        self.assertEqual(exact["/cc/1/address"], b"\xe8")


class Schema(unittest.TestCase):
    """The schema is a valid one, and refuses what is not as described."""

    @classmethod
    def setUpClass(cls):
        sample = printed.TOP / "tests/data/messages/mixed-with-attachment.eml"
        [cls.document] = printed.lines_of(printed.run(sample)[0])
        cls.lines = printed.lines_of(printed.run("--flat", sample)[0])

    def refuses_changes(self, validator, whole):
        """No object is valid when it lacks a member or has another one."""
        for number, original in enumerate(objects_in(whole)):
            for name in [*original, None]:
                changed = copy.deepcopy(whole)
                target = list(objects_in(changed))[number]
                if name is None:
                    target["surprise"] = 1
                else:
                    del target[name]
                self.assertFalse(validator.is_valid(changed), f"{name} in {original}")

    def test_is_a_schema(self):
        jsonschema.Draft202012Validator.check_schema(SCHEMA)

    def test_of_documents_is_strict(self):
        self.refuses_changes(DOCUMENT, self.document)

    def test_of_lines_is_strict(self):
        for line in self.lines:
            self.refuses_changes(LINE, line)

    def test_tells_the_forms_apart(self):
        self.assertFalse(DOCUMENT.is_valid(self.lines[0]))
        self.assertFalse(LINE.is_valid(self.document))

    def test_refuses_bad_values(self):
        for name, value in (
            ("rules", "strict"),
            ("section", "0"),
            ("section", ""),
            ("depth", -1),
            ("index", 1),
            ("charset", ""),
            ("lines", 2**32),
            ("decoded_size", -1),
            ("damaged", None),
            ("subject", ""),
            ("date_utc", "2025-03-04 17:40:12"),
            ("from", [{"name": "Ada"}]),
            ("to", ["ada@mail.example"]),
            ("not_utf8", [{"member": "/from/name", "base64": "AAAA"}]),
            ("not_utf8", [{"member": "/children/0/type", "base64": "AAAA"}]),
            ("not_utf8", [{"member": "/type", "base64": "AAA"}]),
        ):
            with self.subTest(name):
                self.assertFalse(LINE.is_valid({**self.lines[0], name: value}))


if __name__ == "__main__":
    unittest.main()
