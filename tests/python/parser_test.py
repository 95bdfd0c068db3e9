"""Parser: messages that come in pieces."""

import mmap
import tempfile

import conftest
import pytest

import mailstructure


def fed(data, size, **options):
    parser = mailstructure.Parser(**options)
    for start in range(0, len(data), size):
        parser.feed(data[start : start + size])
    return parser.finish()


def tables_of(message):
    tables = (message.entity_table, message.field_table, message.parameter_table)
    return [table.tolist() for table in tables], message.text


@pytest.mark.parametrize("size", [1, 2, 7, 1000])
@pytest.mark.parametrize("rules", ["standard", "classic"])
def test_the_tree_is_that_of_the_whole_message(size, rules, nested):
    whole = mailstructure.parse(nested, rules)
    assert tables_of(fed(nested, size, rules=rules)) == tables_of(whole)


@pytest.mark.parametrize("message", conftest.HOSTILE.values(), ids=conftest.HOSTILE)
def test_hostile_mail_may_be_cut_anywhere(message):
    assert tables_of(fed(message, 3)) == tables_of(mailstructure.parse(message))


def test_without_keep_there_are_ranges_and_no_bytes(nested):
    message = fed(nested, 10)
    assert message.part("1").body_range == mailstructure.parse(nested).part("1").body_range
    assert message.root.field("to").value == "ada@mail.example"
    assert message.part("2.1").section == "2.1"
    for ask in (
        lambda: message.root.body,
        lambda: message.root.fields[0].raw,
        lambda: message.section("1"),
        message.to_dict,
    ):
        with pytest.raises(ValueError, match="its bytes were not kept"):
            ask()
    with pytest.raises(BufferError):
        memoryview(message)


def test_with_keep_the_bytes_are_there(nested):
    message = fed(nested, 10, keep=True)
    assert memoryview(message) == nested
    assert message.to_dict() == mailstructure.parse(nested).to_dict()
    assert message.section("2.TEXT") == b"two"


def test_a_parser_reads_one_message_after_another(nested):
    parser = mailstructure.Parser(keep=True)
    messages = []
    for text in (b"one", b"two", b""):
        parser.feed(b"a: " + text + b"\n")
        messages.append(parser.finish())
    assert [message.root.fields[0].value for message in messages] == ["one", "two", ""]
    assert memoryview(messages[0]) == b"a: one\n"
    assert len(parser.finish()) == 1  # a message without a byte


def test_takes_what_parse_takes_and_nothing_else():
    parser = mailstructure.Parser()
    for data in (b"a: ", bytearray(b"b"), memoryview(b"\n")):
        parser.feed(data)
    with pytest.raises(TypeError):
        parser.feed("text")
    with pytest.raises(BufferError):
        parser.feed(memoryview(b"abc")[::2])
    assert parser.finish().root.fields[0].value == "b"
    for arguments, named in ((("standard", True), {}), ((), {"kept": True})):
        with pytest.raises(TypeError):
            mailstructure.Parser(*arguments, **named)


def test_pieces_are_not_held():
    parser = mailstructure.Parser()
    piece = bytearray(b"a: b\n")
    parser.feed(piece)
    piece.clear()
    assert parser.finish().root.fields[0].value == "b"


def test_a_refused_message_ends_until_reset():
    parser = mailstructure.Parser("classic", keep=True)
    parser.feed(b"a: b\n\n")
    with pytest.raises(mailstructure.StrayByteError) as raised:
        parser.feed(b"x\ry\n")
    assert raised.value.partial.root.fields[0].name == "a"
    assert memoryview(raised.value.partial) == b"a: b\n\nx\ry\n"
    for call in (lambda: parser.feed(b"z"), parser.finish):
        with pytest.raises(ValueError, match="reset"):
            call()
    parser.reset()
    parser.feed(b"c: d\n")
    assert parser.finish().root.fields[0].name == "c"


def test_refuses_four_gibibytes():
    """A file with a hole: no byte of it is read."""
    with tempfile.TemporaryFile() as file:
        file.truncate((1 << 32) - 1)
        with mmap.mmap(file.fileno(), 0, access=mmap.ACCESS_READ) as mapped:
            parser = mailstructure.Parser()
            parser.feed(b"x")
            with pytest.raises(mailstructure.TooLargeError):
                parser.feed(mapped)
            with pytest.raises(ValueError, match="reset"):
                parser.finish()
            parser.reset()
            assert len(parser.finish()) == 1


def test_reset_drops_what_has_begun():
    parser = mailstructure.Parser()
    parser.feed(b"a: b\n")
    parser.reset()
    assert parser.finish().root.fields == ()
    parser.reset()
