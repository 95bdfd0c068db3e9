#!/bin/sh
# Quotes, a line feed, bytes that are not UTF-8; on standard error they are escaped.
for name in 'a "b" \c' 'line
feed' "$(printf 'gr\374n')"; do
    printf 'A: b\n' > "$name"
    mailstructure json --flat "$name"
    mailstructure json "$name"
    rm "$name"
    mailstructure json "$name"
done
