#include "support/tree_text.h"

#include "support/escape.h"

#include <cstddef>
#include <cstdint>
#include <string_view>
#include <vector>

namespace test_support {
namespace {

using MimeObj = MailStructure::MimeObj;

enum class detail : std::uint8_t { structure, everything };

void append_range(std::string& text, std::string_view label, std::uint32_t beg, std::uint32_t len) {
    if (beg == 0 && len == 0) return;
    text.append(label).append(std::to_string(beg)).append("+").append(std::to_string(len));
}

void append_entity(std::string& text, const MimeObj& entity, detail wanted) {
    text.append(" ").append(escaped(entity.m_type)).append("/").append(escaped(entity.m_subtype));
    if (entity.m_multipart) text += " multipart";
    if (entity.m_message) text += " message";
    if (!entity.m_encoding.empty()) text.append(" enc=").append(escaped(entity.m_encoding));
    append_range(text, " h=", entity.m_header_beg, entity.m_header_len);
    append_range(text, " m=", entity.m_mime_beg, entity.m_mime_len);
    append_range(text, " b=", entity.m_body_beg, entity.m_body_len);
    append_range(text, " e=", entity.m_epilogue_beg, entity.m_epilogue_len);
    append_range(text, " c=", entity.m_contents_beg, entity.m_contents_len);
    if (entity.m_lines != 0) text.append(" n=").append(std::to_string(entity.m_lines));
    if (wanted == detail::everything) {
        if (entity.m_body_last_empty) text += " body-last-empty";
        if (entity.m_epilogue_last_empty) text += " epilogue-last-empty";
    }
    text += '\n';
}

void append_field(std::string& text, const MailStructure::header& field) {
    const bool is_unset = field.m_beg == 0xFFFFFFFF;
    text.append("  ").append(is_unset ? "unset" : std::to_string(field.m_beg));
    text.append("-").append(std::to_string(field.m_end));
    text.append(" \"").append(escaped(field.m_name));
    text.append("\" \"").append(escaped(field.m_value)).append("\"");
    for (const auto& [name, value] : field.m_params)
        text.append(" (").append(escaped(name)).append(" \"").append(escaped(value)).append("\")");
    text += '\n';
}

void append_kept_text(std::string& text, std::string_view label, const std::string& kept) {
    if (!kept.empty())
        text.append("  ").append(label).append(" \"").append(escaped(kept)).append("\"\n");
}

/// An entity on the way from the root to the one that is being printed.
struct step {
    const MimeObj* m_entity;
    std::size_t m_next_child;
    std::size_t m_path_length; // of the path up to and including this entity
};

std::string text_of(const MimeObj& root, detail wanted) {
    std::string text;
    std::string path = "1";
    std::vector<step> way;
    const auto enter = [&](const MimeObj& entity) {
        text += path;
        append_entity(text, entity, wanted);
        if (wanted == detail::everything) {
            for (const MailStructure::header& field : entity.m_headers) append_field(text, field);
            append_kept_text(text, "body", entity.m_body_text);
            append_kept_text(text, "epilogue", entity.m_epilogue_text);
        }
        way.push_back({&entity, 0, path.size()});
    };
    enter(root);
    while (!way.empty()) {
        step& here = way.back();
        path.resize(here.m_path_length);
        if (here.m_next_child == here.m_entity->m_children.size()) {
            way.pop_back();
            continue;
        }
        const MimeObj& child = here.m_entity->m_children[here.m_next_child++];
        path.append(".").append(std::to_string(here.m_next_child));
        enter(child);
    }
    return text;
}

} // namespace

const char tree_text_key[] =
    "\n"
    "Key to the text of a tree, in which each entity has a line:\n"
    "  1.2 text/plain     path from the root, type and subtype\n"
    "  multipart message  the flags that are set\n"
    "  enc=7bit           transfer encoding\n"
    "  h=53+6             header block: it begins at byte 53 and has 6 bytes\n"
    "  m= b= e= c=        in the same way: whole entity, body, epilogue, contents\n"
    "  n=1                number of body lines\n"
    "  body-last-empty epilogue-last-empty  the last line there was empty\n"
    "A full text also shows, after the line of the entity:\n"
    "  0-20 \"To\" \"a\" (b \"c\")  a field from byte 0 up to, but not including, byte 20;\n"
    "                         its name, its value, and its parameters\n"
    "  body \"...\" epilogue \"...\"  the texts that were kept\n"
    "The last line may be \"! \" and the exception that left Fill.\n";

std::string tree_text(const MimeObj& root) { return text_of(root, detail::structure); }

std::string full_tree_text(const MimeObj& root) { return text_of(root, detail::everything); }

} // namespace test_support
