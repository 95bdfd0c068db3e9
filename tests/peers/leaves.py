"""What each parser finds in messages, in one form, so that it can be compared.

A parser finds a list of entities, each before those in it. The path of an entity is made of the
numbers of the children that lead to it from the root, whose path is empty; the message within a
message entity is its one child. Where conventions differ, the form is this:

1. The line end before a delimiter line belongs to the delimiter, as RFC 2046 has it. The program
   for our own library takes that line end off its ranges; the other parsers do so themselves.
2. A container, by which is meant an entity that a parser takes for a multipart or for one that
   holds a message, has a path and a type but no text: GMime and Python do not tell where the text
   around its parts lies.
3. An entity of a multipart type is a container, also when it has no boundary or no parts.
4. Types are in lower case.
5. Python takes the last line end off a part of a multipart also where the input ends instead of a
   delimiter. With the option drop_last_line_end the others do so too.
"""

import email
import functools
import re
import subprocess
from typing import NamedTuple, Optional


class Entity(NamedTuple):
    """One entity, as a parser sees it."""

    path: str
    type: str
    body: Optional[bytes]  # None for a container

    def text(self):
        """The entity as the table of messages writes it."""
        words = [self.path or "root", shown(self.type)]
        if self.body is not None:
            words.append('"' + shown(self.body.decode("latin-1")) + '"')
        return " ".join(words)


def shown(text):
    """Bytes that are no plain character appear as in a Python literal."""
    return text.encode("unicode_escape").decode().replace('"', '\\"')


def as_text(entities):
    """The whole message as the table of messages writes it."""
    return "".join(entity.text() + "\n" for entity in entities) or "nothing\n"


def parsers(arguments):
    """The parsers that a test is to compare.

    Each is a function that makes of a list of files a list of entities for each of them. The
    arguments are NAME=PROGRAM. Python needs no program.
    """
    found = {"python": of_python}
    for name, program in (argument.split("=", 1) for argument in arguments):
        found[name] = functools.partial(of_program, program)
    return found


def with_paths(entities):
    """Makes an Entity of each (depth, type, body)."""
    path = []  # the numbers of the children that lead to the latest entity
    children = []  # how many children each entity on that path has so far
    for depth, media_type, body in entities:
        del path[depth:], children[depth:]
        if depth:
            children[-1] += 1
            path[depth - 1 :] = [str(children[-1])]
        children.append(0)
        media_type = media_type.lower()
        is_multipart = media_type.startswith("multipart/")
        yield Entity(".".join(path), media_type, None if is_multipart else body)


def of_program(program, files, drop_last_line_end=False):
    """What one of the programs of this folder prints of each of the files."""
    names = "".join(f"{file}\n" for file in files).encode()
    printed = subprocess.run([program], input=names, stdout=subprocess.PIPE, check=True).stdout
    messages = re.split(rb"^message\n", printed, flags=re.MULTILINE)[1:]
    assert len(messages) == len(files), (program, len(messages), len(files))
    return [
        list(with_paths(listed(lines, file.read_bytes(), drop_last_line_end)))
        for lines, file in zip(messages, files)
    ]


def listed(lines, message, drop_last_line_end):
    """The entities of one message, from what a program prints of it."""
    for line in lines.splitlines():
        depth, begin, end, media_type = line.split(b" ", 3)
        body = None if begin == b"-" else message[int(begin) : int(end)]
        if drop_last_line_end and body and depth != b"0" and int(end) == len(message):
            body = without_last_line_end(body)
        yield int(depth), media_type.decode("latin-1"), body


def without_last_line_end(body):
    """The text less one LF, or one CR LF, at its end."""
    return body[:-1].removesuffix(b"\r") if body.endswith(b"\n") else body


def of_python(files, drop_last_line_end=False):
    """What the parser of Python's standard library finds in each of the files."""
    del drop_last_line_end  # it does so in any case
    return [list(with_paths(entities_of_python(file.read_bytes()))) for file in files]


def entities_of_python(message):
    """The entities of one message."""
    try:
        waiting = [(0, email.message_from_bytes(message))]
    except RecursionError:  # the parser calls itself for each level
        return
    while waiting:
        depth, entity = waiting.pop()
        media_type = entity.get_content_type()
        if entity.is_multipart():
            yield depth, media_type, None
            waiting.extend((depth + 1, part) for part in reversed(entity.get_payload()))
        else:
            # What is decoded of a body that names no encoding is the body as it stands.
            del entity["Content-Transfer-Encoding"]
            yield depth, media_type, entity.get_payload(decode=True)
