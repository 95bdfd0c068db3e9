#!/bin/sh
for arguments in '--pretty --flat' '--flat --pretty x' '--indent' '--flat=2 x'; do
    # shellcheck disable=SC2086 # several arguments
    mailstructure json $arguments
    echo "$?"
done
