#!/bin/sh
# Decimal, hexadecimal, and the largest number there is. With 0 there is no field, and so no boundary.
mailstructure dump --memlimit 0 messages/forwarded.eml
mailstructure dump --memlimit 110 messages/no-final-newline.eml messages/plain.eml
mailstructure dump --memlimit=0x6E messages/plain.eml
mailstructure dump --memlimit 4294967295 messages/no-final-newline.eml
mailstructure dump --memlimit 0XFFFFFFFF messages/no-final-newline.eml
# A leading zero means nothing: a field line of 8 bytes is within ten, and would not be within eight.
printf 'a: bcde\n' | mailstructure dump --memlimit 010
