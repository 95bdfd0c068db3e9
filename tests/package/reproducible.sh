#!/usr/bin/env bash
# Makes the packages once more, from another folder and in another environment, and compares them
# with the first ones, byte for byte. Usage: reproducible.sh SOURCE_FOLDER WORK_FOLDER, with the
# WORK_FOLDER that was given to build.sh
. "$(dirname "${BASH_SOURCE[0]}")/common.sh"
work=$2
[[ -d $work/one ]] || { echo "skipped: no packages were made"; exit 77; }
others="$work/another folder with a much longer name"
rm -rf "$others"

unset SOURCE_DATE_EPOCH
copy_sources "$1" "$others"
find "$others" -exec touch -d '2001-02-03 04:05:06' {} +
(umask 027 && TZ=Pacific/Auckland LC_ALL=C.UTF-8 HOME=$others make_packages "$others")

# hashes FOLDER: the hashes of the packages, of the files in them (so that a difference has a name),
# and of the built files.
hashes() {
    (
        cd "$1/build/package"
        for package in *.deb; do
            rm -rf unpacked && dpkg-deb -R "$package" unpacked
            find unpacked -type f -printf "$package %P %m\n" | LC_ALL=C sort
            find unpacked -type f -exec sha256sum {} + | LC_ALL=C sort -k 2
        done
        sha256sum ./*.deb src/libmailstructure.so.*.*.* src/libmailstructure.a tools/mailstructure \
            python/mailstructure/_core.abi3.so
    )
}
hashes "$work/one" > "$work/hashes_of_one"
hashes "$others" > "$work/hashes_of_others"
(($(wc -l < "$work/hashes_of_one") > 50)) || fail "too little was compared"
diff "$work/hashes_of_one" "$work/hashes_of_others"

# No packaged file and no built file names the folder of the build.
! grep -rlF -e "$work" "$work/one/build/package/unpacked" ||
    fail "the place of the build is in these"
built=$work/one/build/package
for file in "$built"/{src/libmailstructure.so,src/libmailstructure.a,tools/mailstructure} \
    "$built/python/mailstructure/_core.abi3.so"; do
    ! grep -qF "$work" "$file" || fail "the place of the build is in $file"
done

# The time stamp is taken from SOURCE_DATE_EPOCH, and another time stamp gives another package.
(cd "$others" && SOURCE_DATE_EPOCH=1000000000 cpack --preset package > /dev/null)
listing=$(dpkg-deb -c "$others"/build/package/libmailstructure1_*.deb)
[[ $listing == *2001-09-09* && $listing != *2026* ]] || fail "SOURCE_DATE_EPOCH is not heeded"
