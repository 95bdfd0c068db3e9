"""Sections as IMAP numbers them."""

import pytest

import mailstructure


@pytest.fixture
def message(nested):
    return mailstructure.parse(nested)


@pytest.mark.parametrize(
    ("section", "index"),
    [("", 0), ("TEXT", 0), ("1", 1), ("1.MIME", 1), ("2", 2), ("2.HEADER", 3), ("2.1", 3)],
)
def test_a_section_names_an_entity(message, section, index):
    assert message.part(section) == message[index]


@pytest.mark.parametrize(
    ("section", "expected"),
    [
        ("1", b"one"),
        ("1.MIME", b"Content-Type: TEXT/Html\n\n"),
        ("2", b"Subject: inner\n\ntwo"),
        ("2.header", b"Subject: inner\n\n"),
        ("2.TEXT", b"two"),
        ("HEADER.FIELDS (To)", b"To: ada@mail.example\n\n"),
        ("HEADER.FIELDS (Date to)", b"To: ada@mail.example\nDate: today\n\n"),
    ],
)
def test_a_section_has_bytes(message, section, expected):
    view = message.section(section)
    assert isinstance(view, memoryview)
    assert view.readonly
    assert view == expected


def test_the_empty_text_is_the_message(message, nested):
    assert message.section("") == nested


@pytest.mark.parametrize("section", ["3", "1.1.1", "1.HEADER", "4294967296", "2.2"])
def test_a_section_that_does_not_exist_is_an_error(message, section):
    for find in (message.part, message.section):
        with pytest.raises(mailstructure.NoSectionError, match="the nearest one is") as raised:
            find(section)
        assert not isinstance(raised.value, mailstructure.SectionTextError)


@pytest.mark.parametrize("section", ["0", "x", "1.", "1.x", "HEADER.FIELDS (", "\0", "\udc80"])
def test_a_text_that_is_no_section_is_an_error(message, section):
    for find in (message.part, message.section):
        with pytest.raises(mailstructure.SectionTextError, match="expected at offset"):
            find(section)


def test_a_section_is_a_string(message):
    for section in (b"1", 1, None):
        with pytest.raises((TypeError, AttributeError)):
            message.part(section)


def test_every_entity_is_found_by_its_name(message):
    assert [message.part(entity.section) for entity in message] == list(message)
