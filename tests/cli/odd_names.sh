#!/bin/sh
# Names that look like something else.
for name in '[a,b]' '++' dump --keep-text ''; do
    mailstructure dump -- "$name"
done
mailstructure dump '[a,b]' '++' dump
mailstructure dump '{}'
mailstructure dump '[]' '%%'
cp messages/no-final-newline.eml ./-
mailstructure dump ./-
