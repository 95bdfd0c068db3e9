#!/bin/sh
# Compares the symbols that the shared library exports with the list kept in the project. A
# difference is a change of the binary interface: hosts linked with the old library may not start
# with the new one. Usage: exported_symbols.sh NM LIBRARY LIST [--update]
set -eu
nm=$1 library=$2 list=$3

exported() { "$nm" -DC --defined-only "$library" | cut -d ' ' -f 2- | LC_ALL=C sort; }

if [ "${4-}" = --update ]; then
    exported > "$list"
else
    exported | diff -u "$list" -
fi
