# shellcheck shell=bash disable=SC2154 # the runner sets $program

for path in 1 1.1 1.2 2 3 6 6.1 7 7.1; do
    show "$program" messages/attachments.eml "$path"
done

echo '# Nothing but a header block is forwarded:'
printf 'Content-Type: message/rfc822\n\nSubject: inside\n\n' > head_alone.eml
show "$program" head_alone.eml 1

echo '# Parts that are not there:'
for path in 0 9 1.3 2.1 7.1.1 7.2 1. 1..2 .1 x -1 1x 99999999999999999999; do
    show "$program" messages/attachments.eml "$path" | head -n 2
done

echo '# The whole body:'
show "$program" messages/attachments.eml '' | cksum
sed '1,/^$/d' messages/attachments.eml |
    { echo '$ serve_section messages/attachments.eml '; cat; } | cksum

echo '# The body of a message that is no multipart:'
printf 'Subject: plain\n\none\ntwo' > plain.eml
show "$program" plain.eml 1
echo
show "$program" plain.eml 1.1

echo '# Deeper than a program can recurse:'
nested 100000 > deep.eml
path=$(printf '1.%.0s' $(seq 20000))1
(ulimit -s 512 && "$program" deep.eml "$path" | wc -l)

: > empty.eml
show "$program" empty.eml 1
show "$program" messages/stray.eml 1
show "$program" messages/missing.eml 1
show "$program" messages 1
show "$program" /dev/null 1
truncate -s 4G big.eml
show "$program" big.eml 1
show "$program" plain.eml
echo '# Output that cannot be written:'
"$program" plain.eml 1 > /dev/full || echo "status $?"
