"""The bytes of messages: nothing is copied, and nothing outlives what it refers to."""

import gc
import weakref

import pytest

import mailstructure

PIECES = ("header", "mime", "body", "contents", "epilogue")


class Source(bytearray):
    """A bytearray that can be watched."""


def test_slices_are_the_bytes_of_the_caller(nested):
    source = bytearray(nested)
    message = mailstructure.parse(source)
    body = message.part("1").body
    assert body == b"one\n"
    offset, length = message.part("1").body_range
    source[offset : offset + length] = b"ONE\n"
    assert body == b"ONE\n"


def test_all_slices_are_where_the_ranges_say(nested):
    message = mailstructure.parse(nested)
    for entity in message:
        for piece in PIECES:
            offset, length = getattr(entity, f"{piece}_range")
            assert getattr(entity, piece) == nested[offset : offset + length]
    field = message.root.field("to")
    assert field.raw == b"To: ada@mail.example\n"
    assert nested[field.range[0] :][: field.range[1]] == field.raw


def test_slices_cannot_be_written_to(nested):
    source = bytearray(nested)
    message = mailstructure.parse(source)
    views = [memoryview(message), message.section("1"), message.entity_table, message.field_table]
    for view in [*views, *(getattr(message.root, piece) for piece in PIECES)]:
        assert view.readonly
        with pytest.raises(TypeError):
            view[0] = 0
    with pytest.raises(AttributeError):
        message.root.body = b""
    assert source == nested


@pytest.mark.parametrize("piece", PIECES)
def test_slices_outlive_the_message(piece, nested):
    source = Source(nested)
    watched = weakref.ref(source)
    message = mailstructure.parse(source)
    offset, length = getattr(message.root, f"{piece}_range")
    view = getattr(message.root, piece)
    del message, source
    gc.collect()
    assert watched() is not None
    assert view == nested[offset : offset + length]
    del view
    gc.collect()
    assert watched() is None


def test_the_message_outlives_the_name_of_its_bytes(nested):
    source = Source(nested)
    watched = weakref.ref(source)
    message = mailstructure.parse(source)
    del source
    gc.collect()
    assert message.root.body[:8] == b"preamble"
    assert memoryview(message) == nested
    del message
    gc.collect()
    assert watched() is None


def test_entities_and_fields_keep_the_message(nested):
    field = mailstructure.parse(nested).part("2.1").field("subject")
    gc.collect()
    assert field.value == "inner"
    assert field.entity.parent.contents == b"Subject: inner\n\ntwo\n"


def test_a_cycle_through_the_bytes_is_collected(nested):
    source = Source(nested)
    watched = weakref.ref(source)
    source.message = mailstructure.parse(source)
    source.entity = source.message.root
    source.view = source.entity.body
    source.table = source.message.entity_table
    source.field = source.entity.fields[0]
    source.walk = source.message.walk()
    del source
    gc.collect()
    assert watched() is None


def test_a_bytearray_cannot_be_resized_while_a_message_holds_it(nested):
    source = bytearray(nested)
    message = mailstructure.parse(source)
    with pytest.raises(BufferError):
        source.append(0)
    view = message.root.body
    del message
    with pytest.raises(BufferError):
        source.clear()
    del view
    source.append(0)
    assert len(source) == len(nested) + 1


def test_a_refused_message_holds_its_bytes_as_long_as_the_exception_lives():
    source = bytearray(b"a: b\n\nx\ry\n")
    try:
        mailstructure.parse(source, "classic")
    except mailstructure.StrayByteError as error:
        with pytest.raises(BufferError):
            source.clear()
        assert error.partial.root.fields[0].name == "a"
    source.clear()


def test_bytes_are_let_go_when_the_call_is_wrong():
    source = bytearray(b"a: b\n")
    with pytest.raises(ValueError):
        mailstructure.parse(source, "no rules")
    source.clear()


def test_the_message_is_a_buffer(nested):
    message = mailstructure.parse(nested)
    assert bytes(memoryview(message)) == nested
    assert b"".join([message]) == nested


def test_an_empty_message_has_empty_slices():
    root = mailstructure.parse(b"").root
    assert [bytes(getattr(root, piece)) for piece in PIECES] == [b""] * 5
    assert bytes(root.message.section("")) == b""
