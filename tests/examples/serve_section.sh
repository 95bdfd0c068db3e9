# shellcheck shell=bash disable=SC2154 # the runner sets $program

for path in 1 1.1 1.2 2 3 6 6.1 7 7.1; do
    show "$program" "$path" messages/attachments.eml
    echo # a part ends before the line terminator of the delimiter line
done

echo '# Header blocks, and fields of one:'
for section in 1.MIME 6.HEADER '6.HEADER.FIELDS (content-type)'; do
    show "$program" "$section" messages/attachments.eml
done

echo '# Nothing but a header block is forwarded:'
printf 'Content-Type: message/rfc822\n\nSubject: inside\n\n' > head_alone.eml
show "$program" 1 head_alone.eml

echo '# A forwarded message has its epilogue:'
printf '%s\n' 'Content-Type: message/rfc822' '' 'Content-Type: multipart/mixed; boundary=b' '' \
    --b '' one --b-- after > epilogue.eml
show "$program" 1 epilogue.eml

echo '# The separator line of an mbox is passed over:'
first_of_mbox > mbox.eml
show "$program" 2 mbox.eml
echo

echo '# Parts that are not there:'
for path in 0 9 1.3 2.1 7.1.1 7.2 1. 1..2 .1 x -1 1x 99999999999999999999; do
    show "$program" "$path" messages/attachments.eml | head -n 2
done

echo '# The whole message, and all but its header block:'
"$program" '' messages/attachments.eml | cmp - messages/attachments.eml
"$program" TEXT messages/attachments.eml | cmp - <(sed '1,/^$/d' messages/attachments.eml)

echo '# The body of a message that is no multipart:'
printf 'Subject: plain\n\none\ntwo' > plain.eml
show "$program" 1 plain.eml
echo
show "$program" 1.1 plain.eml

echo '# Deeper than a program can recurse:'
nested 100000 > deep.eml
path=$(printf '1.%.0s' $(seq 20000))1
(ulimit -s 512 && "$program" "$path" deep.eml | wc -l)

: > empty.eml
show "$program" 1 empty.eml
show "$program" 1 messages/stray.eml
show "$program" 1 messages/missing.eml
show "$program" 1 messages
show "$program" 1 /dev/null
truncate -s 4G big.eml
show "$program" 1 big.eml
show "$program" plain.eml
echo '# Output that cannot be written:'
"$program" 1 plain.eml > /dev/full || echo "status $?"
