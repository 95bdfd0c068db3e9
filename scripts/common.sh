# What the scripts share: the packages that each job needs, and functions that install packages,
# build and run tests. To be sourced.
# shellcheck shell=bash

set -euo pipefail

top=$(cd "$(dirname "${BASH_SOURCE[0]}")/.." && pwd)

build_packages=(cmake g++ libarchive-dev libcli11-dev libsqlite3-dev ninja-build nettle-dev
    rapidjson-dev)
# What the package for Python is built with, beside these.
python_packages=(libpython3-dev python3)
# What our Debian packages, and hosts that use them, are built and checked with; see the end of
# tests/package/CMakeLists.txt.
packaging_packages=(abigail-tools clang doxygen dpkg-dev libmilter-dev lintian mandoc
    miltertest pkg-config tcc)
arm_packages=(g++-aarch64-linux-gnu googletest qemu-user-static)
test_packages=("${build_packages[@]}" "${python_packages[@]}" "${arm_packages[@]}"
    "${packaging_packages[@]}" fish libgtest-dev parallel python3-jsonschema python3-numpy
    python3-pip python3-pytest valgrind zsh)
fuzz_packages=("${build_packages[@]}" clang libclang-rt-14-dev xz-utils)
# Other mail parsers: tests/peers holds this library against them, bench/ measures them beside it.
peer_packages=(dovecot-core dovecot-dev libgmime-3.0-dev procmail)
# What scans on a cluster are tested with.
cluster_packages=(munge slurm-client slurmctld slurmd)
# What the pictures of tests/pictures are taken with.
# shellcheck disable=SC2034 # for those who source this
picture_packages=(chromium fonts-dejavu-core python3-pil)
# shellcheck disable=SC2034 # for those who source this
check_packages=("${test_packages[@]}" "${fuzz_packages[@]}" "${peer_packages[@]}"
    "${cluster_packages[@]}" clang-format-14 shellcheck)

is_installed() {
    [[ $(dpkg-query -W -f '${db:Status-Status}' "$1" 2> /dev/null) == installed ]]
}

# install_missing PACKAGE...: installs those that are missing. Prints nothing if none is.
install_missing() {
    command -v dpkg-query > /dev/null || return 0 # not Debian: the build tells what is missing
    local package missing=()
    for package in "$@"; do
        is_installed "$package" || missing+=("$package")
    done
    ((${#missing[@]})) || return 0
    if [[ $(id -u) != 0 ]]; then
        echo "These packages are missing, and only root can install them: ${missing[*]}" >&2
        return 1
    fi
    echo "Installing ${missing[*]}" >&2
    export DEBIAN_FRONTEND=noninteractive
    if ! { apt-get -qq update && apt-get -qq install -y --no-install-recommends "${missing[@]}"; } \
        < /dev/null > /dev/null 2>&1; then
        echo "Could not install them. Run apt-get by hand to see why." >&2
        return 1
    fi
}

# quietly COMMAND...: prints the output of the command only if it fails.
quietly() {
    local log status=0
    log=$(mktemp)
    "$@" > "$log" 2>&1 < /dev/null || status=$?
    ((status == 0)) || cat "$log" >&2
    rm -f "$log"
    return "$status"
}

# build PRESET [TARGET...]
build() {
    local preset=$1 targets=()
    shift
    (($# == 0)) || targets=(--target "$@")
    (cd "$top" && quietly cmake --preset "$preset" \
        && quietly cmake --build --preset "$preset" "${targets[@]}")
}

# run_tests PRESET [CTEST_OPTION...]: runs the tests that have been built. Ends with ctest's
# summary.
run_tests() {
    local preset=$1
    shift
    # Some tests run against real mail, if there is a folder of it beside the checkout.
    if [[ -z ${MAILSTRUCTURE_CORPUS-} && -d $top/../shared/corpus ]]; then
        MAILSTRUCTURE_CORPUS=$(cd "$top/../shared/corpus" && pwd)
        export MAILSTRUCTURE_CORPUS
    fi
    (cd "$top" && ctest --preset "$preset" --parallel "$(nproc)" "$@" < /dev/null)
}
