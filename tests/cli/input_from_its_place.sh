#!/bin/sh
# Standard input is read from where it stands, to its end, and once.
{
    read -r line
    echo "$line"
    mailstructure dump - -
} < messages/plain.eml
