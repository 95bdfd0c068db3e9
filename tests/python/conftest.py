"""What the tests of the package for Python share."""

import json
import os
import pathlib
import subprocess

import pytest

TOP = pathlib.Path(__file__).resolve().parents[2]
SAMPLES = sorted(
    path
    for folder in ("tests/data/messages", "tests/data/regressions", "tests/examples/messages")
    for path in (TOP / folder).rglob("*")
    if path.is_file()
)

# Two parts, one of which is a message.
NESTED = b"""Subject: =?utf-8?q?outer_=C3=A4?=
To: ada@mail.example
Date: today
Content-Type: multipart/mixed; boundary=b

preamble
--b
Content-Type: TEXT/Html

one
--b
Content-Type: message/rfc822

Subject: inner

two
--b--
epilogue
"""

HOSTILE = {
    "empty": b"",
    "one_byte": b"x",
    "nul": b"\0",
    "every_byte": bytes(range(256)) * 20,
    "no_header": b"\njust text\n",
    "no_end_of_header": b"Subject: a\n" * 5,
    "latin_1": b"Subject: Gr\xfc\xdfe\nContent-Type: te\xffxt/pl\xfeain; name=\xe4; charset=\xe9\n"
    b"Content-Disposition: \xe0; x\nContent-ID: <\xe1>\nMessage-ID: <\xe2>\nDate: \xe3\n"
    b"From: \xe5 <\xe6@mail.example>\nTo: \xe7\nCc: a, \xe8\n\nx\n",
    "lone_surrogate": b"Subject: \xed\xa0\x80\nX: \xed\xbf\xbf\n\n",
    "nul_in_field": b"Subject: a\0b\nContent-Type: text/plain\0; a=b\0c\n\n\0\n",
    "astral": "Subject: \U0001f600\U0010ffff\u2028\u202e\ufeff\n\n".encode(),
    "damaged_base64": b"Content-Transfer-Encoding: base64\n\nAAA\nA===A!\n",
    "unknown_charset": b"Subject: =?x-none?q?a?= =?utf-8?b?!!!?= =?utf-8?q?=FF?=\n\n",
    "no_parts": b"Content-Type: multipart/mixed; boundary=b\n\n--b--\n",
    "empty_message": b"Content-Type: message/rfc822\n",
    "many_parameters": b"Content-Type: text/plain" + b"; a=b" * 1000 + b"\n\n",
    "many_fields": b"A: b\n" * 5000 + b"\n",
    "many_parts": b"Content-Type: multipart/mixed; boundary=b\n\n" + b"--b\n\nx\n" * 2000,
    "groups": b"To: Friends: ada@mail.example, Ben <ben@mail.example>;, c\n"
    b'From: "a\\"b" <x>\n\n',
    "same_boundary": b"Content-Type: multipart/mixed; boundary=b\n\n--b\n" * 200,
    "twenty_levels": b"MIME-Version: 1.0\nContent-Type: message/rfc822\n\n" * 20 + b"\nx\n",
}


def deep(levels):
    """A message of so many messages within one another."""
    return b"Content-Type: message/rfc822\n\n" * levels + b"\nx\n"


@pytest.fixture
def nested():
    """A message with two parts, one of which is a message."""
    return NESTED


@pytest.fixture(scope="session")
def tool():
    """The command-line tool."""
    path = os.environ.get("MAILSTRUCTURE_TOOL", "")
    if not path:
        pytest.skip("MAILSTRUCTURE_TOOL does not name the tool")
    return path


@pytest.fixture(scope="session")
def tool_documents(tool):
    """A function that gives the tool's documents for files, in their order; None for a file that
    the rules refuse."""

    def documents(rules, paths):
        command = [tool, "json", "--rules", rules, *map(str, paths)]
        done = subprocess.run(command, capture_output=True, check=False)
        printed = [json.loads(line) for line in done.stdout.split(b"\n")[:-1]]
        by_name = {document["file"]: document for document in printed}
        return [by_name.get(str(path)) for path in paths]

    return documents


@pytest.fixture(scope="session")
def corpus():
    """The files of a folder of real mail."""
    folder = os.environ.get("MAILSTRUCTURE_CORPUS", "")
    if not os.path.isdir(folder):
        pytest.skip("MAILSTRUCTURE_CORPUS names no folder of messages")
    return sorted(path for path in pathlib.Path(folder).rglob("*") if path.is_file())
