#!/bin/sh
# Builds a host's project that has the sources of mailstructure inside it:
#     subdirectory.sh SOURCE_FOLDER WORK_FOLDER COMPILER
# The library is first static, which is the default for such a host, and then shared.
set -eu
sources=$1 work=$2 compiler=$3
here=$(cd "$(dirname "$0")" && pwd)
if ! command -v "$compiler" > /dev/null; then
    echo "skipped: there is no $compiler"
    exit 77
fi

complain() {
    echo "$*" >&2
    exit 1
}

# make OPTION...: configures with these options and builds.
make() {
    cmake -G Ninja -S "$here/host" -B "$work/build" -DCMAKE_CXX_COMPILER="$compiler" \
        -DCMAKE_CXX_FLAGS=-O0 -DMAILSTRUCTURE_SOURCES="$sources" "$@"
    cmake --build "$work/build" --parallel 2
}

run_host() {
    "$work/build/$1" > "$work/output"
    printf '1 67 6 4294967295\n' | diff -u - "$work/output"
}

needs_library() { readelf -d "$work/build/$1" | grep -q 'NEEDED.*libmailstructure\.so\.1\]'; }

installed_files() {
    rm -rf "$work/prefix"
    cmake --install "$work/build" --prefix "$work/prefix" > /dev/null
    (cd "$work/prefix" && find . ! -type d | sort)
}

rm -rf "$work"
mkdir -p "$work"

echo "== no wish: static"
make
for host in host_of_mailstructure host_of_mailstructure_static; do
    run_host "$host"
    ! needs_library "$host" || complain "$host needs the shared library"
done
[ "$(ctest --test-dir "$work/build" -N | grep -c 'Test *#')" = 1 ] ||
    complain "there are tests that are not the host's"
[ "$(installed_files)" = ./bin/host_of_mailstructure ] ||
    complain "more is installed than the host's program"
[ ! -e "$work/build/CPackConfig.cmake" ] || complain "the host is made into packages"
ninja -C "$work/build" -t targets all |
    grep -E '^(list_parts|mailstructure_tool|reference|.*_tests)\b' \
    && complain "targets of ours that no host wants"
grep -E '"command".* -c .*/main\.cpp"' "$work/build/compile_commands.json" |
    grep -E -- '-W|-std=c\+\+20|prefix-map' \
    && complain "the host is compiled with our options"

echo "== BUILD_SHARED_LIBS, by FetchContent"
make -DBUILD_SHARED_LIBS=ON -DHOST_FETCHES=ON
run_host host_of_mailstructure
run_host host_of_mailstructure_static
needs_library host_of_mailstructure || complain "the host is not linked with the shared library"
! needs_library host_of_mailstructure_static || complain "the static library is shared"

echo "== installed with the host when it asks"
make -DBUILD_SHARED_LIBS=OFF -DHOST_FETCHES=OFF -DMAILSTRUCTURE_INSTALL=ON
installed_files > "$work/files"
for file in include/mail_structure.h 'lib.*/libmailstructure\.a' \
    'lib.*/cmake/mailstructure/mailstructureConfig\.cmake' share/doc/mailstructure/LICENSE \
    'share/man/man3/MailStructure\.3'; do
    grep -qx "./$file" "$work/files" || complain "not installed: $file"
done
"$here/../documents/links.sh" "$work/prefix/share/doc/mailstructure"
! grep -q '\.so\|bin/mailstructure' "$work/files" ||
    complain "installed, and nobody asked: $(cat "$work/files")"
# Without a shared library, its name stands for the static one, in CMake and in the .pc file.
cmake -G Ninja -S "$here" -B "$work/consumer" -DCMAKE_PREFIX_PATH="$work/prefix" \
    -DCMAKE_CXX_COMPILER="$compiler" > /dev/null
cmake --build "$work/consumer" > /dev/null
"$work/consumer/consumer_of_mailstructure" | diff "$work/output" -
"$work/consumer/consumer_of_mailstructure_static" | diff "$work/output" -
PKG_CONFIG_LIBDIR=$(dirname "$(find "$work/prefix" -name mailstructure.pc)") \
    pkg-config --libs mailstructure | grep -q -- -lstdc++
