#!/usr/bin/env bash
# Runs the examples of the manual page and compares what they print with what the page shows:
# manual_examples.sh [--update] TOOL
# An example is a display (.Bd to .Ed) in EXAMPLES. Lines that begin with "$ " are commands; the
# other lines are what these print. The examples run in a folder with the file message.eml and the
# folder inbox, which holds a message that cannot be read.
set -u
here=$(cd "$(dirname "$0")/.." && pwd)
page=$here/../man/mailstructure.1
update=no
[[ $1 != --update ]] || { update=yes && shift; }
tool=$(realpath "$1")

work=$(mktemp -d)
trap 'rm -rf "$work"' EXIT
mkdir "$work/bin" "$work/folder" "$work/folder/inbox"
ln -s "$tool" "$work/bin/mailstructure"
# A pager that shows nothing, but tells when there is no colour to show.
# shellcheck disable=SC2016 # the stub expands it
printf '#!/bin/sh\ngrep -q "$(printf "\\033")" || echo "no colour"\n' > "$work/bin/less"
chmod +x "$work/bin/less"
cp "$here/data/messages/mixed-with-attachment.eml" "$work/folder/message.eml"
cp "$here"/data/messages/{plain,stray-cr}.eml "$work/folder/inbox"

# From the text of the page to what it shows, and back.
unescape() { sed -e 's/\\-/-/g' -e 's/\\(ga/`/g' -e "s/\\\\(aq/'/g" -e 's/^\\&//' -e 's/\\e/\\/g'; }
escape() {
    sed -e 's/\\/\\e/g' -e 's/-/\\-/g' -e 's/`/\\(ga/g' -e "s/'/\\\\(aq/g" -e 's/^\./\\\&./'
}

# print_of COMMAND: what a user sees of it.
print_of() (
    cd "$work/folder" || exit
    PATH=$work/bin:$PATH LC_ALL=C bash -c "$1" < /dev/null 2>&1
)

# Copies the page, with what the commands print now in the displays of EXAMPLES.
section='' display=no commands=0
while IFS= read -r line; do
    [[ $line != .Sh* ]] || section=$line
    [[ $line != .Ed* ]] || display=no
    if [[ $display == no ]]; then
        printf '%s\n' "$line"
    elif [[ $line == '$ '* ]]; then
        printf '%s\n' "$line"
        print_of "$(unescape <<< "${line#'$ '}")" | escape
        commands=$((commands + 1))
    fi
    [[ $section != '.Sh EXAMPLES' || $line != .Bd* ]] || display=yes
done < "$page" > "$work/page"

# Fewer would mean that the displays were not found.
if ((commands < 5)); then
    echo "only $commands examples found" >&2
    exit 1
fi
if [[ $update == yes ]]; then
    cp "$work/page" "$page"
else
    diff -u --label "the page" --label "what the examples print" "$page" "$work/page"
fi
