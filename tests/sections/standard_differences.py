"""Why the standard rules find something else than Python's parser: a name for each reason.

Each name begins with the number of the rule in doc/standard.md that says what we do. Where the
trees differ, the message is rewritten so that Python no longer meets what it reads differently;
then both must find the same tree, or the difference is unexplained.
"""

import re

import python_mail

WITHOUT_LINES = "26_part_without_lines_has_no_place"
MESSAGE_TYPES = ("message/rfc822", "message/rfc2822", "message/global", "message/news")

# What Python takes for a line of a header block.
FIELD = re.compile(rb"From |[!-9;-~]*:|[ \t]")


def begin_rule(data, begin, other):
    """Why the body of a part does not begin where Python's does."""
    if begin == other:
        return None
    line = data[other:].split(b"\n", 1)[0].rstrip(b"\r")
    if other < begin and line and not FIELD.match(line):
        return "5_line_that_is_no_field_ends_the_header_block_for_python"
    return "unexplained begin"


def end_rule(data, begin, end, other):
    """Why the body of a part does not end where Python's does."""
    if end == other:
        return None
    if other < end and re.fullmatch(rb"\r?\n", data[other:end]):
        if end == len(data):
            return "32_last_line_end_of_the_input_is_dropped_by_python"
        if begin == end:
            return "32_line_end_before_the_delimiter_line_is_in_the_header_block"
    if end < other and re.fullmatch(rb"\r?\n", data[end:other]):
        return "32_line_end_before_the_delimiter_line_is_kept_by_python_in_a_childless_multipart"
    return "unexplained end"


def without_bare_crs(data, _entities):
    """Rule 1: a CR that ends no line is a byte like others, and so are several before an LF."""
    return re.sub(rb"\r(?!\n)", b"", data)


def without_lines_that_are_no_fields(data, entities):
    """Rule 5: such a line, with the lines folded to it, is passed over."""
    for entity in sorted(entities, key=lambda entity: -entity["header"]["offset"]):
        begin = entity["header"]["offset"]
        end = begin + entity["header"]["length"]
        kept = []
        dropping = False
        for line in data[begin:end].splitlines(keepends=True):
            folded = line[:1] in b" \t" and line.strip() != b""
            dropping = dropping if folded else not FIELD.match(line) and line.strip(b"\r\n") != b""
            if not dropping:
                kept.append(line)
        data = data[:begin] + b"".join(kept) + data[end:]
    return data


def with_unfolded_types(data, entities):
    """Rule 13: the line end of a fold within quotes is taken out."""
    fields = [field["range"] for entity in entities for field in entity["fields"]
              if field["name"].lower() == "content-type"]
    for field in sorted(fields, key=lambda field: -field["offset"]):
        begin, end = field["offset"], field["offset"] + field["length"]
        data = data[:begin] + re.sub(rb"\r?\n(?=[ \t])", b"", data[begin:end]) + data[end:]
    return data


def with_encoded_messages_closed(data, entities):
    """Rule 19: an encoded message is not looked into."""
    for entity in sorted(entities, key=lambda entity: -entity["header"]["offset"]):
        if (f"{entity['type']}/{entity['subtype']}".lower() in MESSAGE_TYPES
                and not entity["message"]):
            begin, end = entity["header"]["offset"], entity["body"]["offset"]
            block = re.sub(rb"(?i)message/\w+", b"x/y", data[begin:end])
            data = data[:begin] + block + data[end:]
    return data


def with_lines_in_every_part(data, _entities):
    """Rule 26: each of two separators in a row opens a part, also before a closing line."""
    twice = re.compile(rb"^(--[^\r\n]*?)[ \t]*(\r?\n)(?=\1(--)?[ \t]*\r?$)", re.M)
    return twice.sub(rb"\1\2\2", data)


REWRITTEN = (
    ("1_bare_cr_ends_a_line_for_python", without_bare_crs),
    ("5_line_that_is_no_field_ends_the_header_block_for_python", without_lines_that_are_no_fields),
    ("13_fold_in_quotes_is_kept_by_python", with_unfolded_types),
    ("19_encoded_message_is_looked_into_by_python", with_encoded_messages_closed),
    ("26_separators_in_a_row_are_one_for_python", with_lines_in_every_part),
)


def boundary_of(entity):
    """The boundary parameter as written, or None."""
    values = [param["value"] for field in entity["fields"] for param in field["params"]
              if param["name"].lower() == "boundary"]
    return values[0] if entity["multipart"] and values else None


def boundary_is_used_twice(entities):
    """Rule 24: whether a multipart has the boundary of an ancestor."""
    open_ones = []
    for entity in entities:
        del open_ones[entity["depth"]:]
        boundary = boundary_of(entity)
        if boundary is not None and boundary in open_ones:
            return True
        open_ones.append(boundary)
    return False


def tree_rule(data, start, entities, _parts):
    """Why the two trees differ: the one rewriting after which they are the same."""
    sections = {entity["section"] for entity in entities}
    for rule, rewrite in REWRITTEN:
        root = python_mail.parse(rewrite(data, entities)[start:])
        if set(python_mail.parts_of(root, MESSAGE_TYPES)) == sections:
            return rule
    if boundary_is_used_twice(entities):
        return "24_boundary_of_an_ancestor_is_that_of_the_ancestor_for_python"
    return "unexplained tree"
