#!/bin/sh
# Each under its name; those that are no messages are named on standard error, and the others are still done.
mailstructure tree messages/no-final-newline.eml no-such-file messages/stray-cr.eml . - \
    messages/name-without-colon.eml messages/forwarded.eml < messages/plain.eml
