#include "header_block.h"

#include "content_type.h"
#include "header_line.h"

#include <stdexcept>
#include <string_view>

namespace mail_structure_detail::classic {

namespace {

constexpr std::uint32_t not_yet_set = 0xFFFFFFFF;

/// Extends the record and the header block by a line that begins or continues a field.
void record_line(classic_state& state, const input_line& line) {
    MailStructure::header& record = *state.m_field.m_record;
    // Kept: a field that begins at offset 0xFFFFFFFF counts as not placed until its next line.
    // keeps_field_positions_as_begin_and_end
    // keeps_field_that_begins_at_the_last_offset_unset_until_its_fold
    if (record.m_beg == not_yet_set) record.m_beg = line.m_start;
    record.m_end = line.m_end;
    state.m_open.add_header_line(line.m_start, line.m_end);
}

/// Begins the record that takes the new field: one of the innermost entity, or the scratch record
/// where the memory limit leaves no room.
MailStructure::header& begin_record(classic_state& state, const input_line& line,
                                    std::size_t colon) {
    state.m_field = {};
    MailStructure::header* record = state.m_tree.add_field(line.m_end - line.m_start);
    if (record == nullptr) {
        // Kept: a field without a record has an empty name, and so is analysed as a Content-Type
        // field. keeps_fields_left_out_analysed_as_content_type
        state.m_scratch.m_value.clear(); // its name stays empty
        record = &state.m_scratch;
    } else {
        record->m_name = line.m_text.substr(0, colon);
    }
    state.m_field.m_record = record;
    return *record;
}

/// The text behind the colon. On a line without a colon, `colon` is the position of the last byte
/// if an LF ends the line, so that the value is empty, or the end of the text if a CR does, and no
/// value can begin behind that.
std::string_view text_after_colon(std::string_view text, std::size_t colon) {
    // Kept: a line of letters and hyphens that a CR ends is an error. This is the contract.
    // keeps_length_error_for_letters_before_cr_lf
    if (colon == text.size()) throw std::length_error("a field name without a colon");
    return text.substr(colon + 1);
}

void on_field_line(classic_state& state, const input_line& line, std::size_t colon) {
    MailStructure::header& record = begin_record(state, line, colon);
    field_in_progress& field = state.m_field;
    field.m_is_content_type = is_content_type_name(record.m_name);

    std::string_view value = text_after_colon(line.m_text, colon);
    std::size_t semicolon = std::string_view::npos;
    if (field.m_is_content_type) {
        semicolon = line.m_text.find(';', colon + 1);
        if (semicolon != std::string_view::npos) value = value.substr(0, semicolon - (colon + 1));
    }
    record.m_value = state.m_trim(value);

    if (field.m_is_content_type)
        analyse_content_type(state, line.m_text, semicolon);
    else if (is_encoding_name(record.m_name))
        state.m_open.innermost().m_encoding = record.m_value;
    record_line(state, line);
}

/// @param blank  position of the blank before the line's text
void on_continuation_line(classic_state& state, const input_line& line, std::size_t blank) {
    // Kept: a folded value keeps its trailing blanks, and does not count for the memory limit.
    // Folded lines are no part of a type or of an encoding. keeps_trailing_blanks_of_folds
    // keeps_continuation_lines_uncounted keeps_folds_out_of_its_value
    // keeps_folds_out_of_the_encoding
    if (state.m_field.m_is_content_type)
        read_parameters(state, line.m_text, blank);
    else
        state.m_field.m_record->m_value += line.m_text.substr(blank);
    record_line(state, line);
}

} // namespace

verdict on_header_line(classic_state& state, const input_line& line) {
    const header_line found = classify_header_line(line, state.m_field.m_record != nullptr);
    switch (found.m_kind) {
    case header_line_kind::empty:
        state.m_open.add_header_line(line.m_start, line.m_end);
        state.end_header_block();
        return verdict::consumed;
    case header_line_kind::field: on_field_line(state, line, found.m_at); return verdict::consumed;
    case header_line_kind::continuation:
        on_continuation_line(state, line, found.m_at);
        return verdict::consumed;
    case header_line_kind::not_of_the_block: break;
    }
    state.end_header_block();
    return verdict::again;
}

} // namespace mail_structure_detail::classic
