#!/bin/sh
# The separator line is no part of the message, and counts in every offset.
{
    printf 'From clara@mail.example Tue Mar  4 18:40:12 2025\n'
    cat messages/mixed-with-attachment.eml
} > message.mbox
mailstructure tree message.mbox
mailstructure dump message.mbox
mailstructure tree < message.mbox
printf 'From nobody' | mailstructure tree
