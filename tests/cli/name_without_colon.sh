#!/bin/sh
# The line at fault begins at byte 22.
mailstructure dump messages/name-without-colon.eml
echo "$?"
# What comes after it plays no part, even a stray byte in the same block.
printf 'a: b\r\nSubject\r\n\r\nx\ry\r\n' | mailstructure dump
