#!/usr/bin/env bash
# Makes the Debian packages from a copy of the sources. Usage: build.sh SOURCE_FOLDER WORK_FOLDER
. "$(dirname "${BASH_SOURCE[0]}")/common.sh"
skip_without dpkg-gensymbols dpkg-shlibdeps dpkg-deb

rm -rf "$2"
copy_sources "$1" "$2/one"
unset SOURCE_DATE_EPOCH
make_packages "$2/one"
