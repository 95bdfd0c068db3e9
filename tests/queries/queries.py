"""The statements of doc/queries.sql, the sample pile, and the tables of its scan.

The tool is the first argument of each test that uses this; the rest are unittest's.
"""

import pathlib
import re
import sqlite3
import subprocess
import sys

import sample_pile

TOP = pathlib.Path(__file__).resolve().parent.parent.parent
TOOL = pathlib.Path(sys.argv.pop(1) if len(sys.argv) > 1 else TOP / "build/dev/tools/mailstructure")

STATEMENTS = dict(re.findall(r"^-- @(\w+)\n(.*?;)\n", (TOP / "doc/queries.sql").read_text(),
                             re.DOTALL | re.MULTILINE))


def scan_sample(folder):
    """Writes the pile, and its rows in both forms, into the folder."""
    sample_pile.write(folder / "pile")
    for output in ("--sqlite=rows.sqlite", "--output=rows.ndjson"):
        subprocess.run([TOOL.resolve(), "scan", "--hash=parts", output, "pile"], cwd=folder,
                       stderr=subprocess.DEVNULL, check=False)


def answers(file):
    """For each statement, the names of the columns and the rows."""
    tables = sqlite3.connect(file)
    found = {}
    for name, statement in STATEMENTS.items():
        result = tables.execute(statement)
        found[name] = ([column[0] for column in result.description], result.fetchall())
    tables.close()
    return found


def text_of(columns, rows):
    """An answer as the document shows it."""
    lines = [columns] + [["" if value is None else str(value) for value in row] for row in rows]
    return "".join(" | ".join(line) + "\n" for line in lines)
