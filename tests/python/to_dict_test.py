"""to_dict() against what the command-line tool prints of the same file."""

import gc
import os
import re

import conftest
import pytest

import mailstructure


def cut(path, folder):
    """The file, or a copy of it without the separator line of an mbox, which the tool passes over
    and which is no part of a message."""
    data = path.read_bytes()
    if not re.match(rb"From (?![ \t]*:)", data):
        return path
    copy = folder / f"{len(list(folder.iterdir()))}.eml"
    copy.write_bytes(data.partition(b"\n")[2])
    return copy


def described(path, rules):
    """The dictionary; None if the rules refuse the message."""
    try:
        return mailstructure.parse(path.read_bytes(), rules).to_dict(path)
    except mailstructure.ParseError:
        return None


def compare(paths, rules, tool_documents):
    """Compares the documents of all files, and returns how many of them are messages."""
    messages = 0
    for path, document in zip(paths, tool_documents(rules, paths), strict=True):
        assert described(path, rules) == document, path
        messages += document is not None
    return messages


@pytest.mark.parametrize("rules", ["standard", "classic"])
def test_of_the_samples(rules, tool_documents, tmp_path):
    paths = [cut(path, tmp_path) for path in conftest.SAMPLES]
    assert compare(paths, rules, tool_documents) > 10


@pytest.mark.parametrize("rules", ["standard", "classic"])
def test_of_hostile_mail(rules, tool_documents, tmp_path):
    paths = []
    for name, message in conftest.HOSTILE.items():
        paths.append(tmp_path / name)
        paths[-1].write_bytes(message)
    assert compare(paths, rules, tool_documents) > 5


@pytest.mark.parametrize("rules", ["standard", "classic"])
def test_of_real_mail(rules, corpus, tool_documents, tmp_path):
    paths = [cut(path, tmp_path) for path in corpus]
    assert compare(paths, rules, tool_documents) > len(paths) // 2


def test_the_file_is_standard_input_unless_it_is_named(nested):
    message = mailstructure.parse(nested)
    assert message.to_dict()["file"] == "-"
    assert message.to_dict("a.eml") == message.to_dict(file="a.eml") | {"file": "a.eml"}
    assert message.to_dict(b"a.eml")["file"] == "a.eml"


def test_a_file_name_may_have_any_bytes(tool_documents, tmp_path):
    path = tmp_path / os.fsdecode(b"\xff.eml")
    path.write_bytes(b"a: b\n")
    document = mailstructure.parse(b"a: b\n").to_dict(path)
    assert document["file"].endswith("/\ufffd.eml")
    assert [odd["member"] for odd in document["not_utf8"]] == ["/file"]
    command_line = tool_documents("standard", [])
    assert command_line == []


def test_wrong_arguments_are_refused(nested):
    message = mailstructure.parse(nested)
    for arguments in ((1,), ("a", "b"), ("a\0b",)):
        with pytest.raises((TypeError, ValueError)):
            message.to_dict(*arguments)


def test_the_collector_of_cycles_is_as_it_was(nested):
    message = mailstructure.parse(nested)
    message.to_dict()
    assert gc.isenabled()
    gc.disable()
    try:
        message.to_dict()
        assert not gc.isenabled()
    finally:
        gc.enable()
