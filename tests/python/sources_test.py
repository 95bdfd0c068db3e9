"""The list of the files that pip compiles, held against what these files include. So it is seen
without a compiler that a file is missing.
"""

import re

import conftest


def included_headers(sources):
    """The headers of tools/common that sources include, directly or through one another."""
    headers = set()
    waiting = list(sources)
    while waiting:
        text = waiting.pop().read_text(encoding="utf-8")
        for name in re.findall(r'^#include "(common/\w+\.h)"$', text, re.MULTILINE):
            header = conftest.TOP / "tools" / name
            if header not in headers:
                headers.add(header)
                waiting.append(header)
    return headers


def test_pip_compiles_the_sources_of_all_headers(monkeypatch):
    monkeypatch.syspath_prepend(conftest.TOP / "python/build_backend")
    import mailstructure_build

    compiled = mailstructure_build.sources()
    included = [header.with_suffix(".cpp") for header in included_headers(compiled)]
    of_the_tool = [path for path in compiled if path.is_relative_to(conftest.TOP / "tools")]
    assert sorted(of_the_tool) == sorted(path for path in included if path.exists())
