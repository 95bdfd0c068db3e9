#!/usr/bin/env bash
# Compares the binary interface of the shared library, as its debugging information describes it,
# with the description kept in the project: sizes, offsets and types of the members, parameters and
# results of the functions, symbols. Usage: check.sh LIBRARY [--update]
#
# The description comes from a build by g++ for x86-64. It is the same at each level of
# optimisation, with assertions, and without the fast paths. Another compiler describes the standard
# library differently, so that its builds are not compared.
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

# The description names no folder of the build and no line.
abidw --suppr "$here/kept.suppr" --type-id-style sequence --no-corpus-path --no-comp-dir-path \
    --no-show-locs --no-elf-needed --no-parameter-names --out-file "$work/all.abi" "$library"
sed -E "s# path='[^']*/(src/[^']*)'# path='\1'#" "$work/all.abi" > "$work/now.abi"
grep -q "name='m_root'" "$work/now.abi" ||
    skip "the library was built without debugging information"

if [[ ${2-} == --update ]]; then
    cp "$work/now.abi" "$kept"
    exit
fi

# abidiff does not print differences that it ignores; its status is 0 if there are no others.
differs() { ! abidiff --suppr "$here/kept.suppr" "$kept" "$1" > "$work/differences"; }

if differs "$work/now.abi"; then
    cat "$work/differences"
    echo "The binary interface has changed."
    echo "If the change is meant, see 'The binary interface' in HACKING.md."
    exit 1
fi

# Changes that the comparison must notice. notices NAME SCRIPT: changes the description by the sed
# script, which has to change something, and compares.
notices() {
    sed -E "$2" "$work/now.abi" > "$work/changed.abi"
    ! cmp -s "$work/now.abi" "$work/changed.abi" ||
        { echo "$1: the change changes nothing"; exit 1; }
    differs "$work/changed.abi" || { echo "$1 went unnoticed"; exit 1; }
}
notices "a member that moves" "s/layout-offset-in-bits='1600'/layout-offset-in-bits='1632'/"
notices "a larger record" "s/(name='header' size-in-bits=)'768'/\1'832'/"
notices "a larger record for C" "s/(name='mail_structure_entity' size-in-bits=)'800'/\1'832'/"
flag=$(sed -nE "s/.*<type-decl name='bool'.* id='(type-id-[0-9]+)'.*/\1/p" "$work/now.abi")
notices "a member of another type" "/name='m_lines'/s/type-id='type-id-[0-9]+'/type-id='$flag'/"
notices "a function that is gone" "/<elf-symbol name='_ZN13MailStructure7MimeObj5clearEv'/d"
notices "a function that is new" \
    "s#^( *<elf-symbol name='_ZN13MailStructure7MimeObj5)clear(Ev'.*)#&\n\1empty\2#"
