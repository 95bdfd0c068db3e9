# shellcheck shell=bash disable=SC2154 # the runner sets $program

show "$program" messages/attachments.eml

echo '# The file that it reads when none is named:'
show "$program"
cp messages/stray.eml message.eml
show "$program"

echo '# The separator line of an mbox is passed over:'
first_of_mbox > mbox.eml
show "$program" mbox.eml

echo '# A folder can be opened, but not read:'
show "$program" messages
show "$program" messages/missing.eml
: > empty.eml
show "$program" empty.eml
echo '# Output that cannot be written:'
"$program" messages/attachments.eml > /dev/full || echo "status $?"
