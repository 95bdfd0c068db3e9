#!/bin/sh
# Every kind of section, each between brackets.
for section in HEADER 1.MIME 1 5 6.MIME 6 6.HEADER 6.TEXT 6.1.MIME 6.1 6.2 7; do
    printf '%s [' "$section"
    mailstructure part "$section" messages/encodings.eml || exit
    echo ']'
done
printf 'words in small letters ['
mailstructure part 6.text messages/encodings.eml && echo ']'
for section in HEADER TEXT; do mailstructure part "$section" messages/encodings.eml; done > both
cmp both messages/encodings.eml && mailstructure part '' messages/encodings.eml | cmp - messages/encodings.eml
