// From a section to a place in the tree; include/mail_sections.h says how entities are numbered.

#include <mail_sections.h>

#include "numbering.h"

namespace mail_sections {

using mail_structure_detail::is_multipart;
using mail_structure_detail::message_within;
using mail_structure_detail::numbers_of_message;
using MimeObj = MailStructure::MimeObj;

namespace {

/// An entity, and whether it was found as a message or as a part.
struct found_entity {
    const MimeObj* m_entity = nullptr;
    bool m_is_message = false;
};

/// The entities that have one number more than a given part, or one number in all.
class numbered_parts {
public:
    /// @param message      the message whose parts come first, or null
    /// @param others       the entity whose other children follow, or null
    /// @param first_other  index of the first of those children
    numbered_parts(const MimeObj* message, const MimeObj* others, std::size_t first_other)
        : m_message(message), m_others(others), m_first_other(first_other) {}

    std::size_t count() const { return count_in_message() + count_of_others(); }

    /// @param number  1 to count()
    found_entity at(std::size_t number) const {
        if (number > count_in_message())
            return {&m_others->m_children[m_first_other + number - count_in_message() - 1], false};
        if (is_multipart(*m_message)) return {&m_message->m_children[number - 1], false};
        return {m_message, true};
    }

private:
    std::size_t count_in_message() const {
        return m_message == nullptr ? 0 : numbers_of_message(*m_message);
    }
    std::size_t count_of_others() const {
        return m_others == nullptr ? 0 : m_others->m_children.size() - m_first_other;
    }

    const MimeObj* m_message;
    const MimeObj* m_others;
    std::size_t m_first_other;
};

numbered_parts parts_of(const MimeObj& part) {
    const MimeObj* const message = message_within(part);
    return {message, &part, message == nullptr ? std::size_t{0} : std::size_t{1}};
}

using number_list = std::vector<std::uint32_t>;

/// The first so many of the numbers.
number_list first_of(const number_list& numbers, std::size_t count) {
    return {numbers.begin(), numbers.begin() + static_cast<std::ptrdiff_t>(count)};
}

/// There is no part of the number at `index`.
/// @param greatest  the greatest number that exists there, or 0
found no_part(const number_list& numbers, std::size_t index, std::size_t greatest) {
    found result;
    result.m_error.m_fault = fault::no_part;
    result.m_error.m_parts = static_cast<std::uint32_t>(greatest);
    section& nearest = result.m_error.m_nearest;
    nearest.m_numbers = first_of(numbers, index);
    if (greatest != 0)
        nearest.m_numbers.push_back(numbers[index] == 0 ? 1 : result.m_error.m_parts);
    else if (index == 0)
        nearest.m_word = word::text; // a multipart without parts
    return result;
}

found found_at(const MimeObj& entity, piece which, bool is_message) {
    found result;
    result.m_place = {&entity, which, is_message};
    return result;
}

/// A section without numbers.
found find_in_message(const MimeObj& root, word last) {
    switch (last) {
    case word::none: return found_at(root, piece::whole, true);
    case word::header:
    case word::header_fields:
    case word::header_fields_not: return found_at(root, piece::header_block, true);
    case word::text: return found_at(root, piece::body, true);
    case word::mime: break;
    }
    found result;
    result.m_error.m_fault = fault::no_part;
    result.m_error.m_nearest.m_word = word::header;
    return result;
}

/// A section of the part that the numbers of the wanted section name.
found find_in_part(const found_entity& part, const section& wanted) {
    const MimeObj* const message = message_within(*part.m_entity);
    switch (wanted.m_word) {
    case word::none: return found_at(*part.m_entity, piece::body, part.m_is_message);
    case word::mime: return found_at(*part.m_entity, piece::header_block, part.m_is_message);
    case word::header:
    case word::header_fields:
    case word::header_fields_not:
        if (message != nullptr) return found_at(*message, piece::header_block, true);
        break;
    case word::text:
        if (message != nullptr) return found_at(*message, piece::body, true);
        break;
    }
    found result;
    result.m_error.m_fault = fault::no_message;
    result.m_error.m_nearest.m_numbers = wanted.m_numbers;
    if (wanted.m_word != word::text) result.m_error.m_nearest.m_word = word::mime;
    return result;
}

} // namespace

found find(const MimeObj& root, const section& wanted) {
    const number_list& numbers = wanted.m_numbers;
    if (numbers.empty()) return find_in_message(root, wanted.m_word);
    found_entity part;
    numbered_parts parts(&root, nullptr, 0);
    for (std::size_t index = 0; index < numbers.size(); ++index) {
        if (numbers[index] == 0 || numbers[index] > parts.count())
            return no_part(numbers, index, parts.count());
        part = parts.at(numbers[index]);
        parts = parts_of(*part.m_entity);
    }
    return find_in_part(part, wanted);
}

found find(const MimeObj& root, std::string_view text) {
    parsed wanted = parse(text);
    if (wanted) return find(root, wanted.m_section);
    found result;
    result.m_error = std::move(wanted.m_error);
    return result;
}

} // namespace mail_sections
