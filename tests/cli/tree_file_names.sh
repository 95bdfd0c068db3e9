#!/bin/sh
# From either field, decoded where that can be done.
{
    printf 'Subject: =?iso-8859-1?q?r=E9sum=E9?= and\n =?UTF-8?B?4oKs?=\n'
    printf 'Content-Type: multipart/mixed; boundary=b\n\n'
    printf -- '--b\nContent-Type: a/plain; name="in type.txt"\n\nx\n'
    printf -- '--b\nContent-Type: a/both; name=b.txt\nContent-Disposition: attachment; filename="c d.txt"\n\nx\n'
    printf -- '--b\nContent-Disposition: inline; filename*0*=utf-8'\'\''%%E2%%82; filename*1*=%%AC; filename*2=.txt\n\nx\n'
    printf -- '--b\nContent-Type: a/word; name="=?utf-8?b?w6kudHh0?="\n\nx\n'
    printf -- '--b\nContent-Type: a/unknown; name="=?x-odd?q?a?="\n\nx\n'
    printf -- '--b\nContent-Type: a/quote; name="a \\" b\\\\c"\n\nx\n'
    printf -- '--b\nContent-Type: a/semicolon; name="a;b"\nContent-Transfer-Encoding: base64 (as ever)\n\nx\n--b--\n'
} > names.eml
LC_ALL=C.UTF-8 mailstructure tree names.eml
mailstructure tree names.eml
