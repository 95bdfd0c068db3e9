#!/bin/sh
# One line, however much there is to write.
mailstructure tree messages/plain.eml messages/forwarded.eml > /dev/full
echo "$?"
awk 'BEGIN {
    printf "Content-Type: multipart/mixed; boundary=b\n\n"
    for (at = 0; at < 5000; ++at) printf "--b\nContent-Type: a/b; name*=iso-8859-1'\'\''%%e9\n\nx\n"
}' | mailstructure tree > /dev/full
