# What the tests of the packages share. To be sourced.
# shellcheck shell=bash

set -euo pipefail

fail() {
    echo "$*" >&2
    exit 1
}

skip_without() {
    local program
    for program in "$@"; do
        command -v "$program" > /dev/null || { echo "skipped: there is no $program"; exit 77; }
    done
}

# copy_sources FROM TO: copies the files of which the packages are made, and no others.
copy_sources() {
    mkdir -p "$2"
    (cd "$1" && cp -r CHANGELOG.md CMakeLists.txt CMakePresets.json HACKING.md LICENSE README.md \
        SECURITY.md cmake doc examples include man pyproject.toml python share src tools \
        "$2" &&
        find "$2/python" -name __pycache__ -prune -exec rm -r {} + &&
        mkdir "$2/bench" && cp bench/*.md bench/*.svg "$2/bench")
}

# make_packages SOURCES: makes the packages in SOURCES/build/package.
make_packages() {
    (cd "$1" && cmake --preset package &&
        cmake --build --preset package --parallel 2 && cpack --preset package)
}
