// Prints a filled tree for diagnosis: structure to std::cerr, kept text of leaves to std::cout.
// Only reads.

#include <mail_structure.h>

#include <cstddef>
#include <fstream>
#include <iostream>
#include <string>
#include <vector>

namespace {

using MimeObj = MailStructure::MimeObj;

/// Ends the line and flushes, so that the two streams keep their order on a terminal.
void print_line(std::ostream& out, std::string line) {
    line += '\n';
    out.write(line.data(), static_cast<std::streamsize>(line.size()));
    out.flush();
}

/// The range as its begin and the offset just past its end, which is not wrapped to 32 bits.
std::string begin_and_end(std::uint32_t beg, std::uint32_t len) {
    return "(" + std::to_string(beg) + "-" + std::to_string(std::uint64_t{beg} + len) + ")";
}

std::string begin_and_end_or_dots(std::uint32_t beg, std::uint32_t len) {
    return len == 0 ? "(...)" : begin_and_end(beg, len);
}

/// Kept: three blanks a level, and never more than 32: deeper levels stand in one column.
/// keeps_indentation_at_32_blanks
std::string indentation(std::size_t level) {
    constexpr std::size_t widest = 32;
    return std::string(level > widest / 3 ? widest : 3 * level, ' ');
}

// Kept: rulers are printed without a text too, and the text as it was kept.
// keeps_rulers_of_leaves_without_text keeps_kept_text_as_it_is
void print_text_between_rulers(const std::string& text) {
    const std::string ruler(40, '-');
    print_line(std::cout, ruler);
    std::cout.write(text.data(), static_cast<std::streamsize>(text.size()));
    print_line(std::cout, ruler);
}

/// Prints the part of an entity's listing that comes before its children's.
void print_opening(const MimeObj& entity, const std::string& indent, int number) {
    print_line(std::cerr, indent + " MIME OBJECT " + std::to_string(number) + " " + entity.m_type
                              + "/" + entity.m_subtype + " lines=" + std::to_string(entity.m_lines)
                              + " size=" + std::to_string(entity.m_body_len));
    if (entity.m_header_len != 0)
        print_line(std::cerr, indent + " Headers "
                                  + begin_and_end(entity.m_header_beg, entity.m_header_len) + " "
                                  + std::to_string(entity.m_headers.size()));
    if (entity.m_contents_len != 0)
        print_line(std::cerr, indent + " Contents "
                                  + begin_and_end(entity.m_contents_beg, entity.m_contents_len));
    if (entity.m_mime_len != 0)
        print_line(std::cerr,
                   indent + " Mime " + begin_and_end(entity.m_mime_beg, entity.m_mime_len));
    for (const MailStructure::header& field : entity.m_headers) {
        print_line(std::cerr, indent + " * " + field.m_name + ": " + field.m_value);
        for (const auto& [name, value] : field.m_params)
            print_line(std::cerr, indent + "   + " + name + "=" + value);
    }
    const std::string body = begin_and_end_or_dots(entity.m_body_beg, entity.m_body_len);
    if (entity.m_children.empty()) {
        // Kept: no blank before this parenthesis, unlike all others; the output is part of the
        // contract. keeps_body_label_without_a_blank
        print_line(std::cerr, indent + "   Body" + body);
        print_text_between_rulers(entity.m_body_text);
    } else {
        print_line(std::cerr, indent + "    Preamble " + body);
    }
}

/// Prints the rest of the entity's listing, which comes after its children's.
void print_closing(const MimeObj& entity, const std::string& indent) {
    if (entity.m_children.empty()) return;
    // Kept: the label is spelled so; the output is part of the contract. keeps_spelling_of_epilogie
    print_line(std::cerr,
               indent + "   Epilogie "
                   + begin_and_end_or_dots(entity.m_epilogue_beg, entity.m_epilogue_len));
}

struct listed_entity {
    const MimeObj* m_entity;
    std::size_t m_next_child;
};

} // namespace

void MailStructure::MimeObj::Dump(std::ifstream&, std::vector<int>& path) const {
    if (path.empty()) path.push_back(1); // the caller owes a number; any will do
    print_opening(*this, indentation(path.size()), path.back());
    std::vector<listed_entity> listed{{this, 0}};
    while (!listed.empty()) {
        auto& [entity, next_child] = listed.back();
        if (next_child < entity->m_children.size()) {
            if (next_child == 0) path.push_back(1);
            const MimeObj& child = entity->m_children[next_child++];
            print_opening(child, indentation(path.size()), path.back());
            listed.push_back({&child, 0});
        } else {
            if (!entity->m_children.empty()) path.pop_back();
            print_closing(*entity, indentation(path.size()));
            ++path.back();
            listed.pop_back();
        }
    }
}

// Kept: the file is not read. keeps_file_unread
void MailStructure::Dump(std::ifstream& ifs) const {
    print_line(std::cerr, " *** Dumping email structure ***");
    std::vector<int> path{1};
    m_root.Dump(ifs, path);
    print_line(std::cerr, " *** End of email structure ***");
}
