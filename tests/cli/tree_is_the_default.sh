#!/bin/sh
# Without a command, files are drawn; so is standard input when there are none.
mailstructure messages/no-final-newline.eml
mailstructure --bytes messages/no-final-newline.eml
mailstructure < messages/no-final-newline.eml
mailstructure - < messages/no-final-newline.eml
# A file with a command's name
cp messages/no-final-newline.eml dump
mailstructure ./dump
mailstructure -- dump
mailstructure tree dump
