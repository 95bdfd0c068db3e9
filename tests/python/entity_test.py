"""Entities and their fields."""

import pytest

import mailstructure


@pytest.fixture
def message(nested):
    return mailstructure.parse(nested)


def test_the_message_is_a_sequence_of_its_entities(message):
    assert len(message) == 4
    assert list(message) == list(message.walk()) == [message[i] for i in range(4)]
    assert message.root == message[0] == message[-4]
    assert message[-1] == message[3]
    for index in (4, -5, 1 << 70):
        with pytest.raises(IndexError):
            message[index]


def test_entities_have_their_place_in_the_tree(message):
    rows = [(e.index, e.depth, e.number, e.section, e.media_type) for e in message]
    assert rows == [
        (0, 0, 1, "TEXT", "multipart/mixed"),
        (1, 1, 1, "1", "text/html"),
        (2, 1, 2, "2", "message/rfc822"),
        (3, 2, 1, "2.1", "text/plain"),
    ]
    root, html, holder, inner = message
    assert root.parent is None
    assert root.children == (html, holder)
    assert holder.children == (inner,)
    assert inner.children == ()
    assert inner.parent == holder
    assert html.parent == root
    assert inner.message is message


def test_entities_say_what_the_message_says(message):
    root, html, holder, inner = message
    assert (html.type, html.subtype) == ("TEXT", "Html")
    assert (root.is_multipart, root.is_message) == (True, False)
    assert (holder.is_multipart, holder.is_message) == (False, True)
    assert (html.lines, inner.lines) == (1, 1)
    assert html.encoding == "7bit"


def test_a_walk_visits_the_entity_and_its_descendants(message):
    assert list(message[2].walk()) == [message[2], message[3]]
    assert list(message[1].walk()) == [message[1]]
    walk = message.walk()
    assert iter(walk) is walk
    assert next(walk) == message.root
    assert len(list(walk)) == 3
    with pytest.raises(StopIteration):
        next(walk)


def test_entities_are_equal_where_they_are_the_same(message, nested):
    other = mailstructure.parse(nested)
    assert message[1] is not message[1]
    assert message[1] == message[1]
    assert message[1] != message[2]
    assert message[1] != other[1]
    assert message[1] != 1
    assert len({message[1], message[1], message[2], other[1]}) == 3
    with pytest.raises(TypeError):
        message[1] < message[2]


def test_fields_are_in_the_order_of_the_message(message):
    assert [field.name for field in message.root.fields] == [
        "Subject",
        "To",
        "Date",
        "Content-Type",
    ]
    assert message.root.fields[3].params == (("boundary", "b"),)
    assert message.root.fields[0].params == ()
    assert message[3].fields[0].value == "inner"


def test_a_field_is_found_by_its_name_in_any_case(message):
    assert message.root.field("TO").value == "ada@mail.example"
    assert message.root.field("T") is None  # the whole name
    assert message.root.field("") is None
    with pytest.raises(TypeError):
        message.root.field(b"to")
    repeated = mailstructure.parse(b"A: 1\na: 2\n\n").root
    assert repeated.field("a").value == "1"


@pytest.mark.parametrize(
    ("value", "decoded"),
    [
        ("plain", "plain"),
        ("=?utf-8?q?outer_=C3=A4?=", "outer \u00e4"),
        ("=?iso-8859-1?b?5A==?= =?utf-8?q?b?=", "\u00e4b"),
        ("=?x-unknown?q?a?=", "=?x-unknown?q?a?="),
        ("=?utf-8?q?=FF?=", None),
        ("=?utf-8?b?A?=", None),
        ("\u00e4 as it is", "\u00e4 as it is"),
    ],
)
def test_values_are_decoded_where_python_can(value, decoded):
    field = mailstructure.parse(f"Subject: {value}\n\n".encode()).root.fields[0]
    assert field.value == value
    assert field.decoded == (value if decoded is None else decoded)


def test_bytes_that_are_not_utf8_are_kept():
    field = mailstructure.parse(b"Subject: Gr\xfc\xdfe\n\n").root.fields[0]
    assert field.value.encode("utf-8", "surrogateescape") == b"Gr\xfc\xdfe"
    assert field.decoded == "Gr\ufffd\ufffde"


def test_objects_are_made_by_parsing_alone():
    for made in (mailstructure.Message, mailstructure.Entity, mailstructure.Field):
        with pytest.raises(TypeError):
            made()
