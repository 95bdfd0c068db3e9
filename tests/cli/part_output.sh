#!/bin/sh
# A new file; a file that is there is kept, unless --force says otherwise, and keeps its permissions. The
# name - is standard output.
mailstructure part 7 -o new messages/encodings.eml && cat new && echo ']'
mailstructure part 1 --output new messages/encodings.eml
echo "exit $?" && cat new && echo ']'
chmod 604 new && ln -s new link
mailstructure part TEXT --force -o link messages/plain.eml && cat new && stat -c %a new && stat -c %F link
mailstructure part 7 --force -o another messages/encodings.eml && cat another && echo ']'
mailstructure part '' --force -o another another && cat another && echo ']'
mailstructure part 7 -o - messages/encodings.eml && echo ']'
ls -A
