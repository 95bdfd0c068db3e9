#!/bin/sh
# Writes the reference of the public interface; whatever is not documented there is an error.
# doxygen.sh SOURCE_FOLDER OUTPUT_FOLDER VERSION [--check]
# --check: also takes away the comment of one member after the other, to see that Doxygen notices.
set -eu
sources=$1 output=$2
export MAILSTRUCTURE_VERSION="$3" MAILSTRUCTURE_REFERENCE="$output"
if ! command -v doxygen > /dev/null; then
    echo "skipped: doxygen is not installed"
    exit 77
fi

rm -rf "$output"
mkdir -p "$output"
(cd "$sources" && doxygen doc/Doxyfile)
test -s "$output/html/structMailStructure_1_1MimeObj.html"
test -s "$output/html/namespacemail__findings.html"
test -s "$output/html/namespacemail__sections.html"
[ "${4-}" = --check ] || exit 0

copy=$output/copy
mkdir -p "$copy"
cp -r "$sources/doc" "$sources/examples" "$sources/include" "$copy"
export MAILSTRUCTURE_REFERENCE="$copy"
for member in 'std::uint32_t m_header_len' 'void clear' 'std::string m_value' 'void Fill'; do
    # The comment is what stands directly above the member, or after it.
    awk -v member="$member" '
        { line[NR] = $0 }
        index($0, member) {
            for (at = NR - 1; line[at] ~ /^ *\/\/\//; --at) line[at] = ""
            sub("///<.*", "", line[NR])
        }
        END { for (at = 1; at <= NR; ++at) print line[at] }' "$sources/include/mail_structure.h" \
        > "$copy/include/mail_structure.h"
    if (cd "$copy" && doxygen doc/Doxyfile > output 2>&1); then
        echo "nobody noticed that '$member' has lost its comment"
        exit 1
    fi
    grep -q "Member ${member##* }.* is not documented" "$copy/output" \
        || { cat "$copy/output"; exit 1; }
done
