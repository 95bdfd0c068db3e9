#!/bin/sh
# A first word that is like a command, and that is no file, is not taken for a file; nothing is drawn.
for word in parts prat par pa PART jsno tre Dump dumpp list help version; do
    mailstructure "$word" messages/plain.eml
    echo "$?"
done
# Not like any, or not first, or a file.
mailstructure parties messages/plain.eml
echo "$?"
mailstructure messages/plain.eml parts
echo "$?"
mailstructure tree parts
echo "$?"
cp messages/plain.eml parts
mailstructure parts
echo "$?"
ln -s nowhere tre
mailstructure tre
