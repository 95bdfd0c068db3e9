#!/bin/sh
# The recorded ranges, which are whole lines.
for range in header mime body contents epilogue; do
    printf '%s [' "$range"
    mailstructure part --range "$range" 1 messages/encodings.eml || exit
    echo ']'
done
printf 'epilogue of the message ['
mailstructure part --range epilogue '' messages/encodings.eml && echo ']'
printf 'header of the message within ['
mailstructure part 6.TEXT --range header messages/encodings.eml && echo ']'
