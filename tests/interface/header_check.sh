#!/bin/sh
# Compiles the public header alone, as strictly as the compiler can. Usage: header_check.sh COMPILER
# STANDARD HEADER
set -eu
compiler=$1 standard=$2 header=$3

warnings='-Wall -Wextra -Wpedantic -Wconversion -Wshadow -Wsign-conversion -Wold-style-cast
    -Wundef -Wcast-align -Wnon-virtual-dtor -Woverloaded-virtual -Wunused'
if "$compiler" --version | grep -q clang; then
    # All warnings but those that any code would cause: for struct padding, and for use of C++11 and
    # later.
    warnings='-Weverything -Wno-padded -Wno-c++98-compat -Wno-c++98-compat-pedantic'
fi
# The header is included, and twice, because compilers warn about a header that is the main file.
unset CPLUS_INCLUDE_PATH
# shellcheck disable=SC2086 # a list of options
printf '#include <mail_structure.h>\n#include <mail_structure.h>\n' |
    "$compiler" -x c++ "-std=c++$standard" -pedantic-errors -Werror $warnings \
        -I "$(dirname "$header")" -fsyntax-only -
