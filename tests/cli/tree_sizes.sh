#!/bin/sh
# Up to 1023 bytes as they are; then in KiB and MiB to the nearest tenth. Or in bytes always.
{
    printf 'Content-Type: multipart/mixed; boundary=b\n\n'
    for size in 1 1023 1024 1075 1076 1536 1048524 1048525 1048576 3000000; do
        printf -- '--b\nContent-Type: a/b\n\n%0*d\n' "$((size - 1))" 0
    done
    printf -- '--b--\n'
} > large.eml
mailstructure tree large.eml
mailstructure tree --bytes large.eml
