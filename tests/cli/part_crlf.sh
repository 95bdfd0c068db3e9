#!/bin/sh
# The line terminator before a boundary line belongs to that line, both its bytes.
for section in 1.1.MIME 1.1 1.2 2; do
    mailstructure part "$section" messages/mixed-with-attachment-crlf.eml | od -A d -c
done
