#!/bin/sh
# A header field longer than any block stands before the line at fault.
{
    printf 'a: '
    head -c 199995 /dev/zero | tr '\0' x
    printf '\r\nSubject\r\n'
} | mailstructure dump
