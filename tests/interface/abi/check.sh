#!/usr/bin/env bash
# Compares the binary interface of the shared library, as its debugging information tells it, with the description kept
# in the project: sizes, offsets and types of the members, parameters and results of the functions, symbols.
# check.sh LIBRARY [--update]
#
# The description is made of a build by g++ for x86-64. It is the same at each level of optimisation, with assertions
# and without the fast paths; another compiler describes the standard library in other words, and is not compared.
set -euo pipefail
library=$1
here=$(cd "$(dirname "${BASH_SOURCE[0]}")" && pwd)
kept=$here/mailstructure.abi

skip() {
    echo "skipped: $*"
    exit 77
}

for program in abidw abidiff; do
    command -v $program > /dev/null || skip "abigail-tools is not installed"
done
[[ $(uname -m) == x86_64 ]] || skip "the description is for x86-64"

work=$(mktemp -d)
trap 'rm -rf "$work"' EXIT

# No place of the build and no line number is in it.
abidw --suppr "$here/kept.suppr" --type-id-style sequence --no-corpus-path --no-comp-dir-path --no-show-locs \
    --no-elf-needed --no-parameter-names --out-file "$work/all.abi" "$library"
sed -E "s# path='[^']*/(src/[^']*)'# path='\1'#" "$work/all.abi" > "$work/now.abi"
grep -q "name='m_root'" "$work/now.abi" || skip "the library was built without debugging information"

if [[ ${2-} == --update ]]; then
    cp "$work/now.abi" "$kept"
    exit
fi

# abidiff has no words for what it ignores; its status is 0 if there is nothing to tell.
differs() { ! abidiff --suppr "$here/kept.suppr" "$kept" "$1" > "$work/differences"; }

if differs "$work/now.abi"; then
    cat "$work/differences"
    echo "The binary interface has changed. If it is meant to, see 'The binary interface' in HACKING.md."
    exit 1
fi

# What it would have noticed: a member that moves, one of another type, a larger record, a function that is gone.
# NAME and a sed script, which has to change something.
notices() {
    sed -E "$2" "$work/now.abi" > "$work/changed.abi"
    ! cmp -s "$work/now.abi" "$work/changed.abi" || { echo "$1: the change changes nothing"; exit 1; }
    differs "$work/changed.abi" || { echo "$1 went unnoticed"; exit 1; }
}
notices "a member that moves" "s/layout-offset-in-bits='1600'/layout-offset-in-bits='1632'/"
notices "a larger record" "s/(name='header' size-in-bits=)'768'/\1'832'/"
flag=$(sed -nE "s/.*<type-decl name='bool'.* id='(type-id-[0-9]+)'.*/\1/p" "$work/now.abi")
notices "a member of another type" "/name='m_lines'/s/type-id='type-id-[0-9]+'/type-id='$flag'/"
notices "a function that is gone" "/<elf-symbol name='_ZN13MailStructure7MimeObj5clearEv'/d"
notices "a function that is new" "s#^( *<elf-symbol name='_ZN13MailStructure7MimeObj5)clear(Ev'.*)#&\n\1empty\2#"
