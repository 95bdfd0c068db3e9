"""What people read about the package: help, type stubs, README and the pages in doc/."""

import ast
import doctest
import inspect
import pathlib
import pydoc
import re
import subprocess
import sys

import conftest
import pytest

import mailstructure
from mailstructure import _core

STUB = ast.parse(pathlib.Path(mailstructure.__file__).with_name("_core.pyi").read_text())
CLASSES = (mailstructure.Message, mailstructure.Entity, mailstructure.Field, mailstructure.Parser)


def public_names(of):
    return {name for name in vars(of) if not name.startswith("_")}


def test_every_public_name_is_listed():
    modules = {"annotations"}
    assert set(mailstructure.__all__) == public_names(mailstructure) - modules
    assert len(mailstructure.__all__) == len(set(mailstructure.__all__))
    assert public_names(_core) == set(mailstructure.__all__) & set(vars(_core))


def test_the_stub_has_every_name_and_no_other():
    classes = {node.name: node for node in STUB.body if isinstance(node, ast.ClassDef)}
    functions = {node.name for node in STUB.body if isinstance(node, ast.FunctionDef)}
    assert set(classes) | functions == public_names(_core)
    for made in CLASSES:
        members = [
            node for node in classes[made.__name__].body if isinstance(node, ast.FunctionDef)
        ]
        stubs = {node.name for node in members}
        assert {name for name in stubs if not name.startswith("_")} == public_names(made)
        properties = {node.name for node in members if node.decorator_list}
        assert properties == {
            name for name in public_names(made) if inspect.isdatadescriptor(vars(made)[name])
        }


def test_the_stub_has_the_bases_of_the_exceptions():
    for node in STUB.body:
        if isinstance(node, ast.ClassDef) and node.bases:
            bases = tuple(base.id for base in node.bases)
            assert bases == tuple(base.__name__ for base in getattr(_core, node.name).__bases__)


def test_help_tells_about_everything():
    for made in CLASSES:
        assert inspect.getdoc(made)
        for name in public_names(made):
            assert inspect.getdoc(vars(made)[name]), f"{made.__name__}.{name}"
    text = pydoc.plain(pydoc.render_doc(mailstructure))
    for expected in (
        "Finds the structure of Internet mail",
        "parse(data, /, rules='standard')",
        "section(self, section, /)",
        "to_dict(self, /, file='-')",
        "class Parser(builtins.object)",
        "Parser(rules='standard', *, keep=False)",
    ):
        assert expected in text
    assert max(map(len, text.splitlines())) <= 110


def test_signatures_can_be_asked_for():
    assert str(inspect.signature(mailstructure.parse)) == "(data, /, rules='standard')"
    assert str(inspect.signature(mailstructure.Message.part)) == "(self, section, /)"


def test_the_example_of_the_package_works():
    assert doctest.testmod(mailstructure).attempted > 3
    assert doctest.testmod(mailstructure).failed == 0


def python_texts(document):
    """The Python texts of a Markdown file that import the package."""
    text = (conftest.TOP / document).read_text()
    blocks = re.findall(r"^```python\n(.*?)^```$", text, re.MULTILINE | re.DOTALL)
    return [block for block in blocks if "import mailstructure" in block]


@pytest.mark.parametrize("document", ["README.md", "doc/python.md"])
def test_the_examples_of_the_documents_work(document, tmp_path):
    """They read message.eml; what they print stands in comments after the calls of print."""
    (tmp_path / "message.eml").write_bytes(
        (conftest.TOP / "tests/data/messages/mixed-with-attachment.eml").read_bytes()
    )
    texts = python_texts(document)
    assert texts
    for text in texts:
        done = subprocess.run(
            [sys.executable, "-c", text], capture_output=True, cwd=tmp_path, text=True, check=False
        )
        assert done.stderr == ""
        assert done.stdout.splitlines() == re.findall(r"^# (.*)$", text, re.MULTILINE)


def test_all_places_have_the_same_version():
    version = mailstructure.__version__
    assert f'version = "{version}"' in (conftest.TOP / "pyproject.toml").read_text()
    assert f"VERSION {version}" in (conftest.TOP / "CMakeLists.txt").read_text()


def test_the_example_counts_media_types(tmp_path):
    for name in ("plain.eml", "mixed-with-attachment.eml"):
        (tmp_path / name).write_bytes((conftest.TOP / "tests/data/messages" / name).read_bytes())
    (tmp_path / "folder").mkdir()
    (tmp_path / "folder/empty").write_bytes(b"")
    example = conftest.TOP / "examples/count_types.py"
    done = subprocess.run(
        [sys.executable, example, tmp_path], capture_output=True, text=True, check=True
    )
    rows = [line.split() for line in done.stdout.splitlines()]
    assert rows[0] == ["type", "parts", "bytes", "messages"]
    counted = {row[0]: (int(row[1]), int(row[3])) for row in rows[1:-1]}
    assert counted == {
        "multipart/mixed": (1, 1),
        "multipart/alternative": (1, 1),
        "text/plain": (3, 3),
        "text/html": (1, 1),
        "text/csv": (1, 1),
    }
    assert rows[-1][:2] == ["3", "messages,"]
    wrong = subprocess.run([sys.executable, example], check=False, capture_output=True)
    assert wrong.returncode == 2
