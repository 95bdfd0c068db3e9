#!/usr/bin/env python3
"""Compares HEADER.FIELDS and HEADER.FIELDS.NOT of the tool with an independent reading.

fields_test.py TOOL SAMPLE_FOLDER. The messages are the samples, and the real mail in the folder
that MAILSTRUCTURE_CORPUS names, where there is one. Here a regular expression takes the lines of
the header block apart; the tool's own lists of sections say only where the blocks lie.
"""

import collections
import pathlib
import random
import re
import subprocess
import sys

sys.path.insert(0, str(pathlib.Path(__file__).resolve().parent.parent / "support"))
import real_mail  # pylint: disable=wrong-import-position

FIELD = re.compile(rb"([!-9;-~]+)[ \t]*:")
tool, samples = sys.argv[1:]
counts = collections.Counter()
failures = []


def run(*arguments):
    return subprocess.run([tool, *arguments], capture_output=True, check=False)


def header_blocks(path):
    """Maps the name of each HEADER section to its bytes."""
    data = path.read_bytes()
    blocks = {}
    for line in run("part", "--list", str(path)).stdout.decode().splitlines():
        offset, length, _, name = line.split("\t")[:4]
        if name.rpartition(".")[2] == "HEADER":
            blocks[name] = data[int(offset):int(offset) + int(length)]
    return blocks


def fields_of(block):
    """The block as (name in small letters or None, bytes) pairs, and the empty line at its end."""
    fields = []
    end = b""
    for line in re.findall(rb"[^\n]*\n|[^\n]+", block):
        if not line.strip(b"\r\n"):
            end = line
        elif line[:1] in b" \t" and fields:
            fields[-1] = (fields[-1][0], fields[-1][1] + line)
        else:
            match = FIELD.match(line)
            fields.append((match.group(1).lower() if match else None, line))
    return fields, end


def quoted(name):
    return '"' + re.sub(r'(["\\])', r"\\\1", name) + '"'


def compare(path):
    for section, block in header_blocks(path).items():
        fields, end = fields_of(block)
        names = sorted({name for name, _ in fields if name})
        chosen = random.sample(names, min(len(names), 3)) + [b"x-none"]
        if names:
            chosen.append(names[0][:-1] or b"y")  # the beginning of a name
        words = " ".join(quoted(random.choice([name, name.upper()]).decode()) for name in chosen)
        named = b"".join(text for name, text in fields if name in chosen)
        others = b"".join(text for name, text in fields if name not in chosen)
        for word, expected in ((".FIELDS", named), (".FIELDS.NOT", others)):
            result = run("part", f"{section}{word} ({words})", str(path))
            counts["compared"] += 1
            counts["fields"] += len(chosen)
            if result.returncode or result.stdout != expected + end:
                failures.append(f"{path}: {section}{word} ({words}): {result.stdout[:200]!r},"
                                f" expected {(expected + end)[:200]!r} {result.stderr!r}")


def messages():
    yield from sorted(pathlib.Path(samples).glob("*.eml"))
    files = real_mail.messages()
    if files is None:
        print("MAILSTRUCTURE_CORPUS names no folder of messages; the samples alone are compared")
        return
    yield from random.sample(files, min(len(files), 400))


random.seed(1)
for message in messages():
    compare(message)
print(dict(counts))
print("\n".join(failures))
sys.exit(1 if failures or counts["compared"] < 20 else 0)
