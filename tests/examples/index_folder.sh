# shellcheck shell=bash disable=SC2154 # the runner sets $program

here=$PWD
# indexed ARGUMENT...: as show, but with HERE in place of the folder of the test.
indexed() { show "$program" mail.db "$@" | sed "s#$here#HERE#g"; }

truncate -s 4G messages/big.eml
echo '# A message that is too big is left out, the others are added:'
indexed add messages
indexed find application/pdf
indexed find IMAGE/PNG
indexed find text/plain
indexed find "x' OR '1'='1"
indexed fetch 6
indexed fetch 1000
indexed fetch x

echo '# Adding again replaces:'
rm messages/big.eml
indexed add messages
indexed find image/png

echo '# Served while the message is as it was, refused when it has changed:'
number=$("$program" mail.db find image/png | cut -d ' ' -f 1)
indexed fetch "$number"
touch -d 2020-01-01 messages/attachments.eml
indexed fetch "$number"
rm messages/attachments.eml
indexed fetch "$number"

echo '# Deeper than a program can recurse:'
mkdir deep
nested 100000 > deep/deep.eml
(ulimit -s 512 && indexed add deep)
indexed find text/plain | tail -n 1

indexed add missing
indexed drop everything
show "$program" missing/mail.db find text/plain
echo 'this is no database, whatever its name may say' > text.db
show "$program" text.db find text/plain
echo '# Output that cannot be written:'
number=$("$program" mail.db find text/plain | tail -n 1 | cut -d ' ' -f 1)
"$program" mail.db fetch "$number" > /dev/full || echo "status $?"
