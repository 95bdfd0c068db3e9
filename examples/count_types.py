#!/usr/bin/env python3
"""Counts the media types in a folder of messages: count_types.py FOLDER

Each step is on its own, so that it can be copied into a notebook.
"""

import collections
import pathlib
import sys

import mailstructure

if len(sys.argv) != 2:
    print("usage: count_types.py FOLDER", file=sys.stderr)
    sys.exit(2)

# %% Parse every file of the folder. No file is refused: by the standard rules, everything is mail.

messages = []
for path in sorted(pathlib.Path(sys.argv[1]).rglob("*")):
    if path.is_file():
        messages.append(mailstructure.parse(path.read_bytes()))

# %% Count the entities of each media type, their body bytes, and the messages that have one.

parts = collections.Counter()
body_bytes = collections.Counter()
having = collections.Counter()
for message in messages:
    types = set()
    for entity in message.walk():
        parts[entity.media_type] += 1
        body_bytes[entity.media_type] += entity.body_range[1]
        types.add(entity.media_type)
    having.update(types)

# %% Print a table, the most frequent type first. The sender chose the types, so they are escaped.

names = {name: ascii(name)[1:-1] for name in parts}
width = max([len("type"), *map(len, names.values())])
print(f"{'type':{width}} {'parts':>9} {'bytes':>12} {'messages':>9}")
for name, count in sorted(parts.items(), key=lambda item: (-item[1], item[0])):
    print(f"{names[name]:{width}} {count:9} {body_bytes[name]:12} {having[name]:9}")
print(f"{len(messages)} messages, {parts.total()} entities")
