#!/bin/sh
# Nothing from the message makes the terminal do anything, wherever it stands.
escape=$(printf '\033[2J\033]0;title\007')
override=$(printf '\342\200\256')
{
    printf 'Subject: %s clear\177\302\233\n' "$escape"
    printf 'From: "%slmth.gpj" <a@mail.example>\n' "$override"
    printf 'Date: not UTF-8: \351\300\257\355\240\200\n'
    printf 'Content-Type: multipart/mixed; boundary=b\n\n'
    printf -- '--b\nContent-Type: te%sxt/pl%sain; charset="%s"; name="%sgpj.exe"\n' \
        "$escape" "$override" "$escape" "$override"
    printf 'Content-Transfer-Encoding: %s\n\nx\n' "$escape"
    printf -- '--b\nContent-Type: a/b; name="=?utf-8?q?=1B[31m=E2=80=AE_=22_quote?="\n\nx\n'
    printf -- '--b\nContent-Type: a/b; name*=utf-8'\'\''%%1b%%00%%0a%%e2%%80%%8b.exe%%20%%20\n\nx\n'
    printf -- '--b\nContent-Type: message/rfc822\n\nSubject: %s within\n\nx\n--b--\n' "$escape"
} > hostile.eml
LC_ALL=C.UTF-8 mailstructure tree hostile.eml
LC_ALL=C mailstructure tree hostile.eml
