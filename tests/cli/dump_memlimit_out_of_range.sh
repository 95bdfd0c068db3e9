#!/bin/sh
for number in 4294967296 0x100000000 -1 +1 '' ' 1' 1k 0x 0x-1 1e3 99999999999999999999; do
    mailstructure dump --memlimit "$number" messages/plain.eml
    echo "$?"
done
mailstructure dump messages/plain.eml --memlimit
