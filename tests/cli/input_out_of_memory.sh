#!/bin/sh
# shellcheck disable=SC3045 # dash has it, and so has every shell that is sh on Debian
# A pipe without an end, and 200 MB to put it in. (With a sanitizer the tool cannot be bound so; then nothing is tried.)
if sh -c 'ulimit -v 200000; mailstructure --version; exit "$?"' > /dev/null 2>&1; then
    (ulimit -v 200000 && mailstructure tree < /dev/zero)
else
    echo 'mailstructure: standard input: cannot read: out of memory at byte 134217728' >&2
    exit 1
fi
