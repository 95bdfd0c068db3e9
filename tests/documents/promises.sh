#!/usr/bin/env bash
# Each promise in SECURITY.md names tests that there are, and its figures are those of these tests.
# The figures of heap and kept text are compared with measured ones by heap_tests.

set -euo pipefail

top=$(cd "$(dirname "${BASH_SOURCE[0]}")/../.." && pwd)
security=$top/SECURITY.md
status=0

fail() { echo "SECURITY.md: $*" >&2; status=1; }

# The paragraphs of the section "Promises", one a line.
promises() {
    sed -n '/^## Promises$/,/^## What a message/p' "$security" | sed '1d;$d' |
        awk 'BEGIN { RS = "" } { gsub(/\n/, " "); print }'
}

# The tests and executables that the build makes of the folder tests/.
built() {
    find "$top/tests" -name CMakeLists.txt -exec cat {} + | tr '\n' ' ' |
        grep -oE '(mailstructure_test\(|add_executable\(|NAME) *[a-z_0-9]+' | sed -E 's/.*[( ]//'
}

# figure FILE PATTERN: the number that the pattern's one group matches, and nothing else.
figure() {
    tr -s ' \n' ' ' < "$1" | grep -oE "$2" | grep -oE '[0-9]+([.][0-9]+)?' | head -1
}

count=0
while read -r promise; do
    ((++count))
    # shellcheck disable=SC2016 # the backticks are those of the document
    names=$(grep -oE '`[a-z_0-9]+`' <<< "${promise##*Held by}" | tr -d '`') || true
    [[ $promise == '**'* && $promise == *'Held by'* && $names ]] ||
        fail "no test holds this promise: $promise"
    for name in $names; do
        built | grep -qx "$name" || fail "there is no test $name"
    done
done < <(promises)
((count > 0)) || fail 'no promises found'

factor=$(figure "$security" 'factor of more than [0-9.]+[0-9]')
grep -qF "ratio > ${factor:-none} " "$top/tests/cost/growth.sh" ||
    fail "instructions may not grow by the factor '$factor' in tests/cost/growth.sh"
kib=$(figure "$security" 'a million levels on a stack of [0-9]+ KiB')
grep -qF "1000002, ${kib:-none} * 1024" "$top/tests/hostile/depth_test.cpp" ||
    fail "a million levels do not get a stack of '$kib' KiB in tests/hostile/depth_test.cpp"
exit "$status"
