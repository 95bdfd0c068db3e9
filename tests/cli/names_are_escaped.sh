#!/bin/sh
# Control bytes, those of the upper half too, do not reach the terminal; letters of any alphabet do.
mailstructure dump "$(printf 'a\tb\033[31m\177\\\302\233\303\251')"
mailstructure dump --"$(printf 'x\033y\ny')"
