#!/bin/sh
# Offsets count from the start of the file, the line that is left out included.
printf 'From ben@mail.example Mon Mar  3 09:15:00 2025\nSubject: a\n\nb\n' > folder
mailstructure json folder
mailstructure json --flat folder
