#!/bin/sh
mailstructure dump messages/plain.eml >&- 2> complaints
echo "$?"
grep '^mailstructure' complaints
