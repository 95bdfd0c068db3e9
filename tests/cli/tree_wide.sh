#!/bin/sh
# As many parts in one.
awk 'BEGIN {
    printf "Content-Type: multipart/mixed; boundary=b\n\n"
    for (at = 0; at < 100000; ++at) printf "--b\n\nx\n"
}' | mailstructure tree > drawn
echo "$?"
sed -n '1,3p;$p' drawn
wc -l < drawn
