#!/bin/sh
# One line, whether little is left to write or much, and no further file is read.
for form in '' --flat --pretty; do
    # shellcheck disable=SC2086 # no word where it is empty
    mailstructure json $form messages/plain.eml messages/stray-cr.eml > /dev/full
    echo "$?"
done
{
    echo 'Content-Type: multipart/mixed; boundary=b'
    echo
    yes -- --b | head -n 5000
} > many
mailstructure json --flat many > /dev/full
echo "$?"
mailstructure json many > /dev/full
