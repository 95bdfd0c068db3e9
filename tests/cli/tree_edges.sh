#!/bin/sh
# Nothing, a line end, a byte, a header block alone, no final newline.
mailstructure tree /dev/null
printf '\n' | mailstructure tree
printf 'x' | mailstructure tree
printf 'Subject: s\n' | mailstructure tree
mailstructure tree messages/no-final-newline.eml
