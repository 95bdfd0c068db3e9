#include "address_check.h"

namespace mail_structure_detail::findings {

namespace {

constexpr std::size_t none = std::string_view::npos;

/// Words and dots in a row. What follows them says whether they are a name ("Ada Byron <") or the
/// part of an address before the "@".
struct words {
    std::size_t m_begin = 0;
    std::size_t m_count = 0;            // of the words
    std::size_t m_first_dot = none;     // the place of the first dot
    std::size_t m_misplaced_dot = none; // of a dot that has no word before or behind it
    std::size_t m_gap = none;           // of the first gap beside a dot
    bool m_has_quotes = false;
    bool m_has_neighbours = false; // two words without a dot between them
};

class address_reader {
public:
    explicit address_reader(std::string_view value) noexcept : m_text(value) {}

    void read_addresses(how_many allowed) noexcept;
    void read_message_ids(how_many allowed) noexcept;
    const std::optional<departure>& found() const noexcept { return m_text.found(); }

private:
    void take_comma() noexcept;
    void end_group() noexcept;
    void read_address() noexcept;
    void read_angle_address() noexcept;
    void read_route() noexcept;
    void read_message_id() noexcept;
    words read_words() noexcept;
    bool is_name(const words& read) noexcept;
    void read_rest_of_address(const words& local_part) noexcept;
    void read_domain() noexcept;

    structured_text m_text;
    std::size_t m_count = 0;    // of the addresses, a group being one
    bool m_in_group = false;    // a colon has come, and its semicolon has not
    bool m_has_address = false; // since the last comma or colon
    std::size_t m_comma = none; // the place of the last comma, if nothing stands behind it
};

void address_reader::read_addresses(how_many allowed) noexcept {
    for (m_text.skip_gap(); !m_text.at_end() && !m_text.has_failed(); m_text.skip_gap()) {
        if (m_text.is_at(',') && (m_in_group || allowed != how_many::one))
            take_comma();
        else if (m_in_group && m_text.is_at(';'))
            end_group();
        else if (m_has_address)
            m_text.fail();
        else
            read_address();
    }
    if (m_in_group || (m_count == 0 && allowed != how_many::any)) m_text.fail();
    if (m_comma != none) m_text.is_obsolete_at(m_comma, 1);
}

/// The obsolete grammar allows commas with nothing between them.
void address_reader::take_comma() noexcept {
    if (!m_has_address) m_text.is_obsolete_at(m_text.place(), 1);
    m_has_address = false;
    m_comma = m_text.place();
    m_text.take(',');
}

void address_reader::end_group() noexcept {
    if (m_comma != none) m_text.is_obsolete_at(m_comma, 1);
    m_text.take(';');
    m_comma = none;
    m_in_group = false;
    m_has_address = true;
    ++m_count;
}

/// Reads a mailbox, or a group up to its colon.
void address_reader::read_address() noexcept {
    const words read = read_words();
    m_comma = none;
    if (m_text.is_at(':') && !m_in_group) {
        if (read.m_count == 0 || !is_name(read)) return m_text.fail();
        m_text.take(':');
        m_in_group = true;
        return;
    }
    if (m_text.is_at('<')) {
        if (is_name(read)) read_angle_address();
    } else {
        read_rest_of_address(read);
    }
    m_has_address = true;
    if (!m_in_group) ++m_count;
}

/// Reads an address in angle brackets.
void address_reader::read_angle_address() noexcept {
    m_text.take('<');
    m_text.skip_gap();
    if (m_text.is_at('@') || m_text.is_at(',')) read_route();
    read_rest_of_address(read_words());
    m_text.skip_gap();
    if (!m_text.take('>')) m_text.fail();
}

/// Reads the obsolete list of domains before an address, "@a,@b:".
void address_reader::read_route() noexcept {
    m_text.is_obsolete_at(m_text.place(), 1);
    while (!m_text.take(':') && !m_text.has_failed()) {
        if (m_text.take('@'))
            read_domain();
        else if (!m_text.take(','))
            m_text.fail();
        m_text.skip_gap();
    }
}

void address_reader::read_message_ids(how_many allowed) noexcept {
    std::size_t count = 0;
    for (m_text.skip_gap(); !m_text.at_end() && !m_text.has_failed(); m_text.skip_gap()) {
        if (allowed == how_many::one && count == 1) return m_text.fail();
        if (m_text.is_at('<')) {
            read_message_id();
            ++count;
            continue;
        }
        // Words between identifiers are obsolete, but not in Message-ID.
        const std::size_t begin = m_text.place();
        if (allowed == how_many::one || !is_name(read_words())) return m_text.fail();
        if (m_text.place() == begin) return m_text.fail();
        m_text.is_obsolete_at(begin, 1);
    }
    if (count == 0) m_text.fail();
}

/// Reads an identifier in angle brackets. Gaps and quotes in it are obsolete.
void address_reader::read_message_id() noexcept {
    m_text.take('<');
    const std::size_t begin = m_text.place();
    read_rest_of_address(read_words());
    const std::string_view read = m_text.read_since(begin);
    const std::size_t obsolete = read.find_first_of(" \t\r\n(\"");
    if (obsolete < read.find('[')) m_text.is_obsolete_at(begin + obsolete, 1);
    if (!m_text.take('>')) m_text.fail();
}

/// Reads all words and dots that follow, and the gaps between them.
words address_reader::read_words() noexcept {
    words read;
    read.m_begin = m_text.place();
    bool is_behind_dot = true; // no dot may come first
    while (!m_text.has_failed()) {
        const auto gap = m_text.skip_gap();
        const bool is_at_dot = m_text.is_at('.');
        const bool is_beside_dot = is_at_dot || read.m_first_dot != none;
        if (gap && is_beside_dot && (is_at_dot || is_behind_dot) && read.m_gap == none)
            read.m_gap = gap.m_begin;
        if (is_at_dot) {
            if (is_behind_dot && read.m_misplaced_dot == none)
                read.m_misplaced_dot = m_text.place();
            if (read.m_first_dot == none) read.m_first_dot = m_text.place();
            m_text.take('.');
            is_behind_dot = true;
            continue;
        }
        if (m_text.is_at('"')) {
            read.m_has_quotes = true;
            m_text.skip_quoted_string();
        } else if (m_text.take_while(is_atom_character).empty()) {
            break;
        }
        ++read.m_count;
        read.m_has_neighbours = read.m_has_neighbours || !is_behind_dot;
        is_behind_dot = false;
    }
    if (is_behind_dot && read.m_first_dot != none && read.m_misplaced_dot == none)
        read.m_misplaced_dot = m_text.place();
    return read;
}

/// Whether the words are a name, or there are none. Dots in names are obsolete, and none may come
/// first.
bool address_reader::is_name(const words& read) noexcept {
    if (read.m_first_dot == none) return !m_text.has_failed();
    m_text.is_obsolete_at(read.m_first_dot, 1);
    if (read.m_first_dot == read.m_begin) m_text.fail_at(read.m_begin, 1);
    return !m_text.has_failed();
}

/// Reads the "@" and the domain behind the words.
void address_reader::read_rest_of_address(const words& local_part) noexcept {
    const bool is_obsolete_form =
        local_part.m_first_dot != none && (local_part.m_gap != none || local_part.m_has_quotes);
    if (is_obsolete_form) m_text.is_obsolete_at(local_part.m_first_dot, 1);
    if (local_part.m_count == 0 || local_part.m_has_neighbours || !m_text.is_at('@'))
        return m_text.fail();
    if (local_part.m_misplaced_dot != none) return m_text.fail_at(local_part.m_misplaced_dot, 1);
    m_text.take('@');
    read_domain();
}

/// Reads a domain name, or an address in square brackets.
void address_reader::read_domain() noexcept {
    m_text.skip_gap();
    if (m_text.is_at('[')) return m_text.skip_domain_literal();
    for (;;) {
        if (m_text.take_while(is_atom_character).empty()) return m_text.fail();
        const auto before_dot = m_text.skip_gap();
        const std::size_t dot = m_text.place();
        if (m_text.has_failed() || !m_text.take('.')) return;
        const auto behind_dot = m_text.skip_gap();
        if (before_dot || behind_dot) m_text.is_obsolete_at(dot, 1);
    }
}

} // namespace

std::optional<departure> check_addresses(std::string_view value, how_many allowed) noexcept {
    address_reader reader(value);
    reader.read_addresses(allowed);
    return reader.found();
}

std::optional<departure> check_message_ids(std::string_view value, how_many allowed) noexcept {
    address_reader reader(value);
    reader.read_message_ids(allowed);
    return reader.found();
}

} // namespace mail_structure_detail::findings
