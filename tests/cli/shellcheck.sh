#!/bin/sh
# Checks the scripts in the transcripts with shellcheck. Skipped where shellcheck is not installed.
set -eu
command -v shellcheck > /dev/null || { echo "shellcheck is not installed" && exit 77; }
scripts=$(mktemp -d)
trap 'rm -rf "$scripts"' EXIT
"$(dirname "$0")/run" --scripts "$scripts"
shellcheck "$scripts"/*.sh
