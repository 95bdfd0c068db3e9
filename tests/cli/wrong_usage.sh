#!/bin/sh
# What is no command is the name of a file to draw.
mailstructure frobnicate
echo "$?"
mailstructure --frobnicate
echo "$?"
mailstructure --version messages/plain.eml
echo "$?"
mailstructure tree --color=sometimes messages/plain.eml
echo "$?"
mailstructure tree --color
echo "$?"
mailstructure tree --keep-text messages/plain.eml
echo "$?"
mailstructure dump --frobnicate messages/plain.eml
echo "$?"
mailstructure dump messages/plain.eml -k
echo "$?"
mailstructure dump --keep-text=perhaps messages/plain.eml
echo "$?"
mailstructure dump --keep-text=2 messages/plain.eml
echo "$?"
mailstructure tree --ascii=true --ascii=false messages/plain.eml
echo "$?"
mailstructure tree --help=2
