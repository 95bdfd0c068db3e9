#!/usr/bin/env bash
# Compares what bash offers with what the tool's help says: completion_matches_help.sh TOOL
# Every command, every option and every word that an option takes is offered, and nothing else. Of
# an option that has a short and a long name, the long one is offered.
set -u
here=$(cd "$(dirname "$0")/.." && pwd)
tool=$(realpath "$1")
# shellcheck source=../../tools/completion/mailstructure
. "$here/../tools/completion/mailstructure"

work=$(mktemp -d)
trap 'rm -rf "$work"' EXIT
cd "$work" || exit # it is empty, so that no file is offered
status=0

# offered WORD...: prints what is offered for the last of the words, one offer a line.
offered() {
    COMP_WORDS=("$tool" "$@")
    COMP_CWORD=$#
    _mailstructure "$tool"
    printf '%s\n' "${COMPREPLY[@]-}"
}

# section_of_help NAME [COMMAND]: prints the lines of that section of the help.
section_of_help() {
    "$tool" "${@:2}" --help | sed -n "/^$1:/,/^\$/p" | grep '^  '
}

# options_of [COMMAND]: prints the first long name of each option in the help.
options_of() {
    section_of_help Options "$@" | sed -nE 's/^ +(-.,)?(--[a-z0-9-]+).*/\2/p'
}

# words_for COMMAND OPTION: prints the words that the option takes, which the tool lists in its
# complaint about any other word. Prints nothing for an option that does not choose between words.
words_for() {
    local section=()
    [[ $1 != part ]] || section=(1)
    "$tool" "$1" "$2=no-such-word" "${section[@]}" nothing 2>&1 |
        sed -n 's/.*: not one of \(.*\): no-such-word$/\1/p' | tr -s ', ' '\n'
}

# compare WHAT EXPECTED OFFERED: compares two lists of lines, whatever their order.
compare() {
    local difference
    difference=$(diff <(sort -u <<< "$2") <(sort -u <<< "$3")) && return
    printf '%s: < is in the help, > is offered\n%s\n' "$1" "$difference" >&2
    status=1
}

commands=$(section_of_help Commands | awk '{ print $1 }')
if [[ -z $commands ]]; then
    echo 'the help names no command' >&2
    status=1
fi
compare commands "$commands" "$(offered '')"
for command in $commands; do
    options=$(options_of "$command")
    compare "options of $command" "$options" "$(offered "$command" --)"
    for option in $options; do
        compare "$command $option" "$(words_for "$command" "$option")" \
            "$(_mailstructure_values "$option" | tr ' ' '\n')"
    done
done
# Without a command on the command line, the first one is meant.
first=${commands%%$'\n'*}
compare 'options without a command' "$(options_of && options_of "$first")" "$(offered --)"
exit "$status"
