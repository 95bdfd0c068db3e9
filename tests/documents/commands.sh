#!/usr/bin/env bash
# Each script that a document names as a command is there and can be run, each program of the build
# is one that the build makes, and each preset is one of CMakePresets.json: commands.sh FOLDER BUILD
# BUILD is a folder that Ninja builds in, with everything that the preset dev builds.
set -euo pipefail
cd "$1"
build=$2
documents=(README.md HACKING.md doc/*.md bench/*.md)

# Scripts at the beginning of a line in a block of shell, and in code within a sentence if arguments
# follow them: a name without arguments may be that of any file.
# shellcheck disable=SC2016 # the backticks are those of the text
scripts() {
    sed -n '/^ *```sh$/,/^ *```$/p' "${documents[@]}" |
        grep -oE '^ *(scripts|tests|fuzz|bench|[.]ci)/[^ ]+' | tr -d ' '
    grep -ohE '`(scripts|tests|fuzz|bench|[.]ci)/[^` ]+ ' "${documents[@]}" | tr -d '` '
}

programs() {
    grep -ohE 'build/dev/(tests|fuzz|tools)/[a-z0-9_/]+' "${documents[@]}" | sed 's#^build/dev/##'
}

presets() { grep -ohE -e '--preset [a-z]+' "${documents[@]}" | sed 's/^--preset //'; }

status=0
while IFS= read -r script; do
    [[ -f $script && -x $script ]] || { echo "cannot be run: $script" >&2 && status=1; }
done < <(scripts | sort -u)
while IFS= read -r program; do
    grep -q "^build $program: " "$build/build.ninja" ||
        { echo "not built: build/dev/$program" >&2 && status=1; }
done < <(programs | sort -u)
while IFS= read -r preset; do
    grep -q "\"name\": \"$preset\"" CMakePresets.json ||
        { echo "there is no preset $preset" >&2 && status=1; }
done < <(presets | sort -u)
# Fewer would mean that the commands were not found.
for kind in scripts:15 programs:4 presets:4; do
    (($("${kind%:*}" | sort -u | wc -l) >= ${kind#*:})) ||
        { echo "too few ${kind%:*} found" >&2 && status=1; }
done
exit "$status"
