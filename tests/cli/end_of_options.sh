#!/bin/sh
cp messages/no-final-newline.eml ./--keep-text
mailstructure dump -- --keep-text
