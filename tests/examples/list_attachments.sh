# shellcheck shell=bash disable=SC2154 # the runner sets $program

show "$program" messages/attachments.eml

echo '# Names that would steer a terminal, or that do not end:'
show "$program" messages/hostile.eml

echo '# The range holds what it says:'
range=$("$program" messages/attachments.eml |
    sed -n 's/^application.pdf: \([0-9]*\) bytes from byte \([0-9]*\) .*/\1 \2/p')
tail -c "+$((${range#* } + 1))" messages/attachments.eml | head -c "${range% *}"

echo '# Deeper than a program can recurse:'
nested 100000 > deep.eml
(ulimit -s 512 && show "$program" deep.eml)

show "$program" messages/stray.eml
show "$program" messages/missing.eml
show "$program" messages
show "$program"
: > empty.eml
show "$program" empty.eml
echo '# Output that cannot be written:'
"$program" messages/attachments.eml > /dev/full || echo "status $?"
