#!/bin/sh
# Compiles the public header alone, as strictly as the compiler can: header_check.sh COMPILER STANDARD HEADER
set -eu
compiler=$1 standard=$2 header=$3

warnings='-Wall -Wextra -Wpedantic -Wconversion -Wshadow -Wsign-conversion -Wold-style-cast -Wundef -Wcast-align
    -Wnon-virtual-dtor -Woverloaded-virtual -Wunused'
if "$compiler" --version | grep -q clang; then
    # Everything, but for two groups that speak of any code: struct padding, and use of C++11 and later.
    warnings='-Weverything -Wno-padded -Wno-c++98-compat -Wno-c++98-compat-pedantic'
fi
# From a file that includes it twice, since a header given by itself is warned about for being one.
unset CPLUS_INCLUDE_PATH
# shellcheck disable=SC2086 # a list of options
printf '#include <mail_structure.h>\n#include <mail_structure.h>\n' |
    "$compiler" -x c++ "-std=c++$standard" -pedantic-errors -Werror $warnings \
        -I "$(dirname "$header")" -fsyntax-only -
