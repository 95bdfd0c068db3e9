#!/bin/sh
# A line for each section: offset, length, type and name. Each is what the tool writes for that name.
mailstructure part --list messages/encodings.eml || exit
echo "shell: it can be read"
tab=$(printf '\t')
mailstructure part --list messages/encodings.eml | while IFS=$tab read -r offset length type section; do
    tail -c "+$((offset + 1))" messages/encodings.eml | head -c "$length" > bytes
    mailstructure part "$section" messages/encodings.eml | cmp - bytes || echo "$section ($type) differs"
done
