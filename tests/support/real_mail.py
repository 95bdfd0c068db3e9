"""Real mail that tests read. It is not part of the project: the environment variable
MAILSTRUCTURE_CORPUS names a folder of messages.
"""

import csv
import os
import pathlib

FOLDER = os.environ.get("MAILSTRUCTURE_CORPUS", "")


def messages():
    """The files of the folder: those that its list names, where it has one. None where there is no
    folder."""
    folder = pathlib.Path(FOLDER)
    if not FOLDER or not folder.is_dir():
        return None
    manifest = folder / "MANIFEST.tsv"
    if not manifest.is_file():
        return sorted(path for path in folder.rglob("*") if path.is_file())
    with open(manifest, encoding="utf-8", newline="") as lines:
        rows = csv.DictReader(lines, delimiter="\t", quoting=csv.QUOTE_NONE)
        return [folder / row["file"] for row in rows]
