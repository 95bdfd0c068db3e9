#!/usr/bin/env python3
"""The map in the README is the one that the tool draws now, and its places are those of the
sample message.

tests/map/sample_test.py TOOL [--update]
"""

import pathlib
import re
import subprocess
import sys
import tempfile

TOP = pathlib.Path(__file__).resolve().parent.parent.parent
SAMPLE = TOP / "tests/data/messages/mixed-with-attachment.eml"
PICTURE = TOP / "doc/map.svg"

tool = pathlib.Path(sys.argv[1]).resolve()
with tempfile.TemporaryDirectory() as folder:
    message = pathlib.Path(folder) / "message.eml"
    message.write_bytes(SAMPLE.read_bytes())
    drawn = subprocess.run([tool, "map", message], stdout=subprocess.PIPE, check=True).stdout
if "--update" in sys.argv:
    PICTURE.write_bytes(drawn)
elif PICTURE.read_bytes() != drawn:
    sys.exit(f"{PICTURE} is not what the tool draws; if it should be, run this with --update")

# The titles of the boxes in the strip are the bytes of the file, piece by piece.
content = SAMPLE.read_bytes()
strip = drawn.decode().split('<g class="strip" ')[1].split('<g class="lanes">')[0]
titles = re.findall(r"<title>(\S+) (.+?), bytes (\d+)-(\d+) ", strip)
pieces = [(part, kind, content[int(begin):int(end)]) for part, kind, begin, end in titles]
assert b"".join(piece for _, _, piece in pieces) == content, pieces
assert ("TEXT", "preamble", b"This mail has several parts.\n") in pieces, pieces
assert ("1.1", "plain text", b"The shelf is 80 cm wide.") in pieces, pieces
assert ("2", "other text", b"cGFydCx3aWR0aCxkZXB0aApib2FyZCw4MCwzMApzaWRlLDMwLDE4MAo=\n") \
    in pieces, pieces
assert ("TEXT", "epilogue", b"Sent from the workshop.\n") in pieces, pieces
