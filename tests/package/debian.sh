#!/usr/bin/env bash
# Checks the Debian packages, unpacks them into a folder, runs the tool from there, and builds a
# host with them. The real system is not changed. Usage: debian.sh SOURCE_FOLDER WORK_FOLDER, with
# the WORK_FOLDER that was given to build.sh
. "$(dirname "${BASH_SOURCE[0]}")/common.sh"
sources=$1 work=$2
[[ -d $work/one ]] || { echo "skipped: no packages were made"; exit 77; }
skip_without lintian
packages=$work/one/build/package
root=$work/root
triplet=$(dpkg-architecture -qDEB_HOST_MULTIARCH)
architecture=$(dpkg --print-architecture)
rm -rf "$root" "$work/control"
mkdir -p "$root" "$work/control"

field() { dpkg-deb -f "$packages/$1_1.0.0-1_$architecture.deb" "$2"; }

echo "== names and dependencies"
for package in libmailstructure1 libmailstructure-dev mailstructure python3-mailstructure; do
    [[ $(field $package Version) == 1.0.0-1 ]]
    [[ $(field $package Source) == mailstructure ]]
    [[ $(field $package Maintainer) == *"<"*"@"*">" ]]
    dpkg-deb -x "$packages/${package}_1.0.0-1_$architecture.deb" "$root"
    dpkg-deb -e "$packages/${package}_1.0.0-1_$architecture.deb" "$work/control/$package"
    (cd "$root" && md5sum --quiet -c "$work/control/$package/md5sums")
    for document in changelog.Debian.gz copyright; do
        [[ -s $root/usr/share/doc/$package/$document ]] || fail "$package has no $document"
    done
done
[[ $(field libmailstructure1 Depends) =~ ^libc6\ \(.*libstdc\+\+6\ \( ]] ||
    fail "$(field libmailstructure1 Depends)"
[[ $(field libmailstructure-dev Depends) == "libmailstructure1 (= 1.0.0-1)" ]]
[[ $(field mailstructure Depends) == *"libmailstructure1 (>= 1.0.0)"* ]] ||
    fail "$(field mailstructure Depends)"
[[ $(field mailstructure Depends) == *"libc6 ("* ]]
[[ $(field mailstructure Depends) =~ libarchive[0-9] ]] || fail "$(field mailstructure Depends)"
for dependency in "libmailstructure1 (>= 1.0.0)" libnettle8 "python3 (>= 3.11~)"; do
    [[ $(field python3-mailstructure Depends) == *"$dependency"* ]] ||
        fail "$(field python3-mailstructure Depends)"
done

echo "== control files of the library"
shlibs=$(< "$work/control/libmailstructure1/shlibs")
[[ $shlibs == "libmailstructure 1 libmailstructure1 (>= 1.0.0)" ]]
[[ $(< "$work/control/libmailstructure1/triggers") == "activate-noawait ldconfig" ]]
# One line for each symbol that is exported, and no name that is left for later to resolve.
exported=$(nm -D --defined-only "$root/usr/lib/$triplet/libmailstructure.so.1" |
    cut -d ' ' -f 3 | LC_ALL=C sort)
listed=$(sed -nE 's/^ ([^ ]*)@Base 1\.0\.0$/\1/p' "$work/control/libmailstructure1/symbols" |
    LC_ALL=C sort)
diff <(echo "$exported") <(echo "$listed")

echo "== owners, permissions, compression"
for package in "$packages"/*.deb; do
    dpkg-deb -c "$package" | awk '$2 != "root/root" { print; bad = 1 }
        $1 !~ /^(drwxr-xr-x|-rw-r--r--|lrwxrwxrwx)$/ &&
            !($1 == "-rwxr-xr-x" && $6 ~ /^\.\/usr\/(bin|share\/mailstructure\/slurm)\//) {
                print; bad = 1 }
        END { exit bad }' || fail "in $package"
done
find "$root/usr/share/man" -type f | grep -v '\.gz$' && fail "a manual page is not compressed"
# In the header of a gzip file, flags and time stamp are 0 if neither name nor time is kept.
find "$root" -name '*.gz' -print0 | while IFS= read -r -d '' file; do
    [[ $(head -c 8 "$file" | od -An -tx1 | tr -d ' \n') == 1f8b080000000000 ]] ||
        fail "$file keeps a name or a time"
done

echo "== documents"
bash "$sources/tests/documents/links.sh" "$root/usr/share/doc"
[[ $(find "$root/usr/share/doc" -name json.md | wc -l) == 2 ]]

echo "== the tool"
! readelf -d "$root/usr/bin/mailstructure" | grep -E 'RPATH|RUNPATH' ||
    fail "the tool has a search path of its own"
export LD_LIBRARY_PATH="$root/usr/lib/$triplet"
[[ $("$root/usr/bin/mailstructure" --version) == *1.0.0* ]]
dumped=$("$root/usr/bin/mailstructure" dump "$sources/tests/data/messages/plain.eml" 2>&1)
[[ $dumped == *text/plain* ]]
test -f "$root/usr/share/zsh/vendor-completions/_mailstructure"
"$root/usr/share/mailstructure/slurm/submit" --help | grep -q -- --shards
zcat "$root/usr/share/man/man1/mailstructure.1.gz" | cmp - "$sources/man/mailstructure.1"
zcat "$root/usr/share/man/man3/MailStructure::Fill.3.gz" | cmp - "$sources/man/MailStructure.Fill.3"

echo "== the package for Python"
module=$root/usr/lib/python3/dist-packages/mailstructure/_core.abi3.so
! readelf -d "$module" | grep -E 'RPATH|RUNPATH' || fail "the module has a search path of its own"
readelf -d "$module" | grep -q 'NEEDED.*libmailstructure\.so\.1\]'
PYTHONPATH=$root/usr/lib/python3/dist-packages PYTHONDONTWRITEBYTECODE=1 \
    MAILSTRUCTURE_TOOL=$root/usr/bin/mailstructure "$sources/tests/python/run" /usr/bin/python3 \
    "$sources"/tests/python/{buffers,entity,parse,parser,sections,table,to_dict}_test.py ||
    (($? == 77))

echo "== hosts"
export PKG_CONFIG_LIBDIR="$root/usr/lib/$triplet/pkgconfig"
for compiler in g++ clang++; do
    command -v $compiler > /dev/null || continue
    # shellcheck disable=SC2046 # a list of options
    $compiler -std=c++17 "$sources/tests/consumer/main.cpp" -o "$work/host" \
        $(pkg-config --cflags --libs mailstructure)
    [[ $("$work/host") == "1 67 6 4294967295" ]]
done
cmake -G Ninja -S "$sources/tests/consumer" -B "$work/consumer" \
    -DCMAKE_PREFIX_PATH="$root/usr" > /dev/null
cmake --build "$work/consumer" > /dev/null
[[ $("$work/consumer/consumer_of_mailstructure") == "1 67 6 4294967295" ]]
[[ $("$work/consumer/consumer_of_mailstructure_static") == "1 67 6 4294967295" ]]
[[ $("$work/consumer/c_consumer_of_mailstructure") == "1 text/html 91 6" ]]
[[ $("$work/consumer/c_consumer_of_mailstructure_static") == "1 text/html 91 6" ]]

echo "== lintian"
# lintian expects that the first entry of a changelog closes the report by which a package enters
# Debian. There is no such report.
lintian --no-user-dirs --suppress-tags initial-upload-closes-no-bugs \
    --fail-on error,warning --display-info \
    "$packages"/*.deb 2>&1
