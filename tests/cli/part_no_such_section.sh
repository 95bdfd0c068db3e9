#!/bin/sh
# The nearest section is named, and nothing is written.
for section in 8 99999999999999999999 6.3 6.1.1 1.1 1.TEXT 1.HEADER 6.2.9.9.MIME; do
    mailstructure part "$section" -o written messages/encodings.eml
    echo "$section: exit $?"
done
printf 'Content-Type: multipart/mixed; boundary=x1\n\n' | mailstructure part 1
echo "exit $?"
test ! -e written
