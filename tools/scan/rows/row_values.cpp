// Parses with rapidjson, in the line itself, and compares the members with those that the kind of
// row has; see the header.

#include "scan/rows/row_values.h"

#include "common/terminal.h"

#include <algorithm>
#include <limits>
#include <rapidjson/error/en.h>
#include <rapidjson/reader.h>

namespace {

/// More members than a row of any kind has. It bounds the search for each of them.
constexpr std::size_t most_members = 64;

std::string quoted(std::string_view name) {
    constexpr std::size_t most_shown = 40;
    return '"' + printable_beginning(name, locale_character_set(), most_shown) + '"';
}

} // namespace

/// Takes the events of the parser: the members of one object, some of which are ranges. What is
/// none of these ends the parsing.
class row_events : public rapidjson::BaseReaderHandler<rapidjson::UTF8<>, row_events> {
public:
    explicit row_events(std::vector<row_values::value>& values) : m_values(values) {
        m_values.clear();
    }

    bool is_complete() const { return m_depth == 0 && m_began; }

    bool Default() { return false; }
    bool Null() { return m_depth == 1 && set(row_values::found::null); }
    bool Bool(bool yes) { return m_depth == 1 && set(row_values::found::flag, yes ? 1 : 0); }
    bool Uint(unsigned number) { return Uint64(number); }
    bool Int(int number) { return Int64(number); }
    bool Int64(std::int64_t number) {
        return m_depth == 1 && set(row_values::found::negative, static_cast<std::uint64_t>(number));
    }
    bool Uint64(std::uint64_t number) {
        return m_depth == 1 ? set(row_values::found::number, number) : set_in_range(number);
    }
    bool String(const char* text, rapidjson::SizeType length, bool /*copy*/) {
        if (m_depth != 1) return false;
        m_values.back().m_text = std::string_view(text, length);
        return set(row_values::found::text);
    }
    bool Key(const char* text, rapidjson::SizeType length, bool /*copy*/) {
        const std::string_view name(text, length);
        if (m_depth == 2) {
            m_is_offset = name == "offset";
            return m_is_offset || name == "length";
        }
        if (m_values.size() == most_members) return false;
        m_values.emplace_back().m_name = name;
        return true;
    }
    bool StartObject() {
        if (m_depth == 1) {
            m_range_members = 0;
            set(row_values::found::range);
        }
        m_began = true;
        return ++m_depth <= 2;
    }
    bool EndObject(rapidjson::SizeType count) {
        --m_depth;
        return m_depth == 0 || (count == 2 && m_range_members == 3);
    }

private:
    bool set(row_values::found what, std::uint64_t number = 0) {
        m_values.back().m_found = what;
        m_values.back().m_number = number;
        return true;
    }
    bool set_in_range(std::uint64_t number) {
        if (m_depth != 2 || number > std::numeric_limits<std::uint32_t>::max()) return false;
        (m_is_offset ? m_values.back().m_number : m_values.back().m_length) = number;
        m_range_members |= m_is_offset ? 1U : 2U;
        return true;
    }

    std::vector<row_values::value>& m_values;
    int m_depth = 0;
    bool m_began = false;
    bool m_is_offset = false;     // which member of a range the next number is
    unsigned m_range_members = 0; // 1: the offset was there; 2: the length was
};

std::optional<line_error> row_values::parse(std::string& line) {
    row_events events(m_read);
    rapidjson::Reader reader;
    rapidjson::InsituStringStream text(line.data());
    constexpr unsigned flags = rapidjson::kParseInsituFlag | rapidjson::kParseIterativeFlag
                               | rapidjson::kParseValidateEncodingFlag;
    const std::size_t size = line.size();
    const rapidjson::ParseResult result = reader.Parse<flags>(text, events);
    if (result.IsError()) {
        const bool is_json = result.Code() == rapidjson::kParseErrorTermination;
        return line_error{result.Offset(), is_json
                                               ? "a row of a scan has no such value here"
                                               : std::string("not JSON: ")
                                                     + rapidjson::GetParseError_En(result.Code())};
    }
    // The parser takes a NUL for the end.
    if (text.Tell() != size) return line_error{text.Tell(), "not JSON: a NUL in the line"};
    if (!events.is_complete()) return line_error{0, "not an object"};
    if (std::optional<std::string> what = arrange()) return line_error{0, std::move(*what)};
    return std::nullopt;
}

/// Looks up which kind of row it is. @return what is wrong
std::optional<std::string> row_values::find_kind() {
    const auto named_kind = std::find_if(m_read.begin(), m_read.end(),
                                         [](const value& one) { return one.m_name == "kind"; });
    if (named_kind == m_read.end() || named_kind->m_found != found::text)
        return "a row of a scan has a member \"kind\"";
    const auto* const known =
        std::find_if(row_kinds.begin(), row_kinds.end(),
                     [&](const row_kind_members& one) { return one.m_name == named_kind->m_text; });
    if (known == row_kinds.end()) return "no kind of row is called " + quoted(named_kind->m_text);
    m_kind = static_cast<row_kind>(known - row_kinds.begin());
    m_read.erase(named_kind);
    return std::nullopt;
}

/// Brings the values into the order of the members. @return what is wrong
std::optional<std::string> row_values::arrange() {
    if (auto what = find_kind()) return what;
    const row_kind_members& known = row_kinds[static_cast<std::size_t>(m_kind)];
    m_values.assign(known.m_members.size(), value());
    std::size_t next = 0; // the member after the last one, which most often comes next
    for (const value& one : m_read) {
        const auto is_it = [&one](const row_member& each) { return each.m_name == one.m_name; };
        if (next == known.m_members.size() || !is_it(known.m_members[next]))
            next = static_cast<std::size_t>(
                std::find_if(known.m_members.begin(), known.m_members.end(), is_it)
                - known.m_members.begin());
        if (next == known.m_members.size())
            return "a row of kind \"" + std::string(known.m_name) + "\" has no member "
                   + quoted(one.m_name);
        if (m_values[next].m_found != found::nothing)
            return "there is more than one member " + quoted(one.m_name);
        m_values[next++] = one;
    }
    for (std::size_t index = 0; index < known.m_members.size(); ++index)
        if (!fits(m_values[index], known.m_members[index]))
            return "the value of the member " + quoted(known.m_members[index].m_name)
                   + " is missing, or none that a scan writes";
    return std::nullopt;
}

bool row_values::fits(const value& one, const row_member& member) {
    switch (one.m_found) {
    case found::nothing: return member.m_presence == presence::may_be_left_out;
    case found::null: return member.m_presence != presence::needed;
    case found::number: {
        // The tables hold signed numbers of 64 bits.
        const bool is_number =
            member.m_form == value_form::number || member.m_form == value_form::signed_number;
        return is_number && one.m_number <= std::uint64_t{std::numeric_limits<std::int64_t>::max()};
    }
    case found::negative: return member.m_form == value_form::signed_number;
    case found::flag: return member.m_form == value_form::flag;
    case found::text: return member.m_form == value_form::text;
    case found::range: return member.m_form == value_form::range;
    }
    return false;
}

std::optional<std::string_view> row_values::member() const {
    if (m_values[1].m_found != found::text) return std::nullopt;
    return m_values[1].m_text;
}

std::optional<std::uint64_t> row_values::message() const {
    if (m_kind == row_kind::source || m_values[2].m_found != found::number) return std::nullopt;
    return m_values[2].m_number;
}

void row_values::append_packed(std::string& rows) const {
    row_writer row(rows, row_form::packed);
    row.begin(m_kind);
    for (const value& one : m_values) {
        switch (one.m_found) {
        case found::nothing:
        case found::null: row.write_null(one.m_name); break;
        case found::number:
        case found::negative:
        case found::flag: row.write_number(one.m_name, one.m_number); break;
        case found::text: row.write_text(one.m_name, one.m_text); break;
        case found::range:
            row.write_range(one.m_name, static_cast<std::uint32_t>(one.m_number),
                            static_cast<std::uint32_t>(one.m_length));
        }
    }
    row.end();
}
