"""parse(): what it takes, and which exceptions leave it."""

import array
import mmap
import subprocess
import sys
import tempfile

import conftest
import pytest

import mailstructure
from mailstructure import _core


def test_takes_every_kind_of_contiguous_bytes(nested):
    with tempfile.TemporaryFile() as file:
        file.write(nested)
        file.flush()
        with mmap.mmap(file.fileno(), 0, access=mmap.ACCESS_READ) as mapped:
            kinds = [nested, bytearray(nested), memoryview(nested), array.array("B", nested)]
            for data in [*kinds, memoryview(nested + b"x")[:-1], mapped]:
                message = mailstructure.parse(data)
                assert [entity.section for entity in message] == ["TEXT", "1", "2", "2.1"]
                del message


@pytest.mark.parametrize("data", ["text", None, 3, [1], object()])
def test_refuses_what_has_no_bytes(data):
    with pytest.raises(TypeError):
        mailstructure.parse(data)


@pytest.mark.parametrize(
    "data", [memoryview(b"abcdef")[::2], memoryview(b"abcdef")[::-1]], ids=["step", "backwards"]
)
def test_refuses_bytes_that_are_not_contiguous(data):
    with pytest.raises(BufferError):
        mailstructure.parse(data)


def test_takes_the_rules_by_place_and_by_name():
    assert mailstructure.parse(b"").rules == "standard"
    assert mailstructure.parse(b"", "classic").rules == "classic"
    assert mailstructure.parse(b"", rules="classic").rules == "classic"


@pytest.mark.parametrize("rules", ["", "Standard", None, 0, b"standard"])
def test_refuses_other_rules(rules):
    with pytest.raises(ValueError, match="rules are 'standard' or 'classic', not"):
        mailstructure.parse(b"", rules)
    with pytest.raises(ValueError, match="rules are 'standard' or 'classic', not"):
        mailstructure.Parser(rules)


def test_refuses_other_arguments():
    for arguments, named in (
        ((), {}),
        ((), {"data": b""}),
        ((b"", "classic", 1), {}),
        ((b"",), {"rule": "classic"}),
        ((b"", "classic"), {"rules": "classic"}),
    ):
        with pytest.raises(TypeError):
            mailstructure.parse(*arguments, **named)


def test_keeps_the_two_sets_of_rules_apart():
    message = b"C: a/b\n\nx\n"  # by the classic rules, names are compared as prefixes
    assert mailstructure.parse(message, "classic").root.media_type == "a/b"
    assert mailstructure.parse(message).root.media_type == "text/plain"


@pytest.mark.parametrize(
    ("message", "error"),
    [
        (b"a: b\n\none\ntwo\rthree\n", mailstructure.StrayByteError),
        (b"a: b\n\none\ntwo\0three\n", mailstructure.StrayByteError),
        (b"a: b\r\nname\r\nc: d\r\n", mailstructure.NoColonError),
    ],
)
def test_tells_why_the_classic_rules_refuse_a_message(message, error):
    mailstructure.parse(message)  # the standard rules refuse nothing
    with pytest.raises(error) as raised:
        mailstructure.parse(message, "classic")
    assert isinstance(raised.value, mailstructure.ParseError)
    assert isinstance(raised.value, ValueError)
    assert raised.value.partial.root.fields[0].name == "a"
    assert raised.value.partial.rules == "classic"
    assert memoryview(raised.value.partial) == message


def test_every_code_of_the_library_has_its_exception():
    """By the numbers of mail_structure_code; the last one is unknown."""
    expected = [
        (1, MemoryError),
        (2, mailstructure.StrayByteError),
        (3, mailstructure.NoColonError),
        (4, mailstructure.TooLargeError),
        (5, ValueError),
        (6, mailstructure.Error),
        (7, mailstructure.NoSectionError),
        (99, mailstructure.Error),
    ]
    for code, error in expected:
        with pytest.raises(error) as raised:
            _core._raise_code(code)
        assert type(raised.value) is error
        assert str(raised.value)


def test_the_exceptions_are_also_those_of_python():
    for error, of_python in (
        (mailstructure.ParseError, ValueError),
        (mailstructure.TooLargeError, OverflowError),
        (mailstructure.NoSectionError, LookupError),
        (mailstructure.SectionTextError, ValueError),
    ):
        assert issubclass(error, mailstructure.Error)
        assert issubclass(error, of_python)


def test_refuses_four_gibibytes():
    """A file with a hole: no byte of it is read."""
    with tempfile.TemporaryFile() as file:
        file.truncate(1 << 32)
        with mmap.mmap(file.fileno(), 0, access=mmap.ACCESS_READ) as mapped:
            with pytest.raises(mailstructure.TooLargeError):
                mailstructure.parse(mapped)


OUT_OF_MEMORY = """
import resource, mailstructure
message = b"Content-Type: multipart/mixed; boundary=b\\n\\n" + b"--b\\n\\nx\\n" * 1000000
taken = int(open("/proc/self/statm").read().split()[0]) * resource.getpagesize()
resource.setrlimit(resource.RLIMIT_AS, (taken + 50_000_000,) * 2)
try:
    mailstructure.parse(message)
except MemoryError:
    print("no memory")
assert len(mailstructure.parse(b"a: b")) == 1
print("goes on")
"""


def test_lack_of_memory_is_a_memory_error():
    done = subprocess.run(
        [sys.executable, "-c", OUT_OF_MEMORY], capture_output=True, text=True, check=True
    )
    assert done.stdout == "no memory\ngoes on\n"


@pytest.mark.parametrize("message", conftest.HOSTILE.values(), ids=conftest.HOSTILE)
@pytest.mark.parametrize("rules", ["standard", "classic"])
def test_everything_can_be_asked_of_hostile_mail(message, rules):
    try:
        parsed = mailstructure.parse(message, rules)
    except mailstructure.ParseError as error:
        parsed = error.partial
    for entity in parsed:
        for name in dir(entity):
            value = getattr(entity, name)
            if name in {"section"} and value is not None:
                assert parsed.part(value) == entity
            elif isinstance(value, memoryview):
                offset, length = getattr(entity, f"{name}_range")
                assert value == message[offset : offset + length]
        for field in entity.fields:
            assert field.entity == entity
            assert isinstance(field.decoded, str)
            field.decoded.encode()  # no lone surrogates
            assert all(isinstance(text, str) for pair in field.params for text in pair)
            assert repr(field)
        assert repr(entity)
    assert parsed.to_dict()["size"] == len(message)


def test_any_depth_can_be_read_copied_into_dictionaries_and_dropped():
    message = mailstructure.parse(conftest.deep(100_000))
    assert len(message) == 100_001
    assert message[100_000].depth == 100_000
    assert message[100_000].section is None
    assert message.part("1") == message.root  # a message that is no multipart has one part
    assert message.part("1.1") == message[1]
    assert sum(1 for _ in message.root.walk()) == 100_001
    described = message.to_dict()
    levels, entity = 0, described.pop("root")
    while entity["children"]:
        [entity] = entity["children"]
        levels += 1
    assert levels == 100_000


def test_the_memory_limit_leaves_fields_out():
    try:
        mailstructure.set_memory_limit(64)
        assert len(mailstructure.parse(b"a: b\nc: d\n").root.fields) < 2
    finally:
        mailstructure.set_memory_limit(0xFFFFFFFF)
    assert len(mailstructure.parse(b"a: b\nc: d\n").root.fields) == 2
    for limit in (-1, 1 << 32, 1 << 80):
        with pytest.raises(OverflowError):
            mailstructure.set_memory_limit(limit)
