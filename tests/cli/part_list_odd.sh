#!/bin/sh
# Trees that are odd: nothing in it, no parts, a part of no lines, a part beside a message within, a hostile type.
list() {
    echo "$1"
    printf '%b' "$2" | mailstructure part --list
}
list 'nothing' ''
list 'a multipart without parts' 'Content-Type: multipart/mixed; boundary=x1\n\npreamble\n'
list 'a part of no lines' 'Content-Type: multipart/mixed; boundary=x1\n\n--x1\n--x1--\n'
list 'a message that holds none' 'Content-Type: message/rfc822\n\n'
list 'a part beside a message' \
    'Content-Type: message/rfc822\nContent-Type: multipart/mixed; boundary=x1\n\na: 1\nb: 2\n\n1\n--x1\n\n2\n--x1--\n'
list 'a type with a control character and a tab' 'Content-Type: te\033xt/pl\tain\n\n1\n'
