#!/bin/sh
mailstructure dump no-such-file messages/no-final-newline.eml messages/stray-cr.eml . messages/plain.eml \
    messages/name-without-colon.eml
