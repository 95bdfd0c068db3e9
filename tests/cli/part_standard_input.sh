#!/bin/sh
# By the name - and without a name.
mailstructure part 2.TEXT - < messages/forwarded.eml && echo ']'
mailstructure part 2.TEXT < messages/forwarded.eml && echo ']'
mailstructure part --list < messages/forwarded.eml | head -n 1
tail -n +1 messages/forwarded.eml | mailstructure part 9 # a pipe
