#!/usr/bin/env bash
# doc/check.md describes each name of a finding once, and no other.
# findings.sh SOURCE_FOLDER
set -euo pipefail
sources=$1

names=$(sed -nE 's/.*level::(note|fault|danger), "([a-z0-9-]+)".*/\2/p' \
    "$sources/src/findings/names.cpp")
[[ $(wc -l <<< "$names") -gt 50 ]] || { echo "the names are not where they were"; exit 1; }

# A list item begins with one name or with several.
described() {
    # shellcheck disable=SC2016 # the backticks are those of the text
    awk '/^- `/ { sub(/:.*/, ""); print }' "$sources/doc/check.md" |
        grep -oE '`[a-z0-9-]+`' | tr -d '`'
}
diff <(sort <<< "$names") <(described | sort)
