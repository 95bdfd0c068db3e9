#!/usr/bin/env python3
"""Compares what the tool decodes of real mail with what Python's standard parser makes of it.

tests/json/python_test.py TOOL, with the folder of messages in MAILSTRUCTURE_CORPUS.

Compared are decoded subjects, moments, file names, and the bytes of parts in an encoding, decoded
leniently. Where the two differ, a rule must say why the tool's value is the better one, or why the
tool leaves a value undecoded on purpose; each rule has a condition of its own. A difference that no
rule explains is one where the tool's value may be the worse one: the test fails. Messages in which
the two find different parts, and parts of different bytes, are left out; a test of the sections
explains those. The test prints a table of the counts, and how often each rule applied.
"""

import base64
import collections
import concurrent.futures
import email
import email.header
import email.utils
import datetime
import os
import re
import subprocess
import sys

import printed

sys.path[:0] = [str(printed.TOP / "tests" / folder) for folder in ("sections", "support")]
import python_mail  # pylint: disable=wrong-import-position
import real_mail  # pylint: disable=wrong-import-position
import standard_differences  # pylint: disable=wrong-import-position

SKIPPED = 77
KINDS = ("subjects", "dates", "file names", "part bytes")
counts = collections.Counter()
rules_applied = collections.Counter()
failures = []


def unfolded(value):
    """A header field's value on one line."""
    return re.sub(r"\r?\n", "", str(value)).strip()


def decoded_words(value):
    """What Python makes of encoded words; None if it gives up."""
    try:
        return str(email.header.make_header(email.header.decode_header(value)))
    except (LookupError, ValueError, email.errors.HeaderParseError):
        return None


def is_last_line_end(shorter, ours):
    """Whether ours has nothing more than a line end, or not even that."""
    return re.fullmatch(re.escape(shorter) + rb"(\r?\n)?", ours) is not None


# --- The rules: each takes the raw value, Python's and ours, and says whether it explains the
# --- difference.


def python_gives_up_on_a_charset(raw, python, _ours):
    """It raises an exception for an unknown charset, and for text that is not valid in one."""
    return python is None and "=?" in raw


def python_adds_blanks_beside_encoded_words(raw, python, ours):
    """RFC 2047 section 6.2: white space is left out between words, and stays beside other text."""
    return "=?" in raw and python is not None and "".join(python.split()) == "".join(ours.split())


def python_replaces_raw_bytes(raw, python, ours):
    """Bytes that are not ASCII are kept here, and so can be read if they are UTF-8."""
    if python is None or not re.search("[\ufffd\udc80-\udcff]", raw + python):
        return False
    pattern = ".+".join(map(re.escape, re.split(r"(?:\ufffd|\\ufffd)+", python)))
    return re.fullmatch(pattern, ours, re.DOTALL) is not None


def utf_7_stays_as_written(raw, _python, ours):
    """It is not decoded on purpose: it hides text behind ASCII letters."""
    return "=?utf-7?" in raw.lower() and "".join(raw.split()) == "".join(ours.split())


def empty_parameter_is_passed_over(raw, python, ours):
    """An empty file name hides no name in the other field."""
    return python == "" and f'name="{ours}"' in raw


TEXT_RULES = (
    python_gives_up_on_a_charset,
    python_adds_blanks_beside_encoded_words,
    python_replaces_raw_bytes,
    utf_7_stays_as_written,
    empty_parameter_is_passed_over,
)


def python_takes_a_comment_for_the_zone(raw, _python, ours):
    """Without the comment it finds the same moment."""
    return python_moment(re.sub(r"\([^()]*\)", "", raw)) == ours


def python_reads_no_hyphens_in_a_date_without_a_zone(raw, python, ours):
    """With blanks in their place, and a zone, it finds the same moment."""
    return python is None and python_moment(raw.replace("-", " ") + " +0000") == ours


def python_counts_hours_beyond_23(raw, _python, ours):
    """Such a text is no time of day."""
    return ours is None and re.search(r"\b(?:2[4-9]|[3-9][0-9]):[0-9]", raw) is not None


DATE_RULES = (
    python_takes_a_comment_for_the_zone,
    python_reads_no_hyphens_in_a_date_without_a_zone,
    python_counts_hours_beyond_23,
)


def python_gives_the_encoded_text(payload, python, ours):
    """It decodes no base64 with one character too many; here the rest is decoded."""
    characters = re.sub(rb"[^A-Za-z0-9+/]", b"", payload)
    return (
        python == b"".join(payload.splitlines())
        and len(characters) % 4 == 1
        and ours == base64.b64decode(characters[:-1])
    )


def blanks_at_the_end_of_a_quoted_line_are_dropped(payload, python, ours):
    """RFC 2045 section 6.7: they were added on the way."""
    stripped = re.sub(rb"[ \t]+(\r?\n|\Z)", rb"\1", payload)
    return stripped != payload and is_last_line_end(
        decoded_payload("quoted-printable", stripped), ours
    )


def python_drops_the_last_line_end(_payload, python, ours):
    """The section goes on to the end of the file."""
    return is_last_line_end(python, ours)


def python_does_not_read_comments_in_the_encoding(payload, python, ours):
    """It gives the encoded text; here the encoding that stands before other text is known."""
    return python == payload and ours in (
        decoded_payload(encoding, payload) for encoding in ("base64", "quoted-printable")
    )


BYTES_RULES = (
    python_gives_the_encoded_text,
    blanks_at_the_end_of_a_quoted_line_are_dropped,
    python_drops_the_last_line_end,
    python_does_not_read_comments_in_the_encoding,
)


# --- What Python finds ---


def python_moment(value):
    """The moment as the tool prints it, or None."""
    try:
        parts = email.utils.parsedate_tz(value)
        if parts is None:
            return None
        moment = email.utils.mktime_tz(parts)
        in_utc = datetime.datetime.fromtimestamp(moment, datetime.timezone.utc)
        return in_utc.strftime("%Y-%m-%dT%H:%M:%SZ")
    except (ValueError, OverflowError, TypeError, IndexError):
        return None


def python_file_name(message):
    """The decoded name; None if Python gives up, and "" if there is none."""
    name = message.get_filename("")
    return decoded_words(unfolded(name)) if "=?" in name else re.sub(r"\r?\n(?=[ \t])", "", name)


def decoded_payload(encoding, payload):
    """The bytes that Python decodes."""
    message = email.message.Message()
    message["Content-Transfer-Encoding"] = encoding
    message.set_payload(payload.decode("latin-1"))
    return message.get_payload(decode=True)


# --- The comparison ---


# What is left undecoded although it could be decoded.
ON_PURPOSE = (utf_7_stays_as_written,)


def compare(kind, where, raw, python, ours, rules):
    """Counts the pair, under the rule that explains a difference."""
    if python == ours:
        counts[kind, "equal"] += 1
        return
    found = next((rule for rule in rules if rule(raw, python, ours)), None)
    if found is not None:
        counts[kind, "on purpose" if found in ON_PURPOSE else "ours better"] += 1
        rules_applied[kind, found.__name__] += 1
        return
    counts[kind, "ours worse"] += 1
    failures.append(f"{where}: {kind}: from {raw[:200]!r}\n  Python has {python!r}"[:600]
                    + f"\n  the tool has {ours!r}"[:300])


def compare_fields(entity, message):
    """The values of header fields."""
    where = f"{entity['file']}: {entity['section']}"
    if message["subject"] is not None:
        raw = unfolded(message["subject"])
        python = decoded_words(raw)
        compare("subjects", where, raw, python if python is None else python.strip(),
                (entity["subject"] or "").strip(), TEXT_RULES)
    if message["date"] is not None:
        raw = unfolded(message["date"])
        compare("dates", where, raw, python_moment(raw), entity["date_utc"], DATE_RULES)
    raw = unfolded(f"{message['content-disposition']}\n{message['content-type']}")
    python, ours = python_file_name(message), entity["filename"] or ""
    if python or ours:
        compare("file names", where, raw, python, ours, TEXT_RULES)


def is_encoded(message):
    """Whether the part is in an encoding that hides its bytes."""
    encoding = str(message["content-transfer-encoding"] or "").strip().lower()
    return encoding not in ("", "7bit", "8bit", "binary")


def compare_bytes(entity, message, ours):
    """The decoded bytes of a part."""
    payload = message.get_payload().encode("latin-1")
    compare("part bytes", f"{entity['file']}: {entity['section']}", payload,
            message.get_payload(decode=True), ours, BYTES_RULES)


def lenient_bytes(entity):
    """A call of the tool as a user makes it."""
    call = [printed.TOOL, "part", "--decode=lenient", entity["section"], entity["file"]]
    done = subprocess.run(call, capture_output=True, check=False)
    if done.returncode != 0:
        failures.append(f"{call}: status {done.returncode}: {done.stderr!r}")
    return done.stdout


def pairs(paths):
    """Every entity together with Python's objects for its fields and for its bytes."""
    entities = collections.defaultdict(list)
    for line in printed.lines_of(printed.run("--flat", *paths)[0]):
        entities[line["file"]].append(line)
    for path in paths:
        found = entities[str(path)]
        with open(path, "rb") as file:
            data = file.read()
        start = found[0]["header"]["offset"] if data.startswith(b"From ") else 0
        types = standard_differences.MESSAGE_TYPES
        parts = python_mail.parts_of(email.message_from_bytes(data[start:]), types)
        # The same parts, with bytes that are not ASCII as they are.
        texts = python_mail.parts_of(python_mail.parse(data[start:]), types)
        if set(parts) != {entity["section"] for entity in found}:
            counts["messages", "left out: different parts"] += 1
            continue
        counts["messages", "compared"] += 1
        for entity in found:
            if entity["mime"]["length"] != 0:
                body = data[entity["body"]["offset"]:][:entity["body"]["length"]]
                yield entity, parts[entity["section"]].message, texts[entity["section"]], body


def print_table():
    """The counts, and the reasons."""
    verdicts = ("equal", "ours better", "on purpose", "ours worse")
    print(f"{'':12}" + "".join(f"{verdict:>13}" for verdict in verdicts))
    for kind in KINDS:
        print(f"{kind:12}" + "".join(f"{counts[kind, verdict]:13}" for verdict in verdicts))
    for (kind, rule), count in sorted(rules_applied.items()):
        print(f"{count:6} {kind}: {rule}")
    for verdict in ("compared", "left out: different parts"):
        print(f"{counts['messages', verdict]:6} messages {verdict}")
    print(f"{counts['parts', 'left out: other encoded bytes']:6} parts left out:"
          " other encoded bytes")
    print("\n".join(failures))


def main():
    """Returns the exit status."""
    files = real_mail.messages()
    if files is None:
        print("skipped: MAILSTRUCTURE_CORPUS names no folder of messages")
        return SKIPPED
    encoded = []
    for entity, message, text, body in pairs(files):
        compare_fields(entity, message)
        if not text.is_leaf or not is_encoded(text.message):
            continue
        if text.payload().rstrip(b"\r\n") == body.rstrip(b"\r\n"):
            encoded.append((entity, text.message))
        else:
            counts["parts", "left out: other encoded bytes"] += 1
    with concurrent.futures.ThreadPoolExecutor(os.cpu_count()) as pool:
        written = pool.map(lenient_bytes, [entity for entity, _ in encoded])
        for (entity, message), ours in zip(encoded, written):
            compare_bytes(entity, message, ours)
    print_table()
    if not all(counts[kind, "equal"] for kind in KINDS):
        print("something was not compared")
        return 1
    return 1 if failures else 0


sys.exit(main())
