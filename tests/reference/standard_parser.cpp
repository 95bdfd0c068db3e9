// How a line travels:
//
//     next_line -> find_delimiter_line -> on_separator, on_closing_line
//               -> if it is no delimiter line: on_header_line, on_body_line or on_epilogue_line,
//                  by what the innermost entity takes now
//
// The open entities are the path from the root to the innermost. Only the innermost may be within
// its header block, and each line that is no delimiter line goes to it.

#include "reference/standard_parser.h"

#include "reference/standard_boundary.h"
#include "reference/standard_content_type.h"
#include "reference/standard_rules.h"

#include <cstddef>
#include <ios>
#include <new>
#include <optional>
#include <stdexcept>
#include <typeinfo>

namespace reference {

namespace {

using namespace standard;

/// Which lines an entity takes now.
enum class place : std::uint8_t { header, body, epilogue };

struct open_entity {
    entity* m_entity;
    place m_place;
    /// "--" and the boundary, while that is in force.
    std::optional<std::string> m_delimiter;
};

/// The field whose lines are being read.
struct open_field {
    std::string m_name;
    std::string m_body; // the texts of its lines, joined
    field* m_record;    // null where the memory limit leaves no room for one
};

/// What is known of the header block of the innermost entity.
struct header_block {
    /// Nothing before the first field and after a line that was passed over.
    std::optional<open_field> m_field;
    std::optional<content_type> m_content_type;     // the first one
    std::optional<std::string> m_transfer_encoding; // the first one
};

enum class line_kind : std::uint8_t { separator, closing_line, other };

struct delimiter_line {
    line_kind m_kind = line_kind::other;
    std::size_t m_owner = 0; // which of the open entities it belongs to
};

class standard_parser {
public:
    standard_parser(std::istream& in, const options& wanted, message& result)
        : m_in(in), m_wanted(wanted), m_result(result), m_next_start(wanted.m_first_offset) {
        open_child(nullptr);
    }

    void run() {
        try {
            input_line line;
            while (next_line(line)) take_line(line);
        } catch (...) {
            end_header_blocks();
            throw;
        }
        end_header_blocks();
        m_result.m_done = true;
    }

private:
    // ------------------------------------------------------------------------------- reading lines

    /// A CR that does not stand at the end of its line, and a NUL, are bytes like others.
    bool next_line(input_line& line) {
        std::getline(m_in, line.m_text);
        if (m_in.fail()) return false; // failbit or badbit
        line.m_start = m_next_start;
        line.m_end = line.m_start + static_cast<std::uint32_t>(line.m_text.size());
        if (!m_in.eof()) line.m_end += 1; // the LF
        m_next_start = line.m_end;
        while (!line.m_text.empty() && line.m_text.back() == '\r') line.m_text.pop_back();
        return true;
    }

    void take_line(const input_line& line) {
        const delimiter_line found = find_delimiter_line(line);
        switch (found.m_kind) {
        case line_kind::separator: on_separator(found.m_owner, line); break;
        case line_kind::closing_line: on_closing_line(found.m_owner, line); break;
        case line_kind::other: on_line_of_the_innermost(line); break;
        }
    }

    void on_line_of_the_innermost(const input_line& line) {
        switch (innermost().m_place) {
        case place::header: on_header_line(line); break;
        case place::body: on_body_line(line); break;
        case place::epilogue: on_epilogue_line(line); break;
        }
    }

    // ------------------------------------------------------------------------------- open entities

    open_entity& innermost() { return m_open.back(); }

    /// The header block of the child begins. There is no limit on the depth.
    /// @param parent  null for the root
    void open_child(entity* parent) {
        m_result.m_entities.emplace_back(); // text/plain, 7bit
        entity& child = m_result.m_entities.back();
        child.m_parent = parent;
        if (parent != nullptr) parent->m_children.push_back(&child);
        m_open.push_back({&child, place::header, std::nullopt});
        m_block = header_block();
    }

    void grow_contents_of_all_open(const input_line& line) {
        for (const open_entity& open : m_open) grow(open.m_entity->m_contents, line);
    }

    void grow_contents_of_all_ancestors(const input_line& line) {
        for (std::size_t i = 0; i + 1 < m_open.size(); ++i)
            grow(m_open[i].m_entity->m_contents, line);
    }

    // ----------------------------------------------------------------------------- delimiter lines

    /// The innermost multipart that matches has the line, whether it is a separator or a closing
    /// line there.
    delimiter_line find_delimiter_line(const input_line& line) const {
        const std::string text = without_padding(line.m_text);
        for (std::size_t i = m_open.size(); i > 0; --i) {
            const std::optional<std::string>& delimiter = m_open[i - 1].m_delimiter;
            if (!delimiter) continue; // no multipart, within its header block, or closed
            if (text == *delimiter) return {line_kind::separator, i - 1};
            if (text == *delimiter + "--") return {line_kind::closing_line, i - 1};
        }
        return {};
    }

    /// Ends all entities within the multipart. An unfinished header block ends before the line.
    void end_all_within(std::size_t owner) {
        end_header_blocks();
        m_open.erase(m_open.begin() + static_cast<std::ptrdiff_t>(owner) + 1, m_open.end());
    }

    /// A separator opens a part, whatever stands before or after it.
    void on_separator(std::size_t owner, const input_line& line) {
        end_all_within(owner);
        grow_contents_of_all_open(line); // and nothing else
        open_child(innermost().m_entity);
    }

    /// A closing line is a body line. It ends the multipart, before any separator too.
    void on_closing_line(std::size_t owner, const input_line& line) {
        end_all_within(owner);
        on_body_line(line);
        innermost().m_delimiter.reset();
        innermost().m_place = place::epilogue;
    }

    // -------------------------------------------------------------------------------- header block

    void on_header_line(const input_line& line) {
        entity& owner = *innermost().m_entity;
        grow(owner.m_header, line);
        grow(owner.m_mime, line);
        grow_contents_of_all_ancestors(line);

        std::size_t colon = 0;
        if (line.m_text.empty()) {
            end_header_block();
        } else if (is_blank(line.m_text.front())) {
            on_folded_line(line);
        } else if (const std::size_t name_bytes = field_name_bytes(line.m_text, colon);
                   name_bytes > 0) {
            on_field_line(line, name_bytes, colon);
        } else {
            pass_over();
        }
    }

    /// The line belongs to the block and says nothing; so do the lines folded to it.
    void pass_over() { end_field(); }

    /// Continues the line before it, also when it has nothing but blanks. What is folded to a line
    /// that was passed over, or to nothing, is passed over.
    void on_folded_line(const input_line& line) {
        if (!m_block.m_field) return;
        m_block.m_field->m_body += line.m_text;
        if (m_block.m_field->m_record != nullptr) m_block.m_field->m_record->m_end = line.m_end;
    }

    void on_field_line(const input_line& line, std::size_t name_bytes, std::size_t colon) {
        end_field();
        open_field opened;
        opened.m_name = line.m_text.substr(0, name_bytes);
        opened.m_body = line.m_text.substr(colon + 1);
        opened.m_record = record_with_room(line);
        if (opened.m_record != nullptr) {
            opened.m_record->m_name = opened.m_name;
            opened.m_record->m_beg = line.m_start;
            opened.m_record->m_end = line.m_end;
        }
        m_block.m_field = opened;
    }

    /// What happens once the last line of a field is known.
    void end_field() {
        if (!m_block.m_field) return;
        const open_field ended = *m_block.m_field;
        m_block.m_field.reset();
        if (same_name(ended.m_name, "Content-Type")) {
            on_content_type(ended);
        } else if (ended.m_record != nullptr) {
            ended.m_record->m_value = without_white_space_around(ended.m_body);
        }
        if (same_name(ended.m_name, "Content-Transfer-Encoding")) on_transfer_encoding(ended);
    }

    /// The first one counts, well-formed or not. Each has its parameters in its record.
    void on_content_type(const open_field& ended) {
        const content_type found = read_content_type(ended.m_body);
        if (ended.m_record != nullptr) ended.m_record->m_value = found.m_value;
        for (const parameter& next : found.m_parameters) record_parameter(ended.m_record, next);
        if (!m_block.m_content_type) m_block.m_content_type = found;
    }

    /// The first one counts, with a token or without.
    void on_transfer_encoding(const open_field& ended) {
        if (!m_block.m_transfer_encoding)
            m_block.m_transfer_encoding = read_transfer_encoding(ended.m_body);
    }

    // -------------------------------------------------------------------------------- memory limit

    /// The memory limit bounds what is recorded, never what the structure is. While text is kept it
    /// does not bound the fields.
    /// @return a new record for a field, or null
    field* record_with_room(const input_line& line) {
        const std::uint32_t line_bytes = line.m_end - line.m_start;
        const bool has_room = m_wanted.m_keep_text || m_estimate + line_bytes < m_wanted.m_memlimit;
        m_estimate += 64 + line_bytes;
        if (!has_room) return nullptr;
        innermost().m_entity->m_headers.emplace_back();
        return &innermost().m_entity->m_headers.back();
    }

    /// @param record  null where the field has none; its parameters count all the same
    void record_parameter(field* record, const parameter& next) {
        if (m_estimate >= m_wanted.m_memlimit) return;
        m_estimate += static_cast<std::uint32_t>(64 + next.first.size() + next.second.size());
        if (record != nullptr) record->m_params.push_back(next);
    }

    // --------------------------------------------------------------------- end of the header block

    /// Ends the header block of the innermost entity, and of the message that opens with it.
    void end_header_blocks() {
        while (innermost().m_place == place::header) end_header_block();
    }

    /// The entity now has its types, and what depends on them.
    void end_header_block() {
        end_field();
        open_entity& ended = innermost();
        entity& owner = *ended.m_entity;
        ended.m_place = place::body;
        set_transfer_encoding(owner);
        set_media_type(owner);
        if (is_multipart(owner)) {
            owner.m_multipart = true;
            ended.m_delimiter = "--" + *boundary_of(m_block.m_content_type->m_parameters);
        } else if (is_message(owner)) {
            owner.m_message = true;
            open_child(&owner); // exactly one, also when no line follows
        }
    }

    void set_transfer_encoding(entity& owner) const {
        if (m_block.m_transfer_encoding) owner.m_encoding = *m_block.m_transfer_encoding;
    }

    void set_media_type(entity& owner) const {
        media_type settled = {"text", "plain"}; // a malformed field means this in a digest, too
        if (!m_block.m_content_type) {
            if (is_part_of_a_digest(owner)) settled = {"message", "rfc822"};
        } else if (m_block.m_content_type->m_media_type) {
            settled = *m_block.m_content_type->m_media_type;
        }
        owner.m_type = settled.m_type;
        owner.m_subtype = settled.m_subtype;
    }

    /// A multipart without a boundary is a leaf. The transfer encoding of a multipart has no
    /// effect.
    bool is_multipart(const entity& owner) const {
        return same_name(owner.m_type, "multipart")
               && boundary_of(m_block.m_content_type->m_parameters).has_value();
    }

    /// All other types under "message" are leaves.
    static bool is_message(const entity& owner) {
        return is_message_type(owner) && !hides_a_message(owner.m_encoding);
    }

    // --------------------------------------------------------------------------- body and epilogue

    /// A body line is one of its entity and of all that enclose it.
    void on_body_line(const input_line& line) {
        grow_contents_of_all_open(line);
        for (const open_entity& open : m_open) {
            entity& owner = *open.m_entity;
            grow(owner.m_body, line);
            grow(owner.m_mime, line);
            owner.m_lines += 1;
            owner.m_body_last_empty = line.m_text.empty();
            if (m_wanted.m_keep_text) owner.m_body_text += kept_text_of(line);
        }
    }

    /// An epilogue line belongs to the epilogue of its entity alone, and to the contents of all
    /// that enclose it.
    void on_epilogue_line(const input_line& line) {
        grow_contents_of_all_ancestors(line);
        entity& owner = *innermost().m_entity;
        grow(owner.m_epilogue, line);
        owner.m_epilogue_last_empty = line.m_text.empty();
        if (m_wanted.m_keep_text) owner.m_epilogue_text += kept_text_of(line);
    }

    std::istream& m_in;
    const options m_wanted;
    message& m_result;

    std::uint32_t m_next_start;      // offset of the next line
    std::vector<open_entity> m_open; // the root first, the innermost last; never empty
    header_block m_block;            // of the innermost entity
    std::uint32_t m_estimate = 0;    // bytes that the fields of the message may take
};

} // namespace

message parse_standard(std::istream& in, const options& wanted) {
    message result;
    try {
        standard_parser(in, wanted, result).run();
    } catch (const std::ios_base::failure&) { // a runtime_error as well, so it comes first
        result.m_error = "ios_failure";
    } catch (const std::runtime_error& error) {
        result.m_error = std::string("runtime_error: ") + error.what();
    } catch (const std::length_error&) {
        result.m_error = "length_error";
    } catch (const std::bad_cast&) {
        result.m_error = "bad_cast";
    } catch (const std::bad_alloc&) {
        result.m_error = "bad_alloc";
    } catch (...) {
        result.m_error = "other";
    }
    return result;
}

} // namespace reference
