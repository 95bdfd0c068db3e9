"""Why the classic rules find something else than Python's parser: a name for each reason."""

import re

import python_mail

WITHOUT_LINES = "part_without_lines_has_no_place"
MESSAGE_TYPES = ("message/rfc822",)


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


def tree_rule(data, start, entities, parts):
    """Why the two trees differ: the first rule that finds an explanation."""
    multiparts = [entity for entity in entities if entity["multipart"]]
    recorded = set().union(*(boundaries_recorded(entity) for entity in multiparts))
    messages = [part.message for part in parts.values()]
    declared = {str(message.get_boundary()) for message in messages
                if python_mail.is_multipart(message)}
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
    root = python_mail.parse(data[start:])
    defects = [type(defect).__name__ for part in root.walk() for defect in part.defects]
    if any(re.search(r"Boundary|Multipart", defect) for defect in defects):
        return "multipart_that_is_broken_to_python_too"
    return "unexplained tree"
