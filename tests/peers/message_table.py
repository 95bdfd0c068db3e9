"""The messages of the folder "messages", each with what every parser finds in it.

Each file there is TOML, with one table for each message:

- name: what the message shows.
- rules: the numbers of the rules of the rule set "standard" that the message is for.
- mail: the message, one line for each of its lines. A character up to U+00FF is the byte of that
  number.
- standard: the entities that our library finds under that rule set, as leaves.as_text writes them.
  They are worked out from the rules, not taken from what the library prints.
- python, gmime, dovecot: the entities that these parsers find, as they have been seen to do; given
  only where they find others than our library.
"""

import pathlib
import tomllib
from typing import NamedTuple

FOLDER = pathlib.Path(__file__).resolve().parent / "messages"
PEERS = ("python", "gmime", "dovecot")


class Message(NamedTuple):
    """One message of the table."""

    name: str
    rules: list
    mail: bytes
    expected: dict  # the name of a parser to the entities that it finds, as text
    differing: list  # the parsers that the table says to find other entities than our library


def messages():
    """All messages of the table."""
    for path in sorted(FOLDER.glob("*.toml")):
        for row in tomllib.loads(path.read_text(encoding="utf-8"))["message"]:
            name, rules, mail = row.pop("name"), row.pop("rules"), row.pop("mail")
            standard = row.pop("standard")
            differing = list(row)
            expected = {"standard": standard}
            expected |= {peer: row.pop(peer, standard) for peer in PEERS}
            assert not row, f"{path}: {name}: nobody knows {list(row)}"
            yield Message(name, rules, mail.encode("latin-1"), expected, differing)
