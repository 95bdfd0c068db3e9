#!/bin/sh
# Runs the tests of the scanners on an emulated 64-bit ARM processor. The status is 77, for
# "skipped", if the cross compiler, the emulator or the sources of GoogleTest are missing. Usage:
# arm.sh SOURCE_FOLDER WORK_FOLDER
set -eu
source=$(cd "$1" && pwd)
work=$2
compiler=aarch64-linux-gnu-g++
emulator=qemu-aarch64-static
googletest=/usr/src/googletest/googletest

for program in "$compiler" "$emulator"; do
    command -v "$program" > /dev/null || { echo "skipped: $program is not installed" && exit 77; }
done
test -d "$googletest" || { echo "skipped: the sources of GoogleTest are not installed" && exit 77; }

mkdir -p "$work"
cd "$work"
"$compiler" -O1 -I"$googletest" -I"$googletest/include" -c "$googletest/src/gtest-all.cc" \
    "$googletest/src/gtest_main.cc"
tests=$source/tests
# shellcheck disable=SC2046 # lists of files
"$compiler" -std=c++20 -O2 -Wall -Wextra -Wconversion -Werror -Wno-restrict -I"$source/include" \
    -I"$source/src" -I"$tests" -I"$googletest/include" $(find "$source/src" -name "*.cpp") \
    "$tests/parser/lines/line_scan_test.cpp" "$tests/parser/lines/body_scan_test.cpp" \
    $(find "$tests/support" -name "*.cpp" ! -name "*_test.cpp") gtest-all.o gtest_main.o \
    -static -pthread -o arm_tests 2> log || { cat log && exit 1; }
"$emulator" ./arm_tests --gtest_brief=1
# The NEON scanners must be among those that were tested.
nm -C arm_tests | grep -q 'scan_line_neon'
