// Compares the name of each field with the known names of its length; see the header.

#include "common/entity_fields.h"

#include "common/ascii_case.h"

namespace {

/// In the order of known_field, and as most senders write them.
constexpr std::array<std::string_view, 10> known_names = {"To",
                                                          "Cc",
                                                          "From",
                                                          "Date",
                                                          "Subject",
                                                          "Message-ID",
                                                          "Content-ID",
                                                          "Content-Type",
                                                          "Content-Disposition",
                                                          "Content-Transfer-Encoding"};

/// A bit for each length that a known name has.
constexpr std::uint32_t known_lengths = [] {
    std::uint32_t lengths = 0;
    for (const std::string_view name : known_names) lengths |= std::uint32_t{1} << name.size();
    return lengths;
}();

/// Faster than the comparison that ignores case, if the name is written as usual.
bool is_name(std::string_view written, std::string_view usual) {
    return written == usual || equal_ignoring_case(written, usual);
}

bool has_known_length(std::string_view name) {
    return name.size() < 32 && (known_lengths >> name.size() & 1U) != 0;
}

} // namespace

entity_fields::entity_fields(const MailStructure::MimeObj& entity) noexcept : m_entity(entity) {
    static_assert(known_names.size() == count);
    for (const MailStructure::header& field : entity.m_headers) {
        if (!has_known_length(field.m_name)) continue; // as most have not
        for (std::size_t at = 0; at < count; ++at) {
            if (!is_name(field.m_name, known_names[at])) continue;
            first_and_last& found = m_found[at];
            if (found.m_first == nullptr) found.m_first = &field;
            found.m_last = &field;
            break;
        }
    }
}
