#!/bin/sh
# What README.md shows of the tool is what it prints: readme_tool.sh SOURCE_FOLDER TOOL
set -eu
source=$(cd "$1" && pwd)
tool=$(realpath "$2")
work=$(mktemp -d)
trap 'rm -rf "$work"' EXIT

# From the first call to the end of the block that it stands in.
awk '/^\$ mailstructure / { inside = 1 } /^```$/ && inside { exit } inside' \
    "$source/README.md" > "$work/shown"
sed -n 's/^\$ mailstructure//p' "$work/shown" > "$work/calls"
test -s "$work/calls"

cp "$source/tests/data/messages/mixed-with-attachment.eml" "$work/message.eml"
cd "$work"
while read -r arguments; do
    echo "\$ mailstructure $arguments"
    # shellcheck disable=SC2086 # several words
    LC_ALL=C.UTF-8 "$tool" $arguments < /dev/null
done < calls > printed
diff -u shown printed
