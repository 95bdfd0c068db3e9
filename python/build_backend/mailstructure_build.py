"""Builds the Python package for pip and other tools (PEP 517), with nothing but a compiler.

All sources of the library are compiled into the extension module, so that the package needs no
other file of this project when it runs. The environment variables CC, CXX, CFLAGS, CXXFLAGS and
LDFLAGS are heeded. The same sources and the same compiler give the same bytes.
"""

import base64
import concurrent.futures
import gzip
import hashlib
import io
import os
import pathlib
import shlex
import subprocess
import sys
import sysconfig
import tarfile
import tempfile
import time
import tomllib
import zipfile

TOP = pathlib.Path(__file__).resolve().parents[2]
PYTHON = TOP / "python"
PROJECT = tomllib.loads((TOP / "pyproject.toml").read_text(encoding="utf-8"))["project"]
NAME = f"{PROJECT['name']}-{PROJECT['version']}"
DIST_INFO = f"{NAME}.dist-info"

# What of the tool tells about messages; all other files there are about files and terminals.
DECODERS = (
    "address_list",
    "base64_front",
    "charset_conversion",
    "charset_names",
    "decoded_size",
    "encoded_text",
    "entity_fields",
    "field_lookup",
    "field_parameters",
    "message_date",
    "message_fields",
    "printable",
    "quoted_printable_size",
    "transfer_decoding",
)
# What a source distribution has, beside the files at the top.
FOLDERS = ("include", "src", "tools/common", "python")
FILES = ("pyproject.toml", "LICENSE", "README.md", "doc/python.md")
# Headers of the standard library that most sources in C++ include. They are compiled once for all
# of them, which halves the time of the build.
COMMON_HEADERS = (
    "algorithm",
    "array",
    "cstddef",
    "cstdint",
    "cstring",
    "functional",
    "istream",
    "memory",
    "optional",
    "string",
    "string_view",
    "utility",
    "vector",
)
# The oldest time that a zip archive can tell.
FIRST_TIME = 315532800


class BuildError(Exception):
    """The package cannot be built; the text says why."""


def sources():
    """All files to compile."""
    return (
        sorted((TOP / "src").rglob("*.cpp"))
        + [TOP / "tools/common" / f"{name}.cpp" for name in DECODERS]
        + sorted((PYTHON / "src").glob("*.c"))
        + sorted((PYTHON / "src").glob("*.cpp"))
    )


def flags(name):
    """The options in an environment variable."""
    return shlex.split(os.environ.get(name, ""))


def compiler_call(source):
    """The command that compiles a source, without input and output."""
    common = [
        "-O2",
        "-DNDEBUG",
        "-fPIC",
        "-fvisibility=hidden",
        f"-ffile-prefix-map={TOP}=.",
        "-DPy_LIMITED_API=0x030b0000",
        f"-I{TOP / 'include'}",
        f"-I{TOP / 'src'}",
        f"-I{TOP / 'tools'}",
        f"-I{sysconfig.get_path('include')}",
    ]
    if source.suffix == ".c":
        return shlex.split(os.environ.get("CC", "cc")) + ["-std=c11", *common, *flags("CFLAGS")]
    cxx = shlex.split(os.environ.get("CXX", "c++"))
    return cxx + ["-std=c++20", "-fvisibility-inlines-hidden", *common, *flags("CXXFLAGS")]


def run(command):
    """Runs a command, whose output is shown only if it fails."""
    done = subprocess.run(command, capture_output=True, text=True, check=False)
    if done.returncode != 0:
        print(done.stdout, done.stderr, file=sys.stderr)
        raise BuildError(
            f"this command failed: {shlex.join(command)}\n"
            "It needs a compiler of C++20, the headers of Python (libpython3-dev on Debian) and\n"
            "those of nettle (nettle-dev)."
        )


def compile_common_headers(folder):
    """Compiles COMMON_HEADERS, and returns the path of a header that has them. The compiler finds
    the compiled form beside it."""
    header = pathlib.Path(folder, "common.h")
    header.write_text("".join(f"#include <{name}>\n" for name in COMMON_HEADERS), encoding="ascii")
    run([*compiler_call(header), "-x", "c++-header", str(header), "-o", f"{header}.gch"])
    return header


def build_extension(folder):
    """Compiles everything, and returns the path of the extension module in that folder."""
    common_headers = compile_common_headers(folder)

    def compile_one(number, source):
        target = pathlib.Path(folder, f"{number}.o")
        included = ["-include", str(common_headers)] if source.suffix == ".cpp" else []
        run([*compiler_call(source), *included, "-c", str(source), "-o", str(target)])
        return str(target)

    with concurrent.futures.ThreadPoolExecutor(os.cpu_count()) as pool:
        objects = list(pool.map(compile_one, *zip(*enumerate(sources()))))
    module = pathlib.Path(folder, "_core.abi3.so")
    exports = f"-Wl,--version-script={PYTHON / 'src/core.map'}"
    cxx = shlex.split(os.environ.get("CXX", "c++"))
    link = [*cxx, "-shared", "-s", "-Wl,--build-id=none", exports, *objects, "-o", str(module)]
    run([*link, *flags("LDFLAGS"), "-lnettle"])
    return module


def metadata():
    """The file METADATA of the package."""
    return (
        "Metadata-Version: 2.1\n"
        f"Name: {PROJECT['name']}\n"
        f"Version: {PROJECT['version']}\n"
        f"Summary: {PROJECT['description']}\n"
        f"License: {PROJECT['license']['text']}\n"
        f"Requires-Python: {PROJECT['requires-python']}\n"
    )


def tag():
    """What the wheel runs on: any Python from 3.11 on, on this platform."""
    platform = sysconfig.get_platform().replace("-", "_").replace(".", "_")
    return f"cp311-abi3-{platform}"


def wheel_file():
    """The file WHEEL of the package."""
    return (
        "Wheel-Version: 1.0\n"
        "Generator: mailstructure_build\n"
        "Root-Is-Purelib: false\n"
        f"Tag: {tag()}\n"
    )


def timestamp():
    """The time stamp of all files in an archive."""
    return max(FIRST_TIME, int(os.environ.get("SOURCE_DATE_EPOCH", FIRST_TIME)))


def package_files():
    """The modules in Python and what belongs to them, as names and bytes."""
    for path in sorted((PYTHON / "mailstructure").iterdir()):
        if path.is_file():
            yield f"mailstructure/{path.name}", path.read_bytes()


def information_files():
    """The files of the folder DIST_INFO but for RECORD, as names and bytes."""
    yield f"{DIST_INFO}/LICENSE", (TOP / "LICENSE").read_bytes()
    yield f"{DIST_INFO}/METADATA", metadata().encode()
    yield f"{DIST_INFO}/WHEEL", wheel_file().encode()


def record_line(name, content):
    """The line in RECORD for a file."""
    digest = base64.urlsafe_b64encode(hashlib.sha256(content).digest()).rstrip(b"=").decode()
    return f"{name},sha256={digest},{len(content)}\n"


def write_wheel(path, files):
    """Writes the files, names and bytes, and the list of them."""
    lines = "".join(record_line(name, content) for name, content in files)
    record = f"{DIST_INFO}/RECORD"
    with zipfile.ZipFile(path, "w", zipfile.ZIP_DEFLATED) as wheel:
        for name, content in [*files, (record, f"{lines}{record},,\n".encode())]:
            member = zipfile.ZipInfo(name, time.gmtime(timestamp())[:6])
            member.compress_type = zipfile.ZIP_DEFLATED
            member.external_attr = 0o644 << 16
            wheel.writestr(member, content)


def get_requires_for_build_wheel(config_settings=None):
    """Other packages that the build needs: none."""
    return []


def get_requires_for_build_sdist(config_settings=None):
    """Other packages that the build needs: none."""
    return []


def prepare_metadata_for_build_wheel(metadata_directory, config_settings=None):
    """Writes what pip wants to know before it builds."""
    folder = pathlib.Path(metadata_directory, DIST_INFO)
    folder.mkdir()
    for name, content in information_files():
        pathlib.Path(metadata_directory, name).write_bytes(content)
    return DIST_INFO


def build_wheel(wheel_directory, config_settings=None, metadata_directory=None):
    """Builds the package, and returns the name of its file in that folder."""
    name = f"{NAME}-{tag()}.whl"
    with tempfile.TemporaryDirectory() as folder:
        module = build_extension(folder).read_bytes()
    files = [*package_files(), ("mailstructure/_core.abi3.so", module), *information_files()]
    write_wheel(pathlib.Path(wheel_directory, name), files)
    return name


def source_files():
    """The files of a source distribution, relative to the top."""
    for name in FILES:
        yield TOP / name
    for folder in FOLDERS:
        for path in sorted((TOP / folder).rglob("*")):
            if path.is_file() and "__pycache__" not in path.parts:
                yield path


def add_source(archive, name, content):
    """Adds a file to a source distribution."""
    member = tarfile.TarInfo(f"{NAME}/{name}")
    member.size, member.mtime, member.mode = len(content), timestamp(), 0o644
    archive.addfile(member, io.BytesIO(content))


def build_sdist(sdist_directory, config_settings=None):
    """Packs the sources, and returns the name of their file in that folder."""
    name = f"{NAME}.tar.gz"
    with (
        open(pathlib.Path(sdist_directory, name), "wb") as file,
        gzip.GzipFile("", "wb", fileobj=file, mtime=timestamp()) as compressed,
        tarfile.open(fileobj=compressed, mode="w", format=tarfile.PAX_FORMAT) as archive,
    ):
        add_source(archive, "PKG-INFO", metadata().encode())
        for path in source_files():
            add_source(archive, path.relative_to(TOP).as_posix(), path.read_bytes())
    return name
