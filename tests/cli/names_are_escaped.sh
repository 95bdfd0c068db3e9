#!/bin/sh
# Control bytes, those of the upper half too, do not reach the terminal; letters of any alphabet do where it knows them.
name=$(printf 'a\tb\033[31m\177\\\302\233\303\251\377\342\200\256')
mailstructure dump "$name"
LC_ALL=C.UTF-8 mailstructure dump "$name"
mailstructure dump --"$(printf 'x\033y\ny')"
