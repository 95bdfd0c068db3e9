#!/bin/sh
# The offset counts from the first byte of the file, over many blocks.
{
    printf 'a: b\n\n'
    head -c 999994 /dev/zero | tr '\0' x
    printf '\rx\n'
} | mailstructure dump
