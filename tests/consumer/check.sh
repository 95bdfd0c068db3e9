#!/bin/sh
# Installs the library, moves the installed copy elsewhere, and builds and runs a host program against it, or
# runs the tool.
# check.sh find_package|pkg_config|tool BUILD_FOLDER WORK_FOLDER LIBRARY_SUBFOLDER COMPILER COMPILER_FLAGS
set -eu
way=$1 build=$2 work=$3 libdir=$4 compiler=$5 flags=$6
here=$(cd "$(dirname "$0")" && pwd)

rm -rf "$work"
cmake --install "$build" --prefix "$work/installed" > "$work.install.log"
rm "$work.install.log"
mv "$work/installed" "$work/moved"
prefix=$work/moved

run_consumer() {
    LD_LIBRARY_PATH=$prefix/$libdir "$1" > "$work/output"
    printf '1 67 6 4294967295\n' | diff -u - "$work/output"
}

case $way in
find_package)
    cmake -G Ninja -S "$here" -B "$work/build" -DCMAKE_PREFIX_PATH="$prefix" -DCMAKE_CXX_COMPILER="$compiler" \
        -DCMAKE_CXX_FLAGS="$flags"
    cmake --build "$work/build"
    run_consumer "$work/build/consumer_of_mailstructure"
    run_consumer "$work/build/consumer_of_mailstructure_static"
    ;;
pkg_config)
    export PKG_CONFIG_LIBDIR="$prefix/$libdir/pkgconfig"
    test "$(pkg-config --modversion mailstructure)" = 1.0.0
    # shellcheck disable=SC2046,SC2086 # lists of options
    "$compiler" -std=c++17 -Wall -Wextra -Wpedantic -Werror $flags "$here/main.cpp" -o "$work/consumer" \
        $(pkg-config --cflags --libs mailstructure)
    run_consumer "$work/consumer"
    ;;
tool)
    # It finds the library that was installed beside it, without help from the environment.
    unset LD_LIBRARY_PATH
    "$prefix/bin/mailstructure" --version
    test -f "$prefix/share/man/man1/mailstructure.1"
    ;;
esac
