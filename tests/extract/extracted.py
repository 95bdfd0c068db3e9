"""What `mailstructure extract` writes.

The tool is the first argument of each test that uses this; the rest are unittest's.
"""

import base64
import hashlib
import pathlib
import subprocess
import sys

sys.path.insert(0, str(pathlib.Path(__file__).resolve().parent.parent / "scan"))
from scanned import SEPARATOR, TOOL, rows_of  # pylint: disable=wrong-import-position


def run(*arguments, given=None, **more):
    """A finished call of the command."""
    source = {"stdin": subprocess.DEVNULL} if given is None else {"input": given}
    return subprocess.run([TOOL, "extract", *arguments], stdout=subprocess.PIPE,
                          stderr=subprocess.PIPE, check=False, **source, **more)


def rows_in(folder):
    """The rows of the index in the folder."""
    return rows_of((folder / "index.ndjson").read_bytes())


def contents_of(folder):
    """The bytes of all files in the folder but the index, by their names."""
    return {str(path.relative_to(folder)): path.read_bytes()
            for path in folder.rglob("*") if path.is_file() and path.name != "index.ndjson"}


def name_for(content, extension):
    """The name of the file for a content."""
    digest = hashlib.sha256(content).hexdigest()
    return f"{digest[:2]}/{digest}.{extension}"


def message(*attachments, encoding=b"base64"):
    """A message with attachments: pairs of the fields that describe one, and its bytes."""
    text = b"Subject: a\nContent-Type: multipart/mixed; boundary=b\n\n--b\n\nsome text\n"
    for fields, content in attachments:
        encoded = base64.encodebytes(content) if encoding == b"base64" else content
        text += b"--b\n" + fields + b"\nContent-Transfer-Encoding: " + encoding + b"\n\n" + encoded
        text += b"" if encoded.endswith(b"\n") else b"\n"
    return text + b"--b--\n"


def pile_of(messages):
    """An mbox of these messages."""
    return b"".join(SEPARATOR + each + b"\n" for each in messages)
