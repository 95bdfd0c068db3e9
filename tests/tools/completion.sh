#!/usr/bin/env bash
# What bash offers for the words of a command line: completion.sh TOOL
# The words are given as bash splits them. The last one is being completed, unless "@" marks
# another.
set -u
here=$(cd "$(dirname "$0")/.." && pwd)
tool=$(realpath "$1")
# shellcheck source=../../tools/completion/mailstructure
. "$here/../tools/completion/mailstructure"

work=$(mktemp -d)
trap 'rm -rf "$work"' EXIT
cd "$work" || exit
cp "$here/data/messages/forwarded.eml" letter.eml
touch 'a b.eml' -- -dash.eml
mkdir folder
status=0

# offers EXPECTED WORD...: compares what is offered with the expected words, which are sorted and
# have blanks between them.
offers() {
    local expected=$1 at offered
    shift
    COMP_WORDS=("$tool" "$@")
    COMP_CWORD=$#
    for ((at = 1; at <= $#; at++)); do
        if [[ ${COMP_WORDS[at]} == @* ]]; then
            COMP_WORDS[at]=${COMP_WORDS[at]#@}
            COMP_CWORD=$at
        fi
    done
    _mailstructure "$tool"
    offered=$(printf '%s\n' "${COMPREPLY[@]-}" | LC_ALL=C sort | paste -s -d ' ')
    if [[ $offered != "$expected" ]]; then
        printf '%s\n  expected: %s\n  offered:  %s\n' "$*" "$expected" "$offered" >&2
        status=1
    fi
}

offers '-dash.eml a b.eml dump folder help json letter.eml part tree' ''
offers 'tree' t
offers 'letter.eml' l
offers 'json' j
offers 'help' h
offers 'dump help json part tree' help ''
offers 'part' help p
offers '--all --ascii --bytes --color --decoded --help --max-size --rules --utf8 --version' -
offers '--version' --v
offers '--all --ascii --bytes --color --decoded --help --max-size --rules --utf8' tree -
offers '--all --ascii --bytes --color --decoded --help --max-size --rules --utf8' letter.eml -
offers '--flat --help --max-size --pretty --rules' json -
offers '--help --keep-text --max-size --memlimit --rules' dump --
offers '--charset --decode --force --help --list --max-size --output --range --rules' part --
offers '-dash.eml a b.eml folder letter.eml' json ''
offers 'a b.eml' json a
offers 'letter.eml' tree --ascii letter.eml l
offers 'always auto never' tree --color ''
offers 'always auto never' tree --color =
offers 'auto' tree --color = au
offers '' dump --memlimit ''
offers '' tree --max-size ''
offers 'HEADER' part --max-size 25M H
offers 'letter.eml' dump --memlimit 5 l
offers 'body contents epilogue header mime' part --range ''
offers 'header' part --range = h
offers 'classic standard' json --rules = ''
offers 'standard' tree --rules s
offers 'letter.eml' part -o l
offers 'utf-8' part --charset ''
offers 'HEADER' part --charset = utf-8 H
offers 'lenient strict' part --decode =
offers 'lenient' part --decode = l
offers 'letter.eml' part --decode = lenient 1 l
offers 'HEADER' part --decode = lenient H
offers 'HEADER TEXT' part --decode ''
offers 'HEADER TEXT' part ''
offers 'HEADER' part --decode --range body -o out H
offers 'HEADER' part --range = body H
offers 'HEADER' part --rules = classic H
offers '1 1.MIME 2 2.1 2.1.MIME 2.HEADER 2.MIME 2.TEXT 3 3.MIME HEADER TEXT' part @ letter.eml
offers '2 2.1 2.1.MIME 2.HEADER 2.MIME 2.TEXT' part @2 letter.eml
offers 'letter.eml' part 2 l
offers 'letter.eml' part --list l
offers '-dash.eml' tree -- -
offers '' tree --color=x --nothing

declared=$(complete -p mailstructure)
if [[ $declared != 'complete -F _mailstructure mailstructure' ]]; then
    echo "declared: $declared" >&2
    status=1
fi
exit "$status"
