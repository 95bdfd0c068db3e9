#include "header_block.h"

#include "../lines/character_class.h"
#include "boundary.h"
#include "content_type.h"
#include "field_text.h"

#include <cstddef>
#include <optional>
#include <string_view>
#include <utility>

namespace mail_structure_detail::standard {

namespace {

using MimeObj = MailStructure::MimeObj;

constexpr std::size_t no_colon = std::string_view::npos;

/// The place of the colon behind the field name and blanks; no_colon where the line begins no
/// field.
std::size_t colon_of(const input_line& line) noexcept {
    if (line.m_name_bytes == 0) return no_colon;
    std::size_t at = line.m_name_bytes;
    while (at < line.m_text.size() && is_blank(line.m_text[at])) ++at;
    return at < line.m_text.size() && line.m_text[at] == ':' ? at : no_colon;
}

field_kind kind_of(std::string_view name) noexcept {
    if (is_word(name, "content-type")) return field_kind::content_type;
    if (is_word(name, "content-transfer-encoding")) return field_kind::transfer_encoding;
    return field_kind::other;
}

/// Appends a line's text to a value, but no white space at the front of the value.
void append_text(std::string& value, std::string_view text) {
    if (!value.empty()) {
        value += text;
        return;
    }
    while (!text.empty() && is_space(text.front())) text.remove_prefix(1);
    value = text;
}

/// Adds the text of one line of the field.
void add_text(standard_state& state, std::string_view text) {
    const header_block_state& block = state.m_block;
    const bool is_structured =
        block.m_kind == field_kind::content_type || block.m_kind == field_kind::transfer_encoding;
    if (is_structured) state.m_field_text += text;
    if (block.m_record != nullptr && block.m_kind != field_kind::content_type)
        append_text(block.m_record->m_value, text);
}

/// The first Content-Type field says what the entity is.
void set_type(MimeObj& entity, const media_type& type) {
    if (type.m_type.empty()) return; // malformed: the entity stays text/plain
    entity.m_type = type.m_type;
    entity.m_subtype = type.m_subtype;
}

/// Counts a parameter and adds it to the field's record, if there is one, as long as the memory
/// limit leaves room.
void record_parameter(standard_state& state, const parameter& found) {
    header_memory& memory = state.m_tree.m_memory;
    if (!memory.has_room()) return;
    memory.add(static_cast<std::uint32_t>(found.m_name.size() + found.m_value.size()));
    if (state.m_block.m_record != nullptr) state.m_open.add_parameter(found.m_name, found.m_value);
}

void read_parameters(standard_state& state, content_type_reader& reader) {
    parameter found;
    while (reader.read_parameter(found)) record_parameter(state, found);
}

/// Reads the parameters of a multipart, one of which gives its boundary.
void read_multipart_parameters(standard_state& state, content_type_reader& reader) {
    boundary_parameter boundary;
    parameter found;
    while (reader.read_parameter(found)) {
        record_parameter(state, found);
        boundary.take(found.m_name, found.m_value);
    }
    const std::optional<std::string_view> value = boundary.value();
    if (!value) return;
    state.m_boundary = *value;
    state.m_block.m_has_boundary = true;
}

void end_content_type(standard_state& state, std::string_view text) {
    header_block_state& block = state.m_block;
    if (block.m_record != nullptr) block.m_record->m_value = value_before_parameters(text);
    content_type_reader reader(text);
    const media_type type = reader.read_type();
    const bool counts = !std::exchange(block.m_has_content_type, true);
    if (counts) set_type(state.m_open.innermost(), type);
    if (counts && is_word(type.m_type, "multipart"))
        read_multipart_parameters(state, reader);
    else
        read_parameters(state, reader);
}

void end_transfer_encoding(standard_state& state, std::string_view text) {
    if (std::exchange(state.m_block.m_has_encoding, true)) return; // the first one counts
    state.m_open.innermost().m_encoding = transfer_encoding(text);
}

/// Does what a field says of the entity, when its last line has come.
/// @param text  from just past the colon on, without line ends
void apply_field(standard_state& state, field_kind kind, std::string_view text) {
    if (kind == field_kind::content_type) end_content_type(state, text);
    if (kind == field_kind::transfer_encoding) end_transfer_encoding(state, text);
}

/// Ends the field that is being read, if there is one: its last line has come.
void end_field(standard_state& state) {
    header_block_state& block = state.m_block;
    const field_kind kind = std::exchange(block.m_kind, field_kind::none);
    apply_field(state, kind, state.m_field_text);
    if (block.m_record != nullptr && kind != field_kind::content_type) {
        std::string& value = block.m_record->m_value;
        value.resize(trimmed_at_end(value).size());
    }
    block.m_record = nullptr;
}

/// Takes the text of a field that has one line only.
void take_whole_field(standard_state& state, field_kind kind, std::string_view text) {
    header_block_state& block = state.m_block;
    apply_field(state, kind, text);
    if (block.m_record != nullptr && kind != field_kind::content_type)
        block.m_record->m_value = trimmed(text);
    block.m_record = nullptr;
}

void begin_field(standard_state& state, const input_line& line, std::size_t colon) {
    header_block_state& block = state.m_block;
    const std::string_view name = line.m_text.substr(0, line.m_name_bytes);
    block.m_record = state.m_tree.add_field(line.m_end - line.m_start);
    if (block.m_record != nullptr) {
        block.m_record->m_name = name;
        block.m_record->m_beg = line.m_start;
        block.m_record->m_end = line.m_end;
    }
    const field_kind kind = kind_of(name);
    const std::string_view text = line.m_text.substr(colon + 1);
    if (!is_blank(line.m_next_byte)) return take_whole_field(state, kind, text);
    block.m_kind = kind;
    state.m_field_text.clear();
    add_text(state, text);
}

/// A line that begins with a blank. It continues the line before it, whatever that was.
void on_folded_line(standard_state& state, const input_line& line) {
    add_text(state, line.m_text);
    if (state.m_block.m_record != nullptr) state.m_block.m_record->m_end = line.m_end;
}

bool is_digest(const MimeObj* entity) noexcept {
    return entity != nullptr && entity->m_multipart && is_word(entity->m_subtype, "digest");
}

/// Whether the body is a message that can be read where it stands. The lines of an encoded message
/// have no place in the input: the host decodes it and fills another tree.
bool holds_message(const MimeObj& entity) noexcept {
    if (!is_word(entity.m_type, "message")) return false;
    const auto is_among = [](std::string_view text, const auto&... words) {
        return (is_word(text, words) || ...);
    };
    return is_among(entity.m_subtype, "rfc822", "rfc2822", "global", "news")
           && !is_among(entity.m_encoding, "base64", "quoted-printable", "x-uuencode", "uuencode",
                        "x-uue");
}

} // namespace

void on_header_line(standard_state& state, const input_line& line) {
    state.m_open.add_header_line(line.m_start, line.m_end);
    if (line.m_text.empty()) {
        end_header_block(state);
    } else if (is_blank(line.m_text.front())) {
        on_folded_line(state, line);
    } else {
        end_field(state);
        const std::size_t colon = colon_of(line);
        if (colon != no_colon) begin_field(state, line, colon); // any other line is passed over
    }
}

void end_header_block(standard_state& state) {
    end_field(state);
    MimeObj& entity = state.m_open.innermost();
    if (!state.m_block.m_has_content_type && is_digest(state.m_open.parent_of_innermost())) {
        entity.m_type = "message";
        entity.m_subtype = "rfc822";
    }
    state.m_phase = phase::body;
    if (state.m_block.m_has_boundary) {
        state.m_delimiters.push(state.m_boundary, state.m_open.depth());
        entity.m_multipart = true;
    } else if (holds_message(entity)) {
        entity.m_message = true;
        state.open_entity();
    }
}

} // namespace mail_structure_detail::standard
