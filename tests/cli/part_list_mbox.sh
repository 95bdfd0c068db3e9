#!/bin/sh
# Offsets count from the start of the file, and the message begins behind the separator line.
{ echo 'From ada@mail.example Mon Mar  3 09:00:00 2025' && cat messages/forwarded.eml; } > folder
mailstructure part --list folder || exit
mailstructure part 2.TEXT folder || exit
echo
mailstructure part '' folder | cmp - messages/forwarded.eml
