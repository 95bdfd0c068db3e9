#!/bin/sh
# Installs the library and moves the installed copy elsewhere. Then builds a host program with the
# copy and runs it, or runs the tool, or checks which files there are:
#     check.sh find_package|pkg_config|tool|files BUILD_FOLDER WORK_FOLDER LIBRARY_SUBFOLDER \
#              COMPILER [COMPILER_FLAGS]
set -eu
way=$1 build=$2 work=$3 libdir=$4 compiler=$5 flags=${6-}
here=$(cd "$(dirname "$0")" && pwd)

# The same flags are for both languages, so the compilers must be of the same maker.
case $compiler in
*clang++*) c_compiler=clang ;;
*) c_compiler=cc ;;
esac

rm -rf "$work"
cmake --install "$build" --prefix "$work/installed" > "$work.install.log"
rm "$work.install.log"
mv "$work/installed" "$work/moved"
prefix=$work/moved

run_consumer() {
    LD_LIBRARY_PATH=$prefix/$libdir "$1" > "$work/output"
    printf '1 67 6 4294967295\n' | diff -u - "$work/output"
}

run_c_consumer() {
    LD_LIBRARY_PATH=$prefix/$libdir "$1" > "$work/output"
    printf '1 text/html 91 6\n' | diff -u - "$work/output"
}

# needs_library PROGRAM: whether the program loads the shared library when it starts.
needs_library() { readelf -d "$1" | grep -q 'NEEDED.*libmailstructure\.so\.1\]'; }

case $way in
find_package)
    cmake -G Ninja -S "$here" -B "$work/build" -DCMAKE_PREFIX_PATH="$prefix" \
        -DCMAKE_CXX_COMPILER="$compiler" -DCMAKE_CXX_FLAGS="$flags" \
        -DCMAKE_C_COMPILER="$c_compiler" -DCMAKE_C_FLAGS="$flags"
    cmake --build "$work/build"
    run_consumer "$work/build/consumer_of_mailstructure"
    run_consumer "$work/build/consumer_of_mailstructure_static"
    run_c_consumer "$work/build/c_consumer_of_mailstructure"
    run_c_consumer "$work/build/c_consumer_of_mailstructure_static"
    needs_library "$work/build/consumer_of_mailstructure"
    ! needs_library "$work/build/consumer_of_mailstructure_static" || exit 1
    # Another major version has another interface.
    if cmake -G Ninja -S "$here" -B "$work/other" -DCMAKE_PREFIX_PATH="$prefix" \
        -DWANTED_VERSION=2.0 > "$work/output" 2>&1; then
        echo "version 1 serves who wants version 2" >&2
        exit 1
    fi
    tr -s '\n ' '  ' < "$work/output" | grep -q 'compatible with requested version "2.0"' ||
        { cat "$work/output"; exit 1; }
    ;;
pkg_config)
    export PKG_CONFIG_LIBDIR="$prefix/$libdir/pkgconfig"
    test "$(pkg-config --modversion mailstructure)" = 1.0.0
    # shellcheck disable=SC2046,SC2086 # lists of options
    "$compiler" -std=c++17 -Wall -Wextra -Wpedantic -Werror $flags "$here/main.cpp" \
        -o "$work/consumer" $(pkg-config --cflags --libs mailstructure)
    run_consumer "$work/consumer"
    needs_library "$work/consumer"
    # README.md: an installed example, with the folder of the library as its run path.
    documents=$prefix/share/doc/mailstructure
    # shellcheck disable=SC2046,SC2086
    "$compiler" -std=c++17 $flags "$documents/examples/list_parts.cpp" -o "$work/list_parts" \
        $(pkg-config --cflags --libs mailstructure) \
        -Wl,-rpath,"$(pkg-config --variable=libdir mailstructure)"
    "$work/list_parts" "$here/../examples/messages/attachments.eml" | grep -qx 'Plans, and what.*'
    [ -z "$flags" ] || exit 0 # a sanitizer has a shared library of its own
    # shellcheck disable=SC2046
    cc -std=c99 -pedantic-errors -Wall -Wextra -Werror "$here/main.c" -o "$work/c_consumer" \
        $(pkg-config --cflags --libs mailstructure)
    run_c_consumer "$work/c_consumer"
    # shellcheck disable=SC2046
    "$compiler" -std=c++17 -static "$here/main.cpp" -o "$work/static" \
        $(pkg-config --static --cflags --libs mailstructure)
    run_consumer "$work/static"
    # A host that is linked as C, without the shared library.
    rm "$prefix/$libdir"/libmailstructure.so*
    # shellcheck disable=SC2046
    "$compiler" -std=c++17 -c "$here/main.cpp" -o "$work/main.o" \
        $(pkg-config --cflags mailstructure)
    # shellcheck disable=SC2046
    cc "$work/main.o" -o "$work/linked_as_c" $(pkg-config --static --libs mailstructure)
    run_consumer "$work/linked_as_c"
    ;;
tool)
    # The tool finds the library that was installed with it, without help from the environment.
    unset LD_LIBRARY_PATH
    "$prefix/bin/mailstructure" --version
    test -f "$prefix/share/man/man1/mailstructure.1"
    test -f "$prefix/share/bash-completion/completions/mailstructure"
    test -f "$prefix/share/zsh/site-functions/_mailstructure"
    test -f "$prefix/share/fish/vendor_completions.d/mailstructure.fish"
    test -f "$prefix/share/doc/mailstructure/doc/json.schema.json"
    test -f "$prefix/share/doc/mailstructure/doc/scan.schema.json"
    ;;
files)
    # All files that belong there, and no others. Any build type will do.
    (cd "$prefix" && find . ! -type d) |
        sed "s#$libdir#LIBDIR#; s#Targets-[a-z]*\.cmake#Targets-TYPE.cmake#" | LC_ALL=C sort |
        diff -u "$here/installed_files.txt" -
    readelf -d "$prefix/$libdir/libmailstructure.so" | grep -q 'SONAME.*\[libmailstructure\.so\.1\]'
    test "$(readlink "$prefix/$libdir/libmailstructure.so.1")" = libmailstructure.so.1.0.0
    "$here/../documents/links.sh" "$prefix/share/doc/mailstructure"
    # No text file names the folder in which the library was built or installed.
    ! grep -rlIF -e "$work" -e "$build" "$prefix" || exit 1
    ;;
esac
