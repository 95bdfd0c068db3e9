// From the text of a SECTION to a place in the tree; see the header. sections.h says how entities
// are numbered.

#include "common/section_lookup.h"

#include "common/ascii_case.h"
#include "common/sections.h"

#include <algorithm>
#include <limits>

using MimeObj = MailStructure::MimeObj;

namespace {

bool is_digit(char c) { return c >= '0' && c <= '9'; }

/// "12" as 12; 0 for a text that is no number or begins with 0. A number too great for any message
/// becomes the greatest that a std::size_t holds.
std::size_t number_from(std::string_view text) {
    constexpr std::size_t greatest = std::numeric_limits<std::size_t>::max();
    if (text.empty() || text.front() == '0' || !std::all_of(text.begin(), text.end(), is_digit))
        return 0;
    std::size_t number = 0;
    for (const char digit : text) {
        if (number > (greatest - 9) / 10) return greatest;
        number = number * 10 + static_cast<std::size_t>(digit - '0');
    }
    return number;
}

section::word word_from(std::string_view text) {
    if (equal_ignoring_case(text, "HEADER")) return section::word::header;
    if (equal_ignoring_case(text, "TEXT")) return section::word::text;
    if (equal_ignoring_case(text, "MIME")) return section::word::mime;
    return section::word::none;
}

/// What is wrong with a SECTION whose rest is neither a number nor a word where one is expected.
std::string complaint_about(std::string_view rest, bool after_a_number) {
    if (equal_ignoring_case(rest.substr(0, 13), "HEADER.FIELDS"))
        return "HEADER.FIELDS is not supported; HEADER gives the whole header block";
    const std::string expected = after_a_number ? "HEADER, TEXT or MIME" : "HEADER or TEXT";
    return "not a section: a part number (from 1) or one of " + expected + " is expected "
           + (rest.empty() ? "at the end" : "at \"" + std::string(rest) + '"');
}

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

/// The given count of numbers from the first on, and then the last one, with dots between them.
std::string joined(const std::vector<std::size_t>& numbers, std::size_t first_ones,
                   std::size_t last) {
    std::string text;
    for (std::size_t index = 0; index < first_ones; ++index)
        text += std::to_string(numbers[index]) + '.';
    return text + std::to_string(last);
}

/// The section nearest to the numbers, of which the one at `index` exceeds the greatest that exists
/// there.
std::string nearest_to(const std::vector<std::size_t>& numbers, std::size_t index,
                       std::size_t greatest) {
    if (greatest != 0) return joined(numbers, index, greatest);
    if (index == 0) return "TEXT"; // a multipart without parts
    return joined(numbers, index - 1, numbers[index - 1]);
}

/// A section of the message itself.
std::variant<section_place, no_section> find_at_top(const MimeObj& root, section::word word) {
    switch (word) {
    case section::word::none: return section_place{&root, section_place::piece::whole, true};
    case section::word::header:
        return section_place{&root, section_place::piece::header_block, true};
    case section::word::text: return section_place{&root, section_place::piece::body, true};
    case section::word::mime: break;
    }
    return no_section{"HEADER"};
}

/// A section of the part that the numbers of the wanted section name.
std::variant<section_place, no_section> find_in_part(const found_entity& part,
                                                     const section& wanted) {
    const std::vector<std::size_t>& numbers = wanted.m_numbers;
    const std::string number = joined(numbers, numbers.size() - 1, numbers.back());
    const MimeObj* const message = message_within(*part.m_entity);
    switch (wanted.m_word) {
    case section::word::none:
        return section_place{part.m_entity, section_place::piece::body, part.m_is_message};
    case section::word::mime:
        return section_place{part.m_entity, section_place::piece::header_block, part.m_is_message};
    case section::word::header:
        if (message == nullptr) return no_section{number + ".MIME"};
        return section_place{message, section_place::piece::header_block, true};
    case section::word::text:
        if (message == nullptr) return no_section{number};
        return section_place{message, section_place::piece::body, true};
    }
    return no_section{number};
}

} // namespace

std::optional<section> parse_section(std::string_view text, std::string& complaint) {
    section parsed;
    if (text.empty()) return parsed;
    for (std::string_view rest = text;;) {
        const std::size_t dot = std::min(rest.find('.'), rest.size());
        const bool last = dot == rest.size();
        if (const std::size_t number = number_from(rest.substr(0, dot)); number != 0) {
            parsed.m_numbers.push_back(number);
            if (last) return parsed;
            rest.remove_prefix(dot + 1);
            continue;
        }
        parsed.m_word = word_from(rest);
        const bool after_a_number = !parsed.m_numbers.empty();
        if (parsed.m_word == section::word::none
            || (parsed.m_word == section::word::mime && !after_a_number)) {
            complaint = complaint_about(rest, after_a_number);
            return std::nullopt;
        }
        return parsed;
    }
}

std::variant<section_place, no_section> find_section(const MimeObj& root, const section& wanted) {
    const std::vector<std::size_t>& numbers = wanted.m_numbers;
    if (numbers.empty()) return find_at_top(root, wanted.m_word);
    found_entity part;
    numbered_parts parts(&root, nullptr, 0);
    for (std::size_t index = 0; index < numbers.size(); ++index) {
        if (numbers[index] > parts.count())
            return no_section{nearest_to(numbers, index, parts.count())};
        part = parts.at(numbers[index]);
        parts = parts_of(*part.m_entity);
    }
    return find_in_part(part, wanted);
}
