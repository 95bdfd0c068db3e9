#!/bin/sh
# Offsets are 32 bits wide.
truncate -s 4294967296 large.eml
for command in tree dump json; do
    mailstructure "$command" large.eml
    echo "$?"
done
