#!/usr/bin/env python3
"""Compares the sections of real mail with the parts that Python's standard e-mail parser finds.

python_test.py TOOL, with the folder of messages in MAILSTRUCTURE_CORPUS.

Where both find the same tree, the bytes of every part without parts must be the payload that Python
gives for it, and --decode must give the decoded payload. The two parsers differ on purpose in some
places. A difference must be of a kind that is listed below, each with a condition of its own, or
the test fails. Where the trees differ, a rule must find something in the message that explains it.
The test prints how often each rule applied.
"""

import base64
import collections
import email
import json
import os
import random
import re
import subprocess
import sys

skipped = 77
counts = collections.Counter()
failures = []


def run(*arguments):
    return subprocess.run([tool, *arguments], capture_output=True, check=False)


class Part:
    """A part that Python has found."""

    def __init__(self, message, is_leaf):
        self.message = message
        self.is_leaf = is_leaf

    def payload(self):
        return self.message.get_payload().encode("latin-1")


def is_multipart(message):
    return message.get_content_maintype() == "multipart" and (
        message.is_multipart() or message.get_boundary()
    )


def python_parts(root):
    """All parts, each under the name that the tool gives it."""
    parts = {}
    waiting = [(root, "", True)]
    while waiting:
        message, number, is_message = waiting.pop()
        payload = message.get_payload()
        is_list = isinstance(payload, list)
        multipart = is_multipart(message)
        if is_message:
            number = (number + (".TEXT" if multipart else ".1")).lstrip(".")
        parts[number] = Part(message, not multipart and not is_list)
        if multipart and is_list:
            number = number.removesuffix("TEXT").rstrip(".")
            for place, child in enumerate(payload, 1):
                waiting.append((child, f"{number}.{place}".lstrip("."), False))
        elif is_list and message.get_content_type() == "message/rfc822":
            waiting.append((payload[0], number, True))
    return parts


def listed_sections(path):
    """Maps each name to (offset, length). None if the tool refuses the message."""
    listed = run("part", "--list", path)
    if listed.returncode != 0:
        return None
    sections = {}
    for line in listed.stdout.decode().splitlines():
        offset, length, _, name = line.split("\t")
        sections[name] = (int(offset), int(length))
    return sections


def payload_place(data, begin, end, payload):
    """The place of the payload in the file: one that shares an end with ours, else the nearest."""
    if not payload:
        return end, end
    if data[begin:begin + len(payload)] == payload:
        return begin, begin + len(payload)
    if end >= len(payload) and data[end - len(payload):end] == payload:
        return end - len(payload), end
    found = [match.start() for match in re.finditer(b"(?=" + re.escape(payload) + b")", data)]
    places = ((at, at + len(payload)) for at in found)
    return min(places, key=lambda place: abs(place[0] - begin), default=None)


def begin_rule(data, begin, other):
    """Why the body of a part does not begin where Python's does."""
    if begin == other:
        return None
    is_after_empty_line = data[:begin].endswith((b"\n\n", b"\n\r\n"))
    is_field_to_python = re.match(rb"[!-9;-~]+:", data[begin:])
    if begin < other and (not is_after_empty_line or is_field_to_python):
        return "header_block_ended_by_a_line_that_is_no_field"
    if other < begin and data[other:begin].startswith((b"\n", b"\r\n")):
        return "empty_line_behind_a_separator_is_dropped"
    if other < begin and re.match(rb"[A-Za-z-]+[^\n]?\r?\n", data[other:begin]):
        return "line_of_letters_is_a_field"
    return "unexplained begin"


def end_rule(data, begin, end, other):
    """Why the body of a part does not end where Python's does."""
    if end == other:
        return None
    if other < end and re.fullmatch(rb"\r?\n", data[other:end]):
        if end == len(data):
            return "unclosed_part_keeps_its_last_line_end"
        if begin == end:
            return "last_line_end_is_taken_for_the_end_of_the_header_block"
    if other < end and re.match(rb"\r?\n--", data[other:end]):
        return "boundary_line_that_is_not_the_innermost_is_text"
    if end < other and re.fullmatch(rb"\r?\n", data[end:other]):
        return "python_keeps_the_line_end_of_a_multipart_without_parts"
    return "unexplained end"


def compare_leaf(path, data, name, place, part):
    begin, end = place[0], place[0] + place[1]
    payload = part.payload()
    if data[begin:end] == payload:
        counts["bytes: equal"] += 1
        return True
    other = payload_place(data, begin, end, payload)
    if other is None:
        rules = ["unexplained payload"]
    elif end == 0:
        rules = ["part_without_lines_has_no_place"]
    else:
        rules = [begin_rule(data, begin, other[0]), end_rule(data, begin, end, other[1])]
    for rule in filter(None, rules):
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
    if expected == part.payload() and field != field.strip():
        return "python_does_not_know_an_encoding_with_blanks_behind_it"
    if field == "quoted-printable" and result.stdout == re.sub(
        rb"[ \t]+(\r?\n|\Z)", rb"\1", expected
    ):
        return "blanks_at_the_end_of_a_quoted_line_are_dropped"
    return "unexplained decoding"


def compare_decoded(path, data, name, place, part):
    """A call of the tool as a user makes it."""
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


def boundaries_recorded(entity):
    return {value["value"] for field in entity["fields"] for value in field["params"]
            if "boundary".startswith(value["name"].lower())}


def block_rule(data, entity, parts):
    """What Python reads differently in the header block of the entity."""
    begin, length = entity["header"]["offset"], entity["header"]["length"]
    block = data[begin:begin + length]
    if entity["depth"] != 0 and length and data[:begin].endswith((b"\n\n", b"\n\r\n")):
        message_around = any(name == entity["section"].rpartition(".")[0] for name in parts)
        if not message_around or re.search(rb"\n--[^\n]+\n\r?\n\Z", data[:begin]):
            return "empty_line_behind_a_separator_is_dropped"
    if re.search(rb"^[A-Za-z-]+\r?$", block, re.M):
        return "line_of_letters_is_a_field"
    if length and begin + length < len(data) and not re.search(rb"(\A|\n)\r?\n\Z", block):
        return "header_block_ended_by_a_line_that_is_no_field"
    python = parts.get(entity["section"])
    if entity["message"] and python and python.message.get_content_type() != "message/rfc822":
        return "value_that_is_the_beginning_of_message_rfc822_marks_a_message"
    return None


def tree_rule(data, root, entities, parts):
    """Why the two trees differ: the first rule that finds an explanation."""
    multiparts = [entity for entity in entities if entity["multipart"]]
    recorded = set().union(*(boundaries_recorded(entity) for entity in multiparts))
    messages = [part.message for part in parts.values()]
    declared = {str(message.get_boundary()) for message in messages if is_multipart(message)}
    if declared != recorded:
        return "boundary_is_read_differently"
    for entity in entities:
        if rule := block_rule(data, entity, parts):
            return rule
    for boundary in recorded:
        line = rb"^--" + re.escape(boundary.encode("latin-1", "replace"))
        if re.search(line + rb"(--)?[ \t]+\r?$", data, re.M):
            return "boundary_line_with_blanks_behind_it_is_text"
        if re.search(line + rb"\r?\n(\r?\n)?" + line[1:] + rb"\r?$", data, re.M):
            return "python_skips_repeated_separators"
    sections = {entity["section"] for entity in entities}
    for name, part in parts.items():
        others = sections - set(parts)
        beside = {section for section in others if section.rpartition(".")[0] == name}
        if beside and part.message.get_content_type() == "message/rfc822":
            return "message_that_a_boundary_line_does_not_close"
    defects = [type(defect).__name__ for part in root.walk() for defect in part.defects]
    if any(re.search(r"Boundary|Multipart", defect) for defect in defects):
        return "multipart_that_is_broken_to_python_too"
    return "unexplained tree"


def compare(path):
    sections = listed_sections(path)
    if sections is None:
        counts["messages: refused"] += 1
        return
    with open(path, "rb") as file:
        data = file.read()
    root = email.message_from_string(data[sections[""][0]:].decode("latin-1"))
    parts = python_parts(root)
    entities = [json.loads(line) for line in run("json", "--flat", path).stdout.splitlines()]
    names = {entity["section"] for entity in entities}
    if set(parts) != names:
        rule = tree_rule(data, root, entities, parts)
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
    corpus = os.environ.get("MAILSTRUCTURE_CORPUS", "")
    if not os.path.isdir(corpus):
        print("MAILSTRUCTURE_CORPUS names no folder of messages")
        return skipped
    random.seed(1)
    for folder, _, names in sorted(os.walk(corpus)):
        for name in sorted(names):
            compare(os.path.join(folder, name))
    for rule, count in sorted(counts.items()):
        print(f"{count:6} {rule}")
    print("\n".join(failures))
    if not counts["bytes: equal"]:
        print("nothing was compared")
        return 1
    return 1 if failures else 0


tool = sys.argv[1]
sys.exit(main())
