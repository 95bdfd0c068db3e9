#!/usr/bin/env python3
"""What the documents of `mailstructure map` must be for any message: well-formed, closed to
scripts and to the network, small, and the same each time.

tests/map/documents_test.py TOOL
"""

import json
import os
import pathlib
import re
import subprocess
import sys
import tempfile
import unittest

TOP = pathlib.Path(__file__).resolve().parent.parent.parent
sys.path.insert(0, str(TOP / "tests/page"))

import hostile  # noqa: E402
import safe_document  # noqa: E402
from safe_document import SVG, XHTML  # noqa: E402

TOOL = pathlib.Path(
    sys.argv.pop(1) if len(sys.argv) > 1 else TOP / "build/dev/tools/mailstructure").resolve()
SAMPLES = sorted(path for path in (TOP / "tests/data").rglob("*") if path.suffix == ".eml")
MOST_BYTES = 1024 * 1024

# All that the documents are made of. No element here runs or loads anything.
ELEMENTS = {
    *(SVG + name for name in ("svg", "title", "style", "g", "rect", "path", "text", "a")),
    *(XHTML + name for name in (
        "html", "head", "meta", "title", "style", "body", "header", "main", "section", "div", "h1",
        "h2", "p", "wbr", "ul", "li", "span", "table", "caption", "thead", "tbody", "tr", "th",
        "td", "a")),
}
# All values of attributes are numbers, words of ours, and links within the document.
VALUES = {
    "href": r"#[befm]\d+|#map", "id": r"[befm]\d+|map|parts|findings",
    "class": r"k\d+|d\d|swatch k\d+|[a-z]+", "x": r"[\d.]+", "y": r"[\d.]+",
    "width": r"[\d.]+", "height": r"[\d.]+", "viewBox": r"0 0 \d+ \d+",
    "scope": "row|col", "role": "group|region", "aria-labelledby": "map|parts|findings",
    "d": r"M[\d.]+ [\d.]+[hlvz\d. -]+",
    "aria-hidden": "true", "tabindex": "0", **safe_document.HEAD_VALUES,
}


def run(*arguments, data=b""):
    """What the tool writes to standard output. It must succeed."""
    done = subprocess.run([TOOL, "map", *arguments], input=data, capture_output=True, check=False)
    assert done.returncode == 0 and done.stderr == b"", done.stderr
    return done.stdout


def maps_of(data):
    """The maps of a message in both forms, by both sets of rules where these accept it."""
    for form in ("svg", "html"):
        yield form, run(f"--format={form}", data=data)
    done = subprocess.run([TOOL, "map", "--rules=classic", "--format=html"], input=data,
                          capture_output=True, check=False)
    if done.returncode == 0:
        yield "html", done.stdout


class Documents(unittest.TestCase):
    def check(self, form, document):
        """The document is well-formed, and holds nothing that loads or runs anything."""
        self.assertLess(len(document), MOST_BYTES)
        root = safe_document.check(self, document, ELEMENTS, VALUES)
        if form == "html":
            safe_document.check_page(self, document, ELEMENTS)
        else:
            self.assertNotIn("href", document.decode().split("</title>")[0])
        return root

    def test_hostile_text(self):
        for name, text in hostile.TEXTS.items():
            for form, document in maps_of(hostile.message(text)):
                with self.subTest(text=name, form=form):
                    self.check(form, document)
                    self.assertNotIn(b"<script", document)

    def test_hostile_text_is_shown(self):
        page = run("--format=html", data=hostile.message(hostile.SCRIPT))
        root = self.check("html", page)
        values = [cell.text for cell in root.iter(XHTML + "td")]
        self.assertIn("<script>alert(1)</script>", values)
        names = [row.text for row in root.iter(XHTML + "th")]
        self.assertIn("X-<script>alert1<script>", names)

    def test_hostile_file_names(self):
        with tempfile.TemporaryDirectory() as folder:
            for index, text in enumerate(hostile.TEXTS.values()):
                name = text.replace(b"/", b"").replace(b"\0", b"")[:200]
                path = os.path.join(os.fsencode(folder), name)
                with open(path, "wb") as file:
                    file.write(b"Subject: a\n\nb\n")
                for form in ("svg", "html"):
                    with self.subTest(text=index, form=form):
                        self.check(form, run(f"--format={form}", path))

    def test_samples(self):
        self.assertGreater(len(SAMPLES), 5)
        for path in SAMPLES:
            for form, document in maps_of(path.read_bytes()):
                with self.subTest(path=path.name, form=form):
                    self.check(form, document)

    def test_edges(self):
        for data in (b"", b"\n", b"x", b"a: b", b"\0", b"From a\n", b"--\n\n--\n"):
            for form, document in maps_of(data):
                with self.subTest(data=data, form=form):
                    self.check(form, document)

    def test_findings_are_those_of_check(self):
        for path in SAMPLES + [None]:
            data = path.read_bytes() if path else hostile.message(hostile.TEXTS["all"])
            printed = subprocess.run([TOOL, "check", "--json"], input=data, capture_output=True,
                                     check=False).stdout.splitlines()
            expected = sorted((found["level"], found["name"], found["offset"], found["line"])
                              for found in map(json.loads, printed)
                              if found["name"] != "rule-sets-differ")
            root = self.check("html", run("--format=html", data=data))
            found = []
            for row in root.iter(XHTML + "tr"):
                if row.get("id", "").startswith("m"):
                    name, level, _, line, place = ("".join(cell.itertext()) for cell in row)
                    found.append((level, name, int(place.split("-")[0]),
                                  int(line.replace(",", ""))))
            with self.subTest(path=path):
                self.assertEqual(sorted(found), expected)
                order = [level for level, _, _, _ in found]
                self.assertEqual(order, sorted(order, key=("danger", "fault", "note").index))
        self.assertGreater(len(found), 5)

    def test_many_findings(self):
        data = b"From: a\n" + b"X: \0\n" * 200000 + b"\n"
        for form in ("svg", "html"):
            root = self.check(form, run(f"--format={form}", data=data))
            marks = [group for group in root.iter(SVG + "g") if group.get("class") == "danger"]
            titles = "".join(group[0].text for group in marks)
            count = sum(int(number.replace(",", ""))
                        for number in re.findall(r"([\d,]+) findings", titles))
            self.assertGreaterEqual(count, 200000)
        self.assertRegex("".join(root.itertext()), "The first 200 of 200,00[0-9] findings")

    def test_same_bytes_twice(self):
        for form in ("svg", "html"):
            arguments = (f"--format={form}", SAMPLES[0])
            self.assertEqual(run(*arguments), run(*arguments))

    def test_a_million_parts(self):
        data = (b"Content-Type: multipart/mixed; boundary=b\n\n" + b"--b\n\nx\n" * 1000000
                + b"--b--\n")
        for form in ("svg", "html"):
            root = self.check(form, run(f"--format={form}", data=data))
            text = "".join(root.itertext())
            self.assertIn("3,000,002 pieces and 1,000,000 parts", text)
            self.assertIn("1,000,001 entities", text)
        self.assertIn("The first 1,000 of 1,000,001 entities.", text)

    def test_many_parts_of_a_pixel(self):
        """Of these, none is too small to be drawn, but all of them would take too much room."""
        part = b"--b\nContent-Type: image/png\n\n" + b"x" * 40 + b"\n"
        data = b"Content-Type: multipart/mixed; boundary=b\n\n" + part * 13000 + b"--b--\n"
        for form, document in maps_of(data):
            self.check(form, document)
            self.assertIn(b"folded into one box", document)

    def test_many_hostile_parts(self):
        """Every text takes as many bytes as it can."""
        part = (b"--b\nContent-Type: " + b"&" * 70 + b"/" + b"<" * 70 + b'; name="' + b"&" * 300
                + b'"\n' + b"X-" + b"&" * 200 + b": " + b"&" * 1000 + b"\n\nx\n")
        data = b"Content-Type: multipart/mixed; boundary=b\n\n" + part * 3000 + b"--b--\n"
        for form, document in maps_of(data):
            self.check(form, document)

    def test_a_hundred_thousand_levels(self):
        data = b"".join(b"Content-Type: multipart/mixed; boundary=b%d\n\n--b%d\n" % (n, n)
                        for n in range(100000)) + b"\nhi\n"
        for form in ("svg", "html"):
            document = run(f"--format={form}", data=data)
            self.check(form, document)
            self.assertIn(b"99,992 entities lie deeper than level 8", document)


if __name__ == "__main__":
    unittest.main()
