#!/usr/bin/env bash
# Every rule in doc/standard.md names tests that there are, and every row, table and test of the
# rules in tests/parser/standard/ is named there.

set -euo pipefail

top=$(cd "$(dirname "${BASH_SOURCE[0]}")/../.." && pwd)
document=$top/doc/standard.md
tests=$top/tests/parser/standard
rules=36
status=0

fail() { echo "$*" >&2; status=1; }

rows() { sed -nE 's/^    \{"([a-z][a-z0-9_]*)".*/\1/p' "$@"; }
tables() { sed -nE 's/.* text_case ([a-z_]+)\[\] = .*/\1/p' "$tests/field_values.h"; }
# test_names SUITE: the tests of the suites whose names match.
test_names() {
    grep -hoE "^TEST[_P]*\($1, [a-z0-9_]+" "$tests"/*_test.cpp | sed 's/.* //'
}
# What the document must name: each message, each table of field values, each test of the rules.
to_be_named() {
    rows "$tests"/*_messages.h
    tables
    test_names '(standard_rule_set|standard_lines)'
}
# What it may name besides: single values, and tests of the parts.
known() {
    to_be_named
    rows "$tests/field_values.h"
    test_names '[a-z_]+'
}

# Each rule on a line: its number, then what its paragraph "Tests:" names.
named() {
    awk '/^### [0-9]+[.] / { rule = $2 + 0; print ""; printf "%d", rule; tests = 0 }
         /^#/ { tests = 0 }
         /^Tests: / { tests = 1 }
         /^$/ { tests = 0 }
         tests { gsub(/Tests:|`/, ""); printf " %s", $0 }
         END { print "" }' "$document" | sed 1d
}

[[ $(named | cut -d ' ' -f 1 | tr '\n' ' ') == "$(seq -s ' ' $rules) " ]] ||
    fail "$document: the rules are not those from 1 to $rules"
all_known=$(known | sort -u)
while read -r rule names; do
    [[ $names ]] || fail "$document: rule $rule names no test"
    for name in $names; do
        grep -qx "$name" <<< "$all_known" || fail "$document: rule $rule: there is no test $name"
    done
done < <(named)
for name in $(comm -23 <(to_be_named | sort -u) <(named | tr ' ' '\n' | sort -u)); do
    fail "$document: no rule names the test $name"
done
exit "$status"
