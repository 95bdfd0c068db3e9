#!/bin/sh
# The strokes end at some depth, and so do the section numbers, or the output would grow with the square of the depth.
awk 'BEGIN { for (at = 0; at < 100000; ++at) printf "C:m\n\n" }' > messages_within.eml
awk 'BEGIN {
    for (at = 0; at < 50000; ++at) printf "Content-Type: multipart/mixed; boundary=%d\n\n--%d\n", at, at
    printf "\nx\n"
    for (at = 50000; at-- > 0;) printf "--%d--\nepilogue\n", at
}' > multiparts_within.eml
for file in messages_within.eml multiparts_within.eml; do
    LC_ALL=C.UTF-8 mailstructure tree "$file" > drawn
    echo "$?"
    sed -n '1,3p;24,28p;105,108p;$p' drawn
    wc -l < drawn
    test "$(wc -c < drawn)" -lt "$((300 * $(wc -l < drawn)))" && echo linear
done
