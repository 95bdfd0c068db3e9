# shellcheck shell=bash disable=SC2154 # the runner sets $program

show "$program" messages/attachments.eml
echo '$ list_parts_c < messages/attachments.eml'
"$program" < messages/attachments.eml | head -n 1
show "$program" no-such-file
show "$program" messages
