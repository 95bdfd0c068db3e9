#!/bin/sh
# Standard output takes no more.
mailstructure part TEXT messages/plain.eml > /dev/full
echo "exit $?"
mailstructure part --list messages/plain.eml > /dev/full
echo "exit $?"
