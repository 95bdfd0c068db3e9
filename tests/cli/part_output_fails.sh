#!/bin/sh
# No folder, no room, no such input: a complaint, and nothing is left behind.
mailstructure part 7 -o no/such messages/encodings.eml
echo "exit $?"
mailstructure part 7 --force -o . messages/encodings.eml
echo "exit $?"
mailstructure part 7 --force -o /dev/full messages/encodings.eml
echo "exit $?"
mailstructure part 1 -o new no-such-file
echo "exit $?"
mailstructure part 1 -o new messages/stray-nul.eml
echo "exit $?"
echo old > old
(trap '' XFSZ && ulimit -f 1 && awk 'BEGIN { print "a: b\n"; for (i = 0; i < 3000; ++i) print "0123456789" }' |
    mailstructure part TEXT --force -o old; echo "exit $?")
cat old
ls -A
