#!/usr/bin/env bash
# The manual page of the tool lists every charset that it converts: charset_list.sh SOURCE_FOLDER
# A charset is listed if one of its names is a word of the page, or lies in one of its ranges.
set -euo pipefail
source=$1

# The words under CHARSETS, with "A1 to A3" written out as A1 A2 A3; letters and digits alone.
words=$(sed -n '/^\.Sh CHARSETS/,/^\.Sh ENVIRONMENT/p' "$source/man/mailstructure.1" |
    tr '\n' ' ' | tr -d ',;' | awk '{
        for (at = 1; at <= NF; at++) {
            print $at
            if ($at != "to") continue
            last = $(at + 1)
            stem = last
            sub(/[0-9]+$/, "", stem)
            for (n = substr($(at - 1), length(stem) + 1) + 0;
                 n < substr(last, length(stem) + 1) + 0; n++)
                print stem n
        }
    }' | tr '[:upper:]' '[:lower:]' | tr -cd '[:alnum:]\n')

# Each row of the table on a line: its names, with blanks between them.
rows=$(tr -d '\n' < "$source/tools/common/charset_names.cpp" |
    grep -oE 'charset_names\{"[^}]*\}' | sed -E 's/"[[:blank:]]*"//g; s/.*, *"//; s/".*//')
if (($(wc -l <<< "$rows") < 40)); then
    echo 'the table of charsets was not found' >&2
    exit 1
fi
while read -r names; do
    # shellcheck disable=SC2086 # several words
    grep -qxF -f <(printf '%s\n' $names) <<< "$words" || {
        echo "not in the manual page: $names" >&2
        missing=1
    }
done <<< "$rows"
exit "${missing-0}"
