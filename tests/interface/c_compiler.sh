#!/bin/sh
# Builds the example in C with a C compiler as strict C99, and runs it.
# Usage: c_compiler.sh COMPILER SOURCE_FOLDER LIBRARY_FOLDER PROGRAM
set -eu
compiler=$1 sources=$2 libraries=$3 program=$4
if ! command -v "$compiler" > /dev/null; then
    echo "skipped: there is no $compiler"
    exit 77
fi

strict='-pedantic-errors -Wall -Wextra -Werror'
[ "$compiler" != tcc ] || strict='-Wall -Werror'
# shellcheck disable=SC2086 # a list of options
"$compiler" -std=c99 $strict -I "$sources/include" \
    "$sources/examples/list_parts_c.c" -L "$libraries" -lmailstructure -o "$program"
LD_LIBRARY_PATH=$libraries "$program" "$sources/tests/data/messages/forwarded.eml" |
    grep -q '^  *message/rfc822: [0-9]* bytes from byte [0-9]*$'
