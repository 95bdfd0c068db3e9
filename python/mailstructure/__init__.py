"""Finds the structure of Internet mail, in one pass over its lines.

    >>> import mailstructure
    >>> message = mailstructure.parse(b"Subject: hello\\n\\nIt is I.\\n")
    >>> [entity.media_type for entity in message.walk()]
    ['text/plain']
    >>> message.root.field("subject").decoded
    'hello'
    >>> bytes(message.root.body)
    b'It is I.\\n'

parse() reads a message that is in memory, and a Parser one that comes in pieces. Both give a
Message: a sequence of entities, whose bytes are memoryviews of what was parsed. No message is
refused by the standard rules, which are the default; rules="classic" are the library's older ones.

Any number of threads may parse at once, and read one message.
"""

from mailstructure._core import (
    Entity,
    Error,
    Field,
    Message,
    NoColonError,
    NoSectionError,
    ParseError,
    Parser,
    SectionTextError,
    StrayByteError,
    TooLargeError,
    parse,
    set_memory_limit,
)

__version__ = "1.0.0"

#: Stands for "no such entity" and "no such place" in the tables.
NONE = 0xFFFFFFFF

#: The bits of the column "flags".
MULTIPART = 1
MESSAGE = 2

#: The columns of Message.entity_table. Offsets of types and encodings are places in Message.text,
#: all others are places in the message; lengths are in bytes.
ENTITY_COLUMNS = (
    "parent",
    "depth",
    "number",
    "child_count",
    "subtree_end",
    "flags",
    "lines",
    "first_field",
    "field_count",
    "header_offset",
    "header_length",
    "mime_offset",
    "mime_length",
    "body_offset",
    "body_length",
    "epilogue_offset",
    "epilogue_length",
    "contents_offset",
    "contents_length",
    "type_offset",
    "type_length",
    "subtype_offset",
    "subtype_length",
    "encoding_offset",
    "encoding_length",
)

#: The columns of Message.field_table. Offsets are places in Message.text; "begin" and "end" are
#: places in the message.
FIELD_COLUMNS = (
    "entity",
    "begin",
    "end",
    "first_parameter",
    "parameter_count",
    "name_offset",
    "name_length",
    "value_offset",
    "value_length",
)

#: The columns of Message.parameter_table. Offsets are places in Message.text.
PARAMETER_COLUMNS = ("field", "name_offset", "name_length", "value_offset", "value_length")

__all__ = [
    "parse",
    "Parser",
    "Message",
    "Entity",
    "Field",
    "Error",
    "ParseError",
    "StrayByteError",
    "NoColonError",
    "TooLargeError",
    "NoSectionError",
    "SectionTextError",
    "set_memory_limit",
    "ENTITY_COLUMNS",
    "FIELD_COLUMNS",
    "PARAMETER_COLUMNS",
    "NONE",
    "MULTIPART",
    "MESSAGE",
]
