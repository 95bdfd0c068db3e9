#!/bin/sh
# Compiles each public header alone, as strictly as the compiler can. Usage:
#     header_check.sh COMPILER STANDARD FOLDER
set -eu
compiler=$1 standard=$2 folder=$3

warnings='-Wall -Wextra -Wpedantic -Wconversion -Wshadow -Wsign-conversion -Wold-style-cast
    -Wundef -Wcast-align -Wnon-virtual-dtor -Woverloaded-virtual -Wunused'
if "$compiler" --version | grep -q clang; then
    # All warnings but those that any code would cause: for struct padding, and for use of C++11 and
    # later.
    warnings='-Weverything -Wno-padded -Wno-c++98-compat -Wno-c++98-compat-pedantic'
fi
# A header is included, and twice, because compilers warn about a header that is the main file.
unset CPLUS_INCLUDE_PATH
for header in "$folder"/*.h; do
    # shellcheck disable=SC2086 # a list of options
    printf '#include <%s>\n' "${header##*/}" "${header##*/}" |
        "$compiler" -x c++ "-std=c++$standard" -pedantic-errors -Werror $warnings \
            -I "$folder" -fsyntax-only -
done
