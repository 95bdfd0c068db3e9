"""What `mailstructure scan` prints.

The tool is the first argument of each test that uses this; the rest are unittest's.
"""

import json
import pathlib
import subprocess
import sys

TOP = pathlib.Path(__file__).resolve().parent.parent.parent
TOOL = pathlib.Path(
    sys.argv.pop(1) if len(sys.argv) > 1 else TOP / "build/dev/tools/mailstructure").resolve()
# Before a message in an mbox.
SEPARATOR = b"From ada@mail.example Mon Mar  3 09:15:00 2025\n"


def run(*arguments, given=None):
    """The output and the exit status. What is given is standard input."""
    source = {"stdin": subprocess.DEVNULL} if given is None else {"input": given}
    done = subprocess.run([TOOL, "scan", *arguments], stdout=subprocess.PIPE,
                          stderr=subprocess.PIPE, check=False, **source)
    return done.stdout, done.returncode


def rows_of(output):
    """The rows in output that must be UTF-8."""
    text = output.decode("utf-8", errors="strict")
    assert text == "" or text.endswith("\n"), "the last row does not end"
    return [json.loads(line) for line in text.split("\n")[:-1]]


def rows(*arguments, given=None):
    """The rows of all kinds, in their order."""
    return rows_of(run(*arguments, given=given)[0])


def of_kind(kind, all_rows):
    """Those rows that are of one kind."""
    return [row for row in all_rows if row["kind"] == kind]
