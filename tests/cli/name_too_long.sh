#!/bin/sh
# No file system takes a name of 300 bytes.
name=$(printf '%0300d' 0)
mailstructure dump "$name"
