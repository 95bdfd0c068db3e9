"""Runs `mailstructure report` and reads its page, for the tests.

The tool is the first argument of each test that uses this; the rest are unittest's.
"""

import pathlib
import subprocess
import sys
import xml.etree.ElementTree

TOP = pathlib.Path(__file__).resolve().parent.parent.parent
for folder in ("map", "page", "queries"):
    sys.path.insert(0, str(TOP / "tests" / folder))

import queries  # noqa: E402
from safe_document import SVG, XHTML  # noqa: E402

TOOL = queries.TOOL.resolve()


def scan(folder, *arguments):
    """Runs scan in the folder. Faults in the mail are expected."""
    done = subprocess.run([TOOL, "scan", "--hash=parts", *arguments], cwd=folder,
                          stderr=subprocess.DEVNULL, check=False)
    assert done.returncode in (0, 1)


def report(file, data=None):
    """The page about the file. The tool must succeed."""
    done = subprocess.run([TOOL, "report", file], input=data, capture_output=True, check=False)
    assert done.returncode == 0 and done.stderr == b"", done.stderr
    return done.stdout


def number(text):
    """1234 for "1,234" """
    return int(text.replace(",", ""))


class Page:
    """What the page says, without its markup."""

    def __init__(self, document):
        self.root = xml.etree.ElementTree.fromstring(document.decode())
        self.text = "".join(self.root.itertext())

    def table(self, kind):
        """The texts of the cells of that table, row by row, without the head."""
        for table in self.root.iter(XHTML + "table"):
            if kind in table.get("class").split():
                return [["".join(cell.itertext()) for cell in row]
                        for body in table.iter(XHTML + "tbody") for row in body]
        return []

    def figures(self):
        """The figures at the beginning, by what they count."""
        (items,) = (part for part in self.root.iter(XHTML + "ul")
                    if part.get("class") == "figures")
        return {"".join(item.itertext())[len(item[0].text):]: item[0].text for item in items}

    def boxes(self, section):
        """The areas of the treemap in that section, by what their titles begin with."""
        areas = {}
        for drawing in self.root.iter(SVG + "svg"):
            if drawing.get("aria-labelledby") == section:
                for box in drawing.findall(SVG + "svg"):
                    name = box.find(SVG + "title").text.rsplit(": ", 1)[0]
                    areas[name] = float(box.get("width")) * float(box.get("height"))
        return areas

    def bars(self):
        """The messages of the months that are drawn."""
        titles = [title.text for title in self.root.iter(SVG + "title")]
        return {title[:7]: number(title[8:].split()[0]) for title in titles
                if title.endswith((" message", " messages"))}

    def commands(self):
        """The commands that extract attachments."""
        return [code.text for table in self.root.iter(XHTML + "table")
                if "attachments" in table.get("class") for code in table.iter(XHTML + "code")]

    def places(self, name):
        """The places under the heading of that name."""
        for section in self.root.iter(XHTML + "section"):
            children = list(section)
            for index, child in enumerate(children):
                if child.tag == XHTML + "h3" and child.text == name:
                    return ["".join(item.itertext()) for item in children[index + 2]]
        return []
