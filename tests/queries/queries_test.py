#!/usr/bin/env python3
"""Holds doc/queries.md against the statements and their answers for the sample pile, and what
README.md shows of a scan.

tests/queries/queries_test.py TOOL [--update]

--update writes statements and answers into the document.
"""

import pathlib
import re
import shlex
import sqlite3
import subprocess
import sys
import tempfile
import unittest

import queries
import sample_pile

DOCUMENT = queries.TOP / "doc/queries.md"
# What stands after each of these in the document is written by a program, up to the next heading.
MARK = re.compile(r"^<!-- (\w+) -->\n\n(?:```.*?\n```\n\n)*", re.DOTALL | re.MULTILINE)


def filled(document, answers):
    """The document with the statements and answers that belong in it."""
    def block(match):
        name = match[1]
        if name == "duckdb":
            text = (queries.TOP / "doc/queries_duckdb.sql").read_text().split("\n\n", 1)[1]
            return f"<!-- duckdb -->\n\n```sql\n{text}```\n\n"
        answer = queries.text_of(*answers[name])
        return f"<!-- {name} -->\n\n```sql\n{queries.STATEMENTS[name]}\n```\n\n```\n{answer}```\n\n"
    return MARK.sub(block, document)


def answers_of_sample():
    with tempfile.TemporaryDirectory() as folder:
        queries.scan_sample(pathlib.Path(folder))
        return queries.answers(pathlib.Path(folder, "rows.sqlite"))


def run_command(command, folder):
    """Runs a line of shell, in which `mailstructure` is the tool."""
    tool = shlex.quote(str(queries.TOOL.resolve()))
    subprocess.run(["sh", "-c", f"mailstructure() {{ {tool} \"$@\"; }}; {command}"], cwd=folder,
                   check=True)


class Document(unittest.TestCase):
    """What the document shows."""

    maxDiff = None

    def test_shows_the_statements_and_their_answers(self):
        document = DOCUMENT.read_text()
        answers = answers_of_sample()
        self.assertGreaterEqual(len(answers), 10)
        self.assertEqual(sorted(MARK.findall(document)), sorted([*answers, "duckdb"]))
        for name, (_, rows) in answers.items():
            self.assertTrue(rows, f"the sample has nothing to show for {name}")
        self.assertEqual(document, filled(document, answers))

    def test_readme_shows_a_scan_and_an_answer(self):
        readme = (queries.TOP / "README.md").read_text()
        shown = re.search(
            r'^\$ mailstructure (scan .*?)\n.*?^\$ sqlite3 mail\.db "(.*?)"\n(.*?)^```$',
            readme, re.DOTALL | re.MULTILINE)
        with tempfile.TemporaryDirectory() as folder:
            sample_pile.write(pathlib.Path(folder, "pile"))
            done = subprocess.run([queries.TOOL.resolve(), *shlex.split(shown[1])], cwd=folder,
                                  stderr=subprocess.PIPE, check=False)
            self.assertIn(f"\n{done.stderr.decode()}$ sqlite3 ", readme)
            tables = sqlite3.connect(pathlib.Path(folder, "mail.db"))
            rows = tables.execute(shown[2]).fetchall()
            tables.close()
        self.assertEqual(shown[3], "".join("|".join(map(str, row)) + "\n" for row in rows))

    def test_extracts_by_its_commands(self):
        with tempfile.TemporaryDirectory() as name:
            folder = pathlib.Path(name, "it's a folder")
            folder.mkdir()
            queries.scan_sample(folder)
            (folder / "pile").rename(folder / "-it's a pile")
            tables = folder / "tables"
            subprocess.run([queries.TOOL.resolve(), "scan", "--sqlite", tables, "--",
                            "-it's a pile"], cwd=folder, stderr=subprocess.DEVNULL, check=False)
            (_, rows) = queries.answers(tables)["large_pdfs"]
            self.assertEqual(len(rows), 1)
            run_command(rows[0][1], folder)
            (extracted,) = folder.glob("*.pdf")
            self.assertEqual(extracted.read_bytes(), sample_pile.CATALOGUE_PDF)


if __name__ == "__main__":
    if "--update" in sys.argv:
        DOCUMENT.write_text(filled(DOCUMENT.read_text(), answers_of_sample()))
    else:
        unittest.main()
