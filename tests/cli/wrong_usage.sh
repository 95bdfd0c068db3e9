#!/bin/sh
mailstructure
echo "$?"
mailstructure frobnicate
echo "$?"
mailstructure --frobnicate
echo "$?"
mailstructure dump --frobnicate messages/plain.eml
echo "$?"
mailstructure dump messages/plain.eml -k
echo "$?"
mailstructure dump --keep-text=perhaps messages/plain.eml
