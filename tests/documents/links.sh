#!/usr/bin/env bash
# Every relative link in the Markdown files of a folder leads to a file in that folder and, where it
# names one, to a heading in that file: links.sh FOLDER
# In a checkout, these are the files that git knows or could know, so that no build is searched.
set -euo pipefail
cd "$1"

files() {
    if [[ $(git rev-parse --show-toplevel 2> /dev/null) == "$PWD" ]]; then
        git ls-files --cached --others --exclude-standard -- '*.md'
    else
        find . -name '*.md' | sed 's#^\./##'
    fi
}

# prose FILE: the file without its blocks of code.
# shellcheck disable=SC2016 # the backticks are those of the text
prose() { sed '/^ *```/,/^ *```/d' "$1"; }

# links FILE: the targets of its links and images, one a line.
links() { prose "$1" | tr '\n' ' ' | grep -oE '\]\([^() ]+\)' | sed 's/^](//; s/)$//'; }

# anchors FILE: the names of its headings, as they stand in links.
anchors() {
    prose "$1" | sed -nE 's/^#+ +//p' | tr '[:upper:]' '[:lower:]' |
        sed 's/[^a-z0-9 _-]//g; s/ /-/g'
}

status=0 count=0
while IFS= read -r file; do
    while IFS= read -r link; do
        [[ ! $link =~ ^[a-z]+: ]] || continue
        count=$((count + 1))
        target=$file anchor=''
        if [[ ${link%%#*} ]]; then
            target=$(realpath -ms --relative-to=. "$(dirname "$file")/${link%%#*}")
        fi
        [[ $link != *'#'* ]] || anchor=${link#*#}
        if [[ ! -e $target || $target == ../* ]]; then
            echo "$file: there is no $link" >&2
            status=1
        elif [[ $anchor ]] && ! anchors "$target" | grep -qxF -e "$anchor"; then
            echo "$file: there is no heading for $link" >&2
            status=1
        fi
    done < <(links "$file" || true)
done < <(files)
# Fewer would mean that the links were not found.
if ((count < 20)); then
    echo "only $count links found" >&2
    status=1
fi
exit "$status"
