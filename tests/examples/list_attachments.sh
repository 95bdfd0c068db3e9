# shellcheck shell=bash disable=SC2154 # the runner sets $program

show "$program" messages/attachments.eml

echo '# Names that would steer a terminal, or that do not end:'
show "$program" messages/hostile.eml

echo '# Encoded names, and names in sections, are shown as they stand:'
printf '%s\n' 'Content-Type: multipart/mixed; boundary=b' '' \
    --b "Content-Disposition: inline; size=1; filename*=utf-8''%C3%A9.png" '' x \
    --b 'Content-Disposition: inline; filename*0="two pieces"; filename*1=.png' '' x \
    --b "Content-Type: image/png; name*=utf-8''%C3%A8.png" '' x \
    --b 'Content-Disposition: inline; filenames=none' '' x \
    --b-- > encoded.eml
show "$program" encoded.eml

echo '# The range holds what it says:'
range=$("$program" messages/attachments.eml |
    sed -n 's/^application.pdf: \([0-9]*\) bytes from byte \([0-9]*\) .*/\1 \2/p')
tail -c "+$((${range#* } + 1))" messages/attachments.eml | head -c "${range% *}"

echo '# The separator line of an mbox is passed over:'
first_of_mbox > mbox.eml
show "$program" mbox.eml

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
