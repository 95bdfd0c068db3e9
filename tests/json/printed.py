"""What `mailstructure json` prints, and what must be true of it for any message.

The tool is the first argument of each test that uses this; the rest are unittest's.
"""

import base64
import json
import pathlib
import subprocess
import sys

TOP = pathlib.Path(__file__).resolve().parent.parent.parent
TOOL = pathlib.Path(
    sys.argv.pop(1) if len(sys.argv) > 1 else TOP / "build/dev/tools/mailstructure").resolve()

RULE_SETS = ("standard", "classic")

# Left out of the comparison of a field's value with its bytes in the file.
BLANKS = bytes(range(9, 14)) + b" \0"


def run(*arguments):
    """The output and the exit status."""
    done = subprocess.run([TOOL, "json", *arguments], stdout=subprocess.PIPE,
                          stderr=subprocess.PIPE, check=False)
    return done.stdout, done.returncode


def lines_of(output):
    """The values of output that must be UTF-8 and has one value on each line."""
    text = output.decode("utf-8", errors="strict")
    assert text == "" or text.endswith("\n"), "the last line does not end"
    return [json.loads(line) for line in text.splitlines()]


def flattened(document):
    """The lines that the flat form must have for a document."""
    lines = []
    waiting = [(document["root"], None, 0)]
    while waiting:
        entity, parent, depth = waiting.pop()
        children = entity["children"]
        line = {name: value for name, value in entity.items() if name != "children"}
        line.update(file=document["file"], rules=document["rules"], index=len(lines),
                    parent=parent, depth=depth, child_count=len(children))
        line["not_utf8"] = document["not_utf8"] + line["not_utf8"]
        waiting.extend((child, line["index"], depth + 1) for child in reversed(children))
        lines.append(line)
    return lines


def exact_values(record):
    """Maps the place of every value to its bytes, found in the way that doc/json.md describes."""
    exact = {}

    def visit(place, value):
        if isinstance(value, str):
            exact[place] = value.encode()
        elif isinstance(value, list):
            for number, each in enumerate(value):
                visit(f"{place}/{number}", each)
        elif isinstance(value, dict):
            for name, each in value.items():
                visit(f"{place}/{name}", each)

    for name, value in record.items():
        if name not in ("not_utf8", "children"):
            visit(f"/{name}", value)
    for odd in record["not_utf8"]:
        shown = exact[odd["member"]]
        exact[odd["member"]] = base64.b64decode(odd["base64"], validate=True)
        assert shown != exact[odd["member"]], "a value is listed that is UTF-8"
    return exact


def check_line(line, message):
    """Checks that the ranges of a flat line lie in the file, and hold the bytes of its fields."""
    ranges = [line[name] for name in ("header", "mime", "body", "contents", "epilogue")]
    ranges += [field["range"] for field in line["fields"]]
    for each in ranges:
        assert each["offset"] + each["length"] <= len(message), each
    exact = exact_values(line)
    for number, field in enumerate(line["fields"]):
        begin = field["range"]["offset"]
        written = message[begin : begin + field["range"]["length"]].translate(None, BLANKS)
        place = f"/fields/{number}"
        name, value = exact[place + "/name"], exact[place + "/value"].translate(None, BLANKS)
        # Between them is one byte: a colon, unless the classic rules have taken a line without one
        # for a field.
        assert written.startswith(name), (written, name)
        assert line["rules"] == "classic" or written[len(name) :].startswith(b":"), written
        assert written[len(name) + 1 :].startswith(value), (written, value)
