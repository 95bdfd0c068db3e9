#!/bin/sh
# One line, however much there is to write.
mailstructure dump messages/plain.eml messages/forwarded.eml > /dev/full 2> complaints
echo "$?"
grep -c 'Dumping email structure' complaints
grep '^mailstructure' complaints
mailstructure --help > /dev/full
echo "$?"
mailstructure --version > /dev/full
