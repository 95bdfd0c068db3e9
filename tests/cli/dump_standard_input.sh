#!/bin/sh
# Read when no file is named, and for "-".
mailstructure dump < messages/no-final-newline.eml
# shellcheck disable=SC2094 # nothing is written to the file
mailstructure dump messages/no-final-newline.eml - < messages/no-final-newline.eml
printf 'a: b\n\nthrough a pipe\n' | mailstructure dump --keep-text
