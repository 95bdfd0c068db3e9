#!/bin/sh
# What doc/check.md shows of the tool is what it prints: check_example.sh SOURCE_FOLDER TOOL
# The example shows the message first, and then the findings.
set -eu
source=$(cd "$1" && pwd)
tool=$(realpath "$2")
work=$(mktemp -d)
trap 'rm -rf "$work"' EXIT
cd "$work"

# shellcheck disable=SC2016 # the backticks are those of the text
sed -n '/^\$ cat letter\.eml$/,/^```$/p' "$source/doc/check.md" | sed '$d' > shown
sed -e 1d -e '/^\$ mailstructure/,$d' shown > letter.eml
sed -n '/^\$ mailstructure check letter\.eml$/,$p' shown | sed 1d > findings
test -s letter.eml
test -s findings
"$tool" check letter.eml < /dev/null | diff -u findings -
