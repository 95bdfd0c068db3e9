#!/bin/sh
mailstructure dump --keep-text messages/no-final-newline.eml
