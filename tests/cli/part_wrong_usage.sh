#!/bin/sh
# What is no section, and options that do not go together. Nothing is read or written.
try() {
    mailstructure part "$@" < /dev/null
    echo "exit $?"
}
try
try 0 no-such-file
try 1.02 no-such-file
try 1. no-such-file
try MIME no-such-file
try body no-such-file
try 'HEADER.FIELDS (Subject)' no-such-file
try 1 no-such-file another
try --list no-such-file another
try --list --decode no-such-file
try --list --range body no-such-file
try --list -o written no-such-file
try --force 1 no-such-file
try --range all 1 no-such-file
try --range body 1.MIME no-such-file
try --decode 1.MIME no-such-file
try --decode HEADER no-such-file
try --decode '' no-such-file
try --decode --range mime 1 no-such-file
try -o
try messages/plain.eml 1
try messages/plain.eml
for flag in decode force list; do
    try --$flag=2 1 no-such-file
done
test ! -e written
