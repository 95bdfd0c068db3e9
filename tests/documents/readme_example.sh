#!/bin/sh
# The first C++ text in README.md is the example that is compiled: readme_example.sh SOURCE_FOLDER
set -eu
# shellcheck disable=SC2016 # the backticks are those of the text
sed -n '/^```cpp$/,/^```$/p' "$1/README.md" | sed '/^```$/q' | sed '1d;$d' \
    | diff -u "$1/examples/list_parts.cpp" -
