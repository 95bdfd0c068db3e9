#!/usr/bin/env bash
# The manual pages: clean, true to the headers, and with examples that compile.
# manual.sh lint SOURCE_FOLDER
# manual.sh members SOURCE_FOLDER [--update]    man(3) shows every declaration of the headers
# manual.sh examples SOURCE_FOLDER LIBRARY COMPILER [COMPILER_FLAGS]    LIBRARY: the static one
set -euo pipefail
way=$1 sources=$2

# declared FILE: the lines of a header without comments, directives and empty lines, and without
# what is not public.
declared() {
    sed -E '/^namespace mail_structure_detail/,/^}/d; /^    private:/,/^    };/{/^    };/!d}
        /^private:/,/^};/{/^};/!d}
        s# *//.*##; s/MAIL_STRUCTURE_API //' "$1" | grep -vE '^ *(#.*)?$'
}

# declarations PAGE: those that belong to it. In mail_structure.h, nested records and Fill have
# pages of their own.
declarations() {
    if [[ $1 == mail_sections || $1 == mail_findings ]]; then
        declared "$sources/include/$1.h"
        return
    fi
    declared "$sources/include/mail_structure.h" | awk -v page="$1" '
        /^    struct header \{/ { record = "MailStructure.header" }
        /^    struct MimeObj \{/ { record = "MailStructure.MimeObj" }
        /^    class feeder \{/ { record = "MailStructure.feeder" }
        { owner = record == "" ? "MailStructure" : record }
        record != "" && /^    \};/ { record = "" }
        /^    void Fill\(/ { owner = "MailStructure.Fill" }
        owner == page { sub(page == "MailStructure" ? "^$" : "^    ", ""); print }'
}

# functions_for_c: the functions that the header for C declares.
functions_for_c() {
    awk '/^MAIL_STRUCTURE_C_API / { on = 1 }
        on { sub(/^MAIL_STRUCTURE_C_API /, ""); sub(/^ +/, "    "); print }
        /;$/ { on = 0 }' "$sources/include/mail_structure_c.h"
}

# with_synopsis PAGE: the page, with its declarations in the first display.
with_synopsis() {
    if [[ $1 == mail_structure_c ]]; then
        functions_for_c > "$work/shown"
    else
        declarations "$1" > "$work/declarations"
        sed -E 's/^(struct |class |void )(MimeObj|header|feeder|Fill)\b/\1MailStructure::\2/' \
            "$work/declarations" > "$work/shown"
        cat "$work/declarations" >> "$work/all"
    fi
    awk -v shown="$work/shown" '
        /^\.Ed/ { skip = 0 }
        !skip { print }
        /^\.Bd -literal/ && !seen++ {
            skip = 1
            while ((getline line < shown) > 0) print line
        }' "$sources/man/$1.3"
}

# literal PAGE NUMBER: the text of that display.
literal() {
    awk -v number="$2" '
        /^\.Ed/ { on = 0 }
        on { print }
        /^\.Bd -literal/ { on = ++seen == number }' "$sources/man/$1" | sed 's/\\e/\\/g'
}

case $way in
lint)
    command -v mandoc > /dev/null || { echo "skipped: mandoc is not installed"; exit 77; }
    mandoc -T lint -W warning "$sources"/man/*.[13]
    ;;
members)
    work=$(mktemp -d)
    trap 'rm -rf "$work"' EXIT
    for page in MailStructure{,.Fill,.MimeObj,.feeder,.header} mail_findings \
        mail_sections mail_structure_c; do
        with_synopsis "$page" > "$work/page"
        if [[ ${3-} == --update ]]; then
            cp "$work/page" "$sources/man/$page.3"
        else
            diff -u --label "$page.3" --label declared "$sources/man/$page.3" "$work/page"
        fi
    done
    # Each declared line of the headers for C++ belongs to one page and no other.
    diff <(for header in structure findings sections; do
        declared "$sources/include/mail_$header.h"
    done | sed 's/^ *//' | sort) \
        <(sed 's/^ *//' "$work/all" | sort)
    ;;
examples)
    library=$3 compiler=$4 flags=${5-}
    work=$(mktemp -d)
    trap 'rm -rf "$work"' EXIT
    # shellcheck disable=SC2086 # a list of options
    compile() {
        "$compiler" -std=c++17 -Wall -Wextra -Wpedantic -Werror $flags -I "$sources/include" "$@"
    }

    literal MailStructure.3 2 > "$work/parts.cpp"
    compile "$work/parts.cpp" "$library" -o "$work/parts"
    diff <("$work/parts" "$sources/tests/examples/messages/attachments.eml") - << 'END'
Plans, and what came in
multipart/alternative: 102 bytes from byte 171
application/pdf: 13 bytes from byte 414
image/png: 13 bytes from byte 474
text/plain: 9 bytes from byte 558
application/x-note: 8 bytes from byte 641
message/rfc822: 159 bytes from byte 743
message/rfc822: 32 bytes from byte 940
END

    # The shorter ones, in a program that uses them.
    {
        printf '#include <%s>\n' mail_findings.h mail_sections.h iostream istream streambuf \
            string string_view vector
        literal MailStructure.Fill.3 2
        literal MailStructure.feeder.3 2
        literal MailStructure.header.3 2
        echo 'void use(const MailStructure::MimeObj& part) {'
        echo '    std::cout << part.m_subtype << charset_of(part) << ";";'
        echo '}'
        literal MailStructure.MimeObj.3 2
        literal mail_sections.3 2
        literal mail_findings.3 2
        cat << 'END'
int main() {
    MailStructure message;
    const std::string text = "Content-Type: multipart/x; boundary=a\n\n"
                             "--a\nContent-Type: text/html; CharSet=\"utf-8\"\n\n--a--\n";
    parse(message, text);
    visit(message.m_root);
    std::cout << section_of(message, text, "1.MIME").substr(14, 9)
              << section_of(message, text, "3") << ';' << first_danger("a : b\n\n") << ';';
    const std::string pieces[] = {"Content-Type: te", "xt/csv\n", "\nhello"};
    std::size_t next = 0;
    parse_pieces(message, [&] { return next < 3 ? std::string_view(pieces[next++]) : ""; });
    use(message.m_root);
}
END
    } > "$work/rest.cpp"
    compile "$work/rest.cpp" "$library" -o "$work/rest"
    [[ $("$work/rest") == "x;htmlutf-8;text/html1;blank-before-colon;csv;" ]]

    {
        printf '#include <%s>\n' mail_structure_c.h stdio.h
        literal mail_structure_c.3 2
        cat << 'END'
int main(void) {
    static const char mail[] = "Content-Type: multipart/x; boundary=a\n\n--a\n\n--a--\n";
    mail_structure_parser *parser = mail_structure_new();
    list_types(parser, mail, sizeof mail - 1);
    mail_structure_free(parser);
    return 0;
}
END
    } > "$work/list_types.c"
    # shellcheck disable=SC2086 # a list of options
    "$compiler" -x c -std=c99 -pedantic-errors -Wall -Wextra -Werror $flags \
        -I "$sources/include" -c "$work/list_types.c" -o "$work/list_types.o"
    # shellcheck disable=SC2086
    "$compiler" $flags "$work/list_types.o" "$library" -o "$work/list_types"
    [[ $("$work/list_types") == $'multipart/x\ntext/plain' ]]
    ;;
esac
