// Walks a tree and names its entities; include/mail_sections.h has the rules.

#include <mail_sections.h>

#include "numbering.h"

#include <charconv>

namespace mail_sections {

using mail_structure_detail::is_multipart;
using mail_structure_detail::message_within;
using MimeObj = MailStructure::MimeObj;

namespace {

constexpr std::size_t most_numbers_in_a_name = 100;

/// An entity that the walk is in, and the beginning of its children's names.
struct level {
    const MimeObj* m_entity;
    std::size_t m_path_bytes;     // the names of its children begin with so many bytes of the path
    std::size_t m_numbers;        // and with so many numbers
    std::size_t m_next_child = 0; // index
};

} // namespace

struct walk::state {
    explicit state(const MimeObj& root) : m_root(&root) {}

    void enter(const MimeObj& entity, bool is_message, std::size_t number);
    void append_number(std::size_t number);

    const MimeObj* m_root;                // null once it has been visited
    std::vector<level> m_levels;          // from the root down to the entity visited last
    std::string m_path;                   // the name of that entity, up to so many numbers
    std::vector<std::uint32_t> m_numbers; // all numbers of that name
    visited m_visited;
};

/// Names the entity and makes it the innermost level of the walk.
/// @param is_message  the entity is the message, or a message within; the path is then the number
///                    of the entity that holds it
/// @param number      the number that a part has after those in the path
void walk::state::enter(const MimeObj& entity, bool is_message, std::size_t number) {
    const bool has_number = !is_message || !is_multipart(entity);
    if (has_number) append_number(is_message ? 1 : number);
    const std::size_t depth = m_levels.size();
    m_levels.push_back({&entity, m_path.size(), m_numbers.size()});
    if (!has_number) m_path += m_path.empty() ? "TEXT" : ".TEXT";
    const bool has_name = m_numbers.size() <= most_numbers_in_a_name;
    m_visited = {&entity, depth, has_name ? std::string_view(m_path) : std::string_view(),
                 is_message, has_number};
}

void walk::state::append_number(std::size_t number) {
    m_numbers.push_back(static_cast<std::uint32_t>(number));
    if (m_numbers.size() > most_numbers_in_a_name) return; // there will be no name
    char digits[20];
    const char* const end = std::to_chars(digits, digits + sizeof digits, number).ptr;
    if (!m_path.empty()) m_path += '.';
    m_path.append(static_cast<const char*>(digits), end);
}

walk::walk(const MimeObj& root) : m_state(std::make_unique<state>(root)) {}
walk::walk(walk&& other) noexcept = default;
walk& walk::operator=(walk&& other) noexcept = default;
walk::~walk() = default;

const visited* walk::next() {
    state& at = *m_state;
    if (at.m_root != nullptr) {
        at.enter(*at.m_root, true, 0);
        at.m_root = nullptr;
        return &at.m_visited;
    }
    std::vector<level>& levels = at.m_levels;
    while (!levels.empty()
           && levels.back().m_next_child == levels.back().m_entity->m_children.size())
        levels.pop_back();
    if (levels.empty()) return nullptr;
    const std::size_t child = levels.back().m_next_child++;
    const MimeObj& parent = *levels.back().m_entity;
    at.m_path.resize(levels.back().m_path_bytes);
    at.m_numbers.resize(levels.back().m_numbers);
    const bool is_message = child == 0 && message_within(parent) != nullptr;
    const std::size_t number =
        is_message ? 0 : mail_structure_detail::number_of_child(parent, child);
    at.enter(parent.m_children[child], is_message, number);
    return &at.m_visited;
}

section walk::name() const {
    section result;
    result.m_numbers = m_state->m_numbers;
    if (!m_state->m_visited.m_has_number) result.m_word = word::text;
    return result;
}

} // namespace mail_sections
