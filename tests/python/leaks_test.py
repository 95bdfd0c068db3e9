"""No call keeps memory or references."""

import gc
import resource
import sys

import conftest
import pytest

import mailstructure


def resident_bytes():
    with open("/proc/self/statm", encoding="ascii") as numbers:
        return int(numbers.read().split()[1]) * resource.getpagesize()


def growth_of(call, times):
    """By how many bytes the process has grown after that many calls."""
    gc.collect()
    before = resident_bytes()
    for _ in range(times):
        call()
    gc.collect()
    return resident_bytes() - before


def use_everything(message):
    """Calls every function and property of a message."""
    message.to_dict()
    for entity in message.walk():
        for name in dir(entity):
            getattr(entity, name)
        for field in entity.fields:
            for name in dir(field):
                getattr(field, name)
        list(entity.walk())
        entity.field("none")
        repr(entity)
    message.section("HEADER.FIELDS (Subject Date)")
    for text in ("9.9", "x"):
        with pytest.raises(mailstructure.NoSectionError):
            message.part(text)


def feed(message):
    parser = mailstructure.Parser(keep=True)
    for start in range(0, len(message), 50):
        parser.feed(message[start : start + 50])
    parser.finish().to_dict()
    parser.feed(b"dropped")


def refuse():
    with pytest.raises(mailstructure.StrayByteError):
        mailstructure.parse(b"a: b\n\nx\ry\n", "classic")
    with pytest.raises(ValueError):
        mailstructure.parse(b"", "none")
    with pytest.raises(TypeError):
        mailstructure.parse("")
    with pytest.raises(ValueError):
        mailstructure.Parser("none")


BIG = bytes(100_000)

CALLS = {
    "parse": (lambda: mailstructure.parse(conftest.NESTED + BIG), 2000),
    "use": (lambda: use_everything(mailstructure.parse(conftest.NESTED)), 100),
    "feed": (lambda: feed(conftest.NESTED), 400),
    "refuse": (refuse, 1000),
    "tables": (lambda: mailstructure.parse(conftest.NESTED).entity_table.tolist(), 1000),
    "slices": (lambda: mailstructure.parse(bytearray(BIG)).root.body, 2000),
}


@pytest.mark.parametrize(("call", "times"), CALLS.values(), ids=CALLS)
def test_the_process_does_not_grow(call, times):
    """The allocator takes memory from the system in large pieces, now and then. What is kept for
    each call shows in every round, if it is 50 bytes or more."""
    allowed = times * 50
    assert any(growth_of(call, times) < allowed for _ in range(6))


def test_no_references_are_left():
    constants = (None, True, False, mailstructure.Message, mailstructure.Entity)
    message = bytes(conftest.NESTED)
    use_everything(mailstructure.parse(message))
    gc.collect()
    counted = [sys.getrefcount(each) for each in (*constants, message)]
    for _ in range(50):
        use_everything(mailstructure.parse(message))
        feed(message)
        refuse()
    gc.collect()
    after = [sys.getrefcount(each) for each in (*constants, message)]
    assert all(abs(new - old) < 50 for old, new in zip(counted, after, strict=True))


def test_any_number_of_messages_may_end_together():
    """The parsers of a few of them are kept for the next messages."""
    for _ in range(3):
        messages = [mailstructure.parse(b"a: %d\n\n" % number) for number in range(1000)]
        values = [message.root.field("a").value for message in messages]
        assert values == [str(number) for number in range(1000)]
        messages.clear()
