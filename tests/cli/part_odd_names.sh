#!/bin/sh
# Files with names of all kinds.
cp messages/plain.eml ./--list
cp messages/plain.eml 1
cp messages/plain.eml "$(printf 'a\033b')"
for name in ./--list 1 "$(printf 'a\033b')"; do mailstructure part 1 "$name" | cksum; done
mailstructure part -- 1 --list | cksum
mailstructure part 2 "$(printf 'a\033b')"
