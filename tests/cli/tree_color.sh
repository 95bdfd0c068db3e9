#!/bin/sh
# Asked for, or on a terminal that wants it. `script` runs the command on a terminal of its own.
mailstructure tree --color=always messages/forwarded.eml
mailstructure tree --color=never messages/no-final-newline.eml
mailstructure tree --color auto messages/no-final-newline.eml

# on_terminal COMMAND: whether there is colour in what it prints
on_terminal() {
    if script -qec "$1" /dev/null | grep -q "$(printf '\033')"; then echo "colour: $1"; else echo "no colour: $1"; fi
}
export TERM=xterm
unset NO_COLOR
on_terminal 'mailstructure tree messages/forwarded.eml'
on_terminal 'mailstructure tree --color=never messages/forwarded.eml'
on_terminal 'mailstructure tree messages/forwarded.eml | cat'
on_terminal 'NO_COLOR= mailstructure tree messages/forwarded.eml'
on_terminal 'NO_COLOR=1 mailstructure tree messages/forwarded.eml'
on_terminal 'NO_COLOR=1 mailstructure tree --color=always messages/forwarded.eml'
on_terminal 'TERM=dumb mailstructure tree messages/forwarded.eml'
