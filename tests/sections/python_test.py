#!/usr/bin/env python3
"""Compares the sections of real mail with the parts that Python's standard e-mail parser finds.

python_test.py TOOL RULES, with the folder of messages in MAILSTRUCTURE_CORPUS. RULES is standard or
classic.

Where both find the same tree, the bytes of every part without parts must be the payload that Python
gives for it, and --decode must give the decoded payload. The two parsers differ on purpose in some
places. A difference must be of a kind that is named, each with a condition of its own, or the test
fails. Those of trees and places are in standard_differences.py and classic_differences.py; those of
decoding are here, for they do not depend on the rules. The test prints how often each one applied.
"""

import base64
import collections
import json
import pathlib
import quopri
import random
import re
import subprocess
import sys

import classic_differences
import python_mail
import standard_differences

sys.path.insert(0, str(pathlib.Path(__file__).resolve().parent.parent / "support"))
import real_mail  # pylint: disable=wrong-import-position

skipped = 77
counts = collections.Counter()
failures = []


def run(command, *arguments):
    return subprocess.run([tool, command, "--rules", rules, *arguments], capture_output=True,
                          check=False)


def listed_sections(path):
    """Maps each name to (offset, length). None if the tool refuses the message."""
    listed = run("part", "--list", path)
    if listed.returncode != 0:
        return None
    sections = {}
    for line in listed.stdout.decode().splitlines():
        offset, length, _, name, *_ = line.split("\t")
        sections[name] = (int(offset), int(length))
    return sections


def payload_place(data, begin, end, payload):
    """The place of the payload in the file: one that shares an end with ours, else the nearest."""
    if not payload:
        return (begin, begin) if rules == "standard" else (end, end)
    if data[begin:begin + len(payload)] == payload:
        return begin, begin + len(payload)
    if end >= len(payload) and data[end - len(payload):end] == payload:
        return end - len(payload), end
    found = [match.start() for match in re.finditer(b"(?=" + re.escape(payload) + b")", data)]
    places = ((at, at + len(payload)) for at in found)
    return min(places, key=lambda place: abs(place[0] - begin), default=None)


def compare_leaf(path, data, name, place, part):
    begin, end = place[0], place[0] + place[1]
    payload = part.payload()
    if data[begin:end] == payload:
        counts["bytes: equal"] += 1
        return True
    other = payload_place(data, begin, end, payload)
    if other is None:
        found = ["unexplained payload"]
    elif end == 0:
        found = [differences.WITHOUT_LINES]
    else:
        found = [differences.begin_rule(data, begin, other[0]),
                 differences.end_rule(data, begin, end, other[1])]
    for rule in filter(None, found):
        counts["bytes: " + rule] += 1
        if rule.startswith("unexplained"):
            failures.append(
                f"{path}: {name}: {rule}: {data[begin:end][:60]!r}, Python has {payload[:60]!r}"
            )
    return False


def base64_up_to(text):
    """The decoded bytes of a text that has no wrong character, but may end within a group."""
    characters = re.sub(rb"[\s=]", b"", text)
    if len(characters) % 4 == 1:
        characters = characters[:-1]
    return base64.b64decode(characters + b"=" * (-len(characters) % 4), validate=True)


def encoding_rule(part):
    """Why Python does not know the encoding; if there is a reason, Python is told the encoding."""
    field = str(part.message.get("Content-Transfer-Encoding", ""))
    encoding = re.match(r"[^\x00-\x20\x7f()<>@,;:\\\"/\[\]?=]*", field.strip()).group()
    if rules == "classic":
        encoding = field.strip()
    if not encoding or encoding == field:
        return None
    part.message.replace_header("Content-Transfer-Encoding", encoding)
    return "python_does_not_know_an_encoding_with_more_in_its_field"


def decode_rule(data, place, part, result, expected):
    """Why the decoded bytes are not those that Python gives."""
    message = result.stderr.decode()
    field = str(part.message.get("Content-Transfer-Encoding", "")).lower()
    if "unknown transfer encoding" in message:
        return "unknown_encoding_is_an_error"
    damage = re.search(r"base64.* at byte (\d+)$", message)
    if damage and result.returncode == 1 and result.stdout == base64_up_to(
        data[place[0]:int(damage.group(1))]
    ):
        return "damaged_base64_ends_the_decoding"
    if field == "quoted-printable" and result.stdout == quopri.decodestring(
        re.sub(rb"[ \t]+(\r?\n|\Z)", rb"\1", part.payload())
    ):
        if "equals sign" in message and result.returncode == 1:
            return "damage_in_quoted_printable_is_reported"
        if result.returncode == 0:
            return "blanks_at_the_end_of_a_quoted_line_are_dropped"
    return "unexplained decoding"


def compare_decoded(path, data, name, place, part):
    """A call of the tool as a user makes it."""
    if rule := encoding_rule(part):
        counts["decoded: " + rule] += 1
    expected = part.message.get_payload(decode=True)
    result = run("part", "--decode", name, path)
    if result.stdout == expected and result.returncode == 0:
        counts["decoded: equal"] += 1
        return
    rule = decode_rule(data, place, part, result, expected)
    counts["decoded: " + rule] += 1
    if rule.startswith("unexplained"):
        failures.append(
            f"{path}: {name}: {rule}: {result.stdout[:60]!r} {result.stderr!r},"
            f" Python has {expected[:60]!r}"
        )


def compare(path):
    sections = listed_sections(path)
    if sections is None:
        counts["messages: refused"] += 1
        return
    with open(path, "rb") as file:
        data = file.read()
    start = sections[""][0]
    parts = python_mail.parts_of(python_mail.parse(data[start:]), differences.MESSAGE_TYPES)
    entities = [json.loads(line) for line in run("json", "--flat", path).stdout.splitlines()]
    names = {entity["section"] for entity in entities}
    if set(parts) != names:
        rule = differences.tree_rule(data, start, entities, parts)
        counts["trees: " + rule] += 1
        if rule.startswith("unexplained"):
            failures.append(
                f"{path}: {rule}: {sorted(names - set(parts))[:4]},"
                f" Python has {sorted(set(parts) - names)[:4]}"
            )
        return
    counts["trees: equal"] += 1
    for name, part in parts.items():
        if not part.is_leaf:
            counts["bytes: of what has parts, which Python does not keep"] += 1
        elif compare_leaf(path, data, name, sections[name], part):
            compare_decoded(path, data, name, sections[name], part)
            check_cut(path, data, name, sections[name])


def check_cut(path, data, name, place):
    """Compares one in ten sections, as the tool writes it, with the place that --list states."""
    if random.random() < 0.1:
        counts["written as listed"] += 1
        if run("part", name, path).stdout != data[place[0]:sum(place)]:
            failures.append(f"{path}: {name}: not the bytes that --list names")


def main():
    files = real_mail.messages()
    if files is None:
        print("MAILSTRUCTURE_CORPUS names no folder of messages")
        return skipped
    random.seed(1)
    for path in files:
        compare(path)
    for rule, count in sorted(counts.items()):
        print(f"{count:6} {rule}")
    print("\n".join(failures))
    if not counts["bytes: equal"]:
        print("nothing was compared")
        return 1
    return 1 if failures else 0


tool, rules = sys.argv[1:]
differences = standard_differences if rules == "standard" else classic_differences
sys.exit(main())
