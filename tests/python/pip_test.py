"""The package as pip builds and installs it, from the sources and without a network."""

import os
import pathlib
import subprocess
import sys
import tarfile

import conftest
import pytest

PIP = [sys.executable, "-m", "pip", "--disable-pip-version-check", "--no-input"]


def run(command, **options):
    done = subprocess.run(command, capture_output=True, text=True, check=False, **options)
    assert done.returncode == 0, done.stdout + done.stderr
    return done.stdout


@pytest.fixture(scope="module")
def installed(tmp_path_factory):
    """A folder into which pip has installed the package from a source distribution."""
    if subprocess.run([*PIP, "--version"], capture_output=True, check=False).returncode != 0:
        pytest.skip("there is no pip")
    folder = tmp_path_factory.mktemp("pip")
    backend = (
        "import sys; sys.path.insert(0, 'python/build_backend')\n"
        "import mailstructure_build; print(mailstructure_build.build_sdist(sys.argv[1]))"
    )
    name = run([sys.executable, "-c", backend, folder], cwd=conftest.TOP).strip()
    with tarfile.open(folder / name) as archive:
        archive.extractall(folder)
    [sources] = [path for path in folder.iterdir() if path.is_dir()]
    # No index, and a proxy that nobody answers: a build that asks the network fails.
    environment = os.environ | {"https_proxy": "http://127.0.0.1:9", "PIP_NO_CACHE_DIR": "1"}
    # To save time; the Debian package is tested in its optimised form.
    environment |= {"CFLAGS": "-O0", "CXXFLAGS": "-O0"}
    target = folder / "installed"
    run([*PIP, "install", "--no-index", "--target", target, "."], cwd=sources, env=environment)
    return target


def test_the_installed_package_has_its_files(installed):
    files = {path.name for path in (installed / "mailstructure").iterdir() if path.is_file()}
    assert files == {"__init__.py", "_core.abi3.so", "_core.pyi", "_decoding.py", "py.typed"}
    [information] = installed.glob("*.dist-info")
    assert information.name == "mailstructure-1.0.0.dist-info"
    assert "Tag: cp311-abi3-linux" in (information / "WHEEL").read_text()


def test_the_installed_package_needs_no_other_file_of_ours(installed):
    module = installed / "mailstructure/_core.abi3.so"
    needed = run(["ldd", module])
    assert "not found" not in needed
    assert "libmailstructure" not in needed
    exported = run(["nm", "-D", "--defined-only", module]).split()
    assert [name for name in exported if len(name) > 1 and not name.isalnum()] == ["PyInit__core"]


def test_the_installed_package_passes_the_other_tests(installed):
    here = pathlib.Path(__file__).parent
    tests = [here / f"{stem}_test.py" for stem in ("buffers", "entity", "to_dict")]
    environment = os.environ | {"PYTHONPATH": str(installed)}
    pytest_call = [sys.executable, "-m", "pytest", "-q", "-p", "no:cacheprovider"]
    output = run([*pytest_call, *tests], env=environment)
    assert "passed" in output
    place = run(
        [sys.executable, "-c", "import mailstructure; print(mailstructure.__file__)"],
        env=environment,
    )
    assert place.startswith(str(installed))
