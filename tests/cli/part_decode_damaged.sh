#!/bin/sh
# What was decoded is kept; the complaint names the byte of the file.
mailstructure part --decode 3 messages/encodings.eml 2> complaint
echo "] exit $?"
cat complaint
printf 'there is: '
tail -c "+$(($(sed 's/.* //' complaint) + 1))" messages/encodings.eml | head -n 1
mailstructure part --decode 4 messages/encodings.eml
echo "] exit $?"
mailstructure part --decode -o kept 3 messages/encodings.eml
echo "exit $?"
cat kept
echo ']'
mailstructure part --decode -o none 5 messages/encodings.eml
echo "exit $?"
ls none 2> /dev/null || echo 'nothing is written of an unknown encoding'
awk 'BEGIN { printf "Content-Transfer-Encoding: "; while (++at < 1000) printf "long"; print "\n" }' |
    mailstructure part --decode 1
