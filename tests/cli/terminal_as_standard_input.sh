#!/bin/sh
# `script` runs the command on a terminal of its own. Asked for by name, the terminal would be read.
script -qec 'mailstructure dump; echo "$?"' /dev/null
