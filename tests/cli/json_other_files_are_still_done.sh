#!/bin/sh
# Nothing of a message that fails is printed, be it at its very end.
{
    cat messages/forwarded.eml
    head -c 1000000 /dev/zero | tr '\0' '\n'
    printf 'stray\rbyte\n'
} > late
printf 'From: a\r\nSubject\r\n' > nocolon
for form in '' --flat --pretty; do
    # shellcheck disable=SC2086 # no word where it is empty
    mailstructure json $form messages/stray-cr.eml messages/no-final-newline.eml late absent nocolon
    echo "$?"
done
