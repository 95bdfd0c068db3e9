#!/bin/sh
# Whoever read has seen enough: no complaint, be the signal fatal or ignored.
mkfifo pipe
# shellcheck disable=SC2094 # it has no contents
exec 3<> pipe 4> pipe 3>&- # a pipe with an end to write to and none to read from
mailstructure json messages/plain.eml >&4
echo "$?"
trap '' PIPE
mailstructure json messages/plain.eml >&4
echo "$?"
mailstructure json --flat messages/plain.eml >&4
