#!/bin/sh
# The library needs no build system: one compiler command makes a complete shared library. Usage:
# one_command_build.sh COMPILER SOURCE_FOLDER
set -eu
compiler=$1
cd "$2"
output=$(mktemp -d)
trap 'rm -rf "$output"' EXIT
# shellcheck disable=SC2046 # a list of files
"$compiler" -std=c++20 -Iinclude -shared -fPIC -Wl,--no-undefined $(find src -name "*.cpp") \
    -o "$output/libmailstructure.so"
nm -DC --defined-only "$output/libmailstructure.so" |
    grep -q 'T MailStructure::Fill(std::istream&)$'
