#!/bin/sh
# Cut after 500 bytes.
{
    printf 'Subject: %0500d\nFrom: %0501d\nDate: %0400d' 1 2 3
    printf '\nContent-Type: a/%0600d; charset=%0700d; name=%0800d\n\nx\n' 4 5 6
} | mailstructure tree
