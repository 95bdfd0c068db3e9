#!/bin/sh
# Quoted-printable, base64, no encoding; a section, a message of one part, a recorded range.
mailstructure part --decode 1 messages/encodings.eml | od -A d -c
mailstructure part --decode 2 messages/encodings.eml | od -A d -t x1
mailstructure part --decode 7 messages/encodings.eml && echo ']'
mailstructure part --decode --range body 2 messages/encodings.eml | od -A d -t x1
printf 'Content-Transfer-Encoding: base64\n\nT25lIHBhcnQu\n' > one-part
mailstructure part --decode TEXT one-part && echo ']'
mailstructure part --decode 1 one-part && echo ']'
