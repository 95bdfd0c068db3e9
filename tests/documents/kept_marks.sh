#!/usr/bin/env bash
# Every behaviour that doc/behaviour.md names is marked where the code decides it: by a comment that
# begins with "Kept:" and names its tests. A mark without a test fails, and so does one whose test
# does not exist. With --list it checks nothing and prints each mark on a line, after its place.

set -euo pipefail

top=$(cd "$(dirname "${BASH_SOURCE[0]}")/../.." && pwd)
status=0

# Each mark on one line, after its place: the comment from "Kept:" on to its end.
# shellcheck disable=SC2016 # awk expands these
marks() {
    find "$top/src" -name '*.h' -o -name '*.cpp' | sort | xargs awk -v top="$top/" '
        function flush() { if (mark) print place ": " mark; mark = "" }
        FNR == 1 { flush() }
        /\/\/\/? Kept:/ { flush(); place = substr(FILENAME, length(top) + 1) ":" FNR
                          sub(/.*\/\/\/? Kept:/, "Kept:"); mark = $0; next }
        mark && /^ *\/\// { sub(/^ *\/\/\/? */, ""); mark = mark " " $0; next }
        { flush() }
        END { flush() }'
}
named() { grep -oE '\bkeeps_[a-z0-9_]+' | sort -u; }

if [[ ${1-} == --list ]]; then
    marks
    exit
fi
if marks | grep -v keeps_ >&2; then
    echo "these marks name no test" >&2
    status=1
fi
diff <(named < "$top/doc/behaviour.md") <(marks | named) || status=1
exit "$status"
