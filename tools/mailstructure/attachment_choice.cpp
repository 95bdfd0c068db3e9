// Looks at all attachments, and tells which ones match if these are several; see the header.

#include "mailstructure/attachment_choice.h"

#include "common/attachments.h"

#include <cstddef>
#include <string>

namespace {

constexpr std::size_t most_sections_told = 10;

} // namespace

std::optional<chosen_piece> choose_by_name(const part_options& options,
                                           const message_reader& reader) {
    const MailStructure::MimeObj& root = reader.message().m_root;
    const file_pattern pattern(options.m_name_pattern.value());
    attachment_walk walk(root, reader.source(), &pattern);
    const std::optional<attachment> chosen = walk.next();
    if (!chosen) {
        complain_about_no_match(options);
        return std::nullopt;
    }
    std::string sections = chosen->m_section;
    std::size_t count = 1;
    while (const std::optional<attachment> another = walk.next()) {
        ++count;
        if (count <= most_sections_told) sections += ", " + another->m_section;
        if (count == most_sections_told + 1) sections += ", ...";
    }
    if (count == 1)
        return chosen_piece{chosen->m_body.m_entity,
                            mail_sections::ranges(root, reader.source()).of(chosen->m_body)};
    complain(display_name(options.m_file) + ": " + std::to_string(count) + " attachments match "
             + escaped(*options.m_name_pattern) + ": " + sections
             + "; name one by its section, or save them with --all");
    return std::nullopt;
}

void complain_about_no_match(const part_options& options) {
    complain(display_name(options.m_file) + ": no attachment has a name that matches "
             + escaped(*options.m_name_pattern));
}
