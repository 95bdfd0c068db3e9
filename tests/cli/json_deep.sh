#!/bin/sh
# A hundred thousand messages within one another, 256 KiB of stack: as many lines in the flat form; in the document,
# braces that match, as deep as they must be.
awk 'BEGIN {
    for (i = 1; i < 100000; i++) print "MIME-Version: 1.0\nContent-Type: message/rfc822\n"
    print "Subject: innermost\n\nx"
}' > deep
# shellcheck disable=SC3045 # the shells of the machines that we test on know it
ulimit -s 256
mailstructure json --flat deep > flat
echo "$?"
wc -l < flat
tail -n 1 flat
mailstructure json deep > document
echo "$?"
wc -l < document
tr -cd '{}' < document | fold -w 1 |
    awk '{ open += $0 == "{" ? 1 : -1; if (open > deepest) deepest = open } END { print open, deepest }'
mailstructure json --pretty deep | tail -n 3
