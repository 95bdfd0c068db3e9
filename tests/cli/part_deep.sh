#!/bin/sh
# Sections with more than 100 numbers are not listed, but are found.
awk 'BEGIN {
    for (i = 0; i < 300; ++i) print "MIME-Version: 1.0\nContent-Type: message/rfc822\n"
    print "Subject: innermost\nTo: nobody\n\n(found)"
}' > deep
mailstructure part --list deep | wc -l
mailstructure part --list deep 2> /dev/null | tail -n 1 | cut -f 4 | awk -F . '{ print NF " numbers in the last name" }'
ones=$(yes 1. | head -n 299 | tr -d '\n')
mailstructure part "${ones}1.HEADER" deep
mailstructure part "${ones}1.1" deep
mailstructure part "${ones}1.2" deep 2>&1 | grep -o 'the nearest is .*' | awk -F . '{ print NF " numbers in the nearest" }'
