#!/bin/sh
# One line each, with the offset of the first stray byte; no dump.
mailstructure dump messages/stray-cr.eml
echo "$?"
mailstructure dump --keep-text messages/stray-nul.eml
echo "$?"
printf 'a: b\r\n\r\nx\r\r\n' | mailstructure dump -
echo "$?"
# Legal: directly before an LF or the end.
printf 'a: b\0\n\nx\r' | mailstructure dump
