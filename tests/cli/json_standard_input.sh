#!/bin/sh
# A file, a pipe, and a file that happens to be called "-".
mailstructure json < messages/no-final-newline.eml
printf 'Subject: a\n\nb\n' | mailstructure json - messages/no-final-newline.eml
printf 'Subject: c\n' > ./-
mailstructure json -- ./-
