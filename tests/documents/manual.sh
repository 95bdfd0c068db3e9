#!/usr/bin/env bash
# The manual pages: clean, complete, and with examples that compile.
# manual.sh lint SOURCE_FOLDER
# manual.sh members SOURCE_FOLDER           every public name has an entry in man(3)
# manual.sh examples SOURCE_FOLDER LIBRARY COMPILER [COMPILER_FLAGS]    LIBRARY: the static one
set -euo pipefail
way=$1 sources=$2
pages=("$sources"/man/*.3)

# public_names: what the header declares, without its comments: data members, functions and types.
public_names() {
    sed 's#//.*##' "$sources/include/mail_structure.h" \
        | grep -vE '^ *#' \
        | sed -E 's/__attribute__.*//; s/MAIL_STRUCTURE_API//g' \
        | grep -oE '\bm_[a-z_]+|\b_lib_version\b|[A-Za-z_]+ *\(|struct +[A-Za-z]+' \
        | sed -E 's/^struct +//; s/ *\($//' | sort -u
}

# entries: the names that stand at the head of an entry or in a synopsis. The types are named by their pages.
entries() {
    sed -nE 's/^\.(It|Fn|Fo|Nm) //p' "${pages[@]}" | tr -cs 'A-Za-z_' '\n' | sort -u
}

# literal PAGE NUMBER: the text of that display.
literal() {
    awk -v number="$2" '/^\.Ed/ { on = 0 } on { print } /^\.Bd -literal/ { on = ++seen == number }' "$sources/man/$1" \
        | sed 's/\\e/\\/g'
}

case $way in
lint)
    command -v mandoc > /dev/null || { echo "skipped: mandoc is not installed"; exit 77; }
    mandoc -T lint -W warning "$sources"/man/*.[13]
    ;;
members)
    # A pattern that finds nothing would find nothing missing.
    (($(public_names | wc -l) >= 45)) || { echo "only these names were found:"; public_names; exit 1; }
    missing=$(comm -23 <(public_names) <(entries))
    [[ -z $missing ]] || { printf 'no entry in man(3):\n%s\n' "$missing"; exit 1; }
    ;;
examples)
    library=$3 compiler=$4 flags=${5-}
    work=$(mktemp -d)
    trap 'rm -rf "$work"' EXIT
    # shellcheck disable=SC2086 # a list of options
    compile() { "$compiler" -std=c++17 -Wall -Wextra -Wpedantic -Werror $flags -I "$sources/include" "$@"; }

    literal MailStructure.3 1 > "$work/parts.cpp"
    compile "$work/parts.cpp" "$library" -o "$work/parts"
    diff <("$work/parts" "$sources/tests/examples/messages/attachments.eml") - << 'END'
Plans, and what came in
multipart/alternative: 68 bytes from byte 205
application/pdf: 13 bytes from byte 414
image/png: 13 bytes from byte 474
text/plain: 9 bytes from byte 558
application/x-note: 8 bytes from byte 641
message/rfc822: 13 bytes from byte 889
message/rfc822: 13 bytes from byte 959
END

    # The shorter ones, in a program that uses them.
    {
        printf '#include <mail_structure.h>\n#include <iostream>\n#include <istream>\n#include <streambuf>\n'
        printf '#include <string>\n#include <string_view>\n#include <vector>\n'
        literal MailStructure.Fill.3 1
        literal MailStructure.header.3 2
        echo 'void use(const MailStructure::MimeObj& part) { std::cout << part.m_subtype << charset_of(part) << ";"; }'
        literal MailStructure.MimeObj.3 1
        cat << 'END'
int main() {
    MailStructure message;
    parse(message, "Content-Type: multipart/x; boundary=a\n\n--a\nContent-Type: text/html; CharSet=\"utf-8\"\n\n--a--\n");
    visit(message.m_root);
}
END
    } > "$work/rest.cpp"
    compile "$work/rest.cpp" "$library" -o "$work/rest"
    [[ $("$work/rest") == "x;htmlutf-8;" ]]

    # The record is shown as the header declares it.
    diff <(literal MailStructure.header.3 1 | grep -oE '\bm_[a-z]+') \
        <(sed -n '/^    struct header {/,/^    };/p' "$sources/include/mail_structure.h" | sed 's#//.*##' \
            | grep -oE '\bm_[a-z]+')
    ;;
esac
