// Lists sections in the order of the walk; see the header.

#include "mailstructure/section_list.h"

#include "common/field_lookup.h"

#include <ostream>
#include <string>
#include <string_view>

namespace {

using MimeObj = MailStructure::MimeObj;
using mail_sections::piece;

constexpr std::string_view type_of_header_blocks = "text/rfc822-headers";

class section_printer {
public:
    section_printer(std::ostream& to, mail_sections::ranges& ranges) : m_to(to), m_ranges(ranges) {}

    void print(const mail_sections::place& place, std::string_view type, std::string_view name,
               std::string_view word, std::string_view file = "") {
        const mail_sections::byte_range range = m_ranges.of(place);
        const std::string_view dot = name.empty() || word.empty() ? "" : ".";
        m_to << range.m_offset << '\t' << range.m_length << '\t' << type << '\t' << name << dot
             << word << file << '\n';
    }

private:
    std::ostream& m_to;
    mail_sections::ranges& m_ranges;
};

/// The name of the part that holds the message named "N.1" or "N.TEXT"; "" for "1" and "TEXT".
std::string_view name_of_holder(std::string_view name) {
    const std::size_t dot = name.rfind('.');
    return dot == std::string_view::npos ? "" : name.substr(0, dot);
}

/// The columns that tell about the part as a file; "" if its header block tells nothing.
std::string file_columns_of(const MimeObj& entity, const tree_source& source, character_set set) {
    const entity_fields fields(entity);
    const std::string disposition = disposition_of(fields, source.m_rules);
    const std::string name = file_name_of(fields, source);
    if (disposition.empty() && name.empty()) return "";
    const std::string shown_disposition =
        disposition.empty() ? "-" : printable(disposition, character_set::ascii);
    return '\t' + shown_disposition + (name.empty() ? "" : '\t' + printable(name, set));
}

void print_sections_of(const mail_sections::visited& numbered, const tree_source& source,
                       character_set set, section_printer& printer) {
    const MimeObj* const entity = numbered.m_entity;
    const std::string_view name = numbered.m_name;
    const std::string type = printable(media_type_of(*entity), character_set::ascii);
    if (numbered.m_depth == 0)
        printer.print({entity, piece::whole, true}, "message/rfc822", "", "");
    if (numbered.m_is_message) {
        printer.print({entity, piece::header_block, true}, type_of_header_blocks,
                      name_of_holder(name), "HEADER");
        printer.print({entity, piece::body, true}, type, name_of_holder(name), "TEXT");
        if (!numbered.m_has_number) return;
    }
    printer.print({entity, piece::header_block, numbered.m_is_message}, type_of_header_blocks, name,
                  "MIME");
    printer.print({entity, piece::body, numbered.m_is_message}, type, name, "",
                  file_columns_of(*entity, source, set));
}

} // namespace

std::size_t list_sections(std::ostream& to, const MimeObj& root, const tree_source& source,
                          character_set set) {
    mail_sections::ranges ranges(root, source);
    section_printer printer(to, ranges);
    std::size_t left_out = 0;
    mail_sections::walk walk(root);
    while (const mail_sections::visited* const numbered = walk.next()) {
        if (!to) break;
        if (numbered->m_name.empty())
            ++left_out;
        else
            print_sections_of(*numbered, source, set, printer);
    }
    return left_out;
}
