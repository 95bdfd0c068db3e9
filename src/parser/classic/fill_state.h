// Everything that one call of Fill knows. Built when it starts, gone when it returns or throws.

#ifndef MAIL_STRUCTURE_PARSER_CLASSIC_FILL_STATE_H
#define MAIL_STRUCTURE_PARSER_CLASSIC_FILL_STATE_H

#include <mail_structure.h>

#include "../lines/line_reader.h"
#include "../tree/open_entities.h"
#include "../tree/reused_records.h"
#include "boundary.h"
#include "field_trim.h"

#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>

namespace mail_structure_detail {

/// Which path the next line takes.
enum class phase : std::uint8_t { header, body, epilogue };

/// What has become of a line. `again`: the phase has changed, and the same line is looked at anew.
enum class verdict : std::uint8_t { consumed, again };

/// The field that a header block is at. Begins anew with each block.
struct field_in_progress {
    MailStructure::header* m_record =
        nullptr;                    // what a folded line extends; null before the first field
    std::size_t m_parameters = 0;   // so many of the record's are its own; the others are old
    bool m_is_content_type = false; // its folded lines hold parameters
    bool m_is_multipart = false;    // its boundary parameters count; of a Content-Type field only

    /// Ends the field, if there is one.
    void end() noexcept {
        if (m_record != nullptr) cut_off_old_parameters(*m_record, m_parameters);
        *this = field_in_progress();
    }
};

/// An estimate of what the header fields take, held against the host's limit. 32-bit, wrapping.
struct header_memory {
    std::uint32_t m_estimate = 0; // of the whole message: it is never reset
    std::uint32_t m_limit;        // MailStructure::m_memlimit

    explicit header_memory(std::uint32_t limit) : m_limit(limit) {}

    bool has_room_for(std::uint32_t bytes) const noexcept { return m_estimate + bytes < m_limit; }
    void add(std::uint32_t bytes) noexcept { m_estimate += record_overhead + bytes; }

    static constexpr std::uint32_t record_overhead = 64;
};

struct fill_state {
    explicit fill_state(MailStructure& message)
        : m_open(message.m_root), m_memory(MailStructure::m_memlimit),
          m_keep_text(message.m_keep_text) {
        m_delimiters.reserve(10); // usual nesting then never reallocates
    }
    ~fill_state() { m_field.end(); }
    fill_state(const fill_state&) = delete;
    fill_state& operator=(const fill_state&) = delete;

    phase m_phase = phase::header;
    open_entities m_open;
    delimiter_stack m_delimiters; // independent of m_open: only a Content-Type adds, only a closing
                                  // line removes
    field_in_progress m_field;
    bool m_just_opened = false; // an entity was; the next line is dropped if it is empty
    header_memory m_memory;
    MailStructure::header m_scratch; // stands in for a field beyond the memory limit; in no tree
    const bool m_keep_text;
    std::string m_room;           // for the kept form of some lines
    std::string_view m_kept_form; // of the run that is being added
    field_trim m_trim;

    /// Opens a child of the innermost open entity. Its header block begins with the next line, or
    /// with the present one if that has yet to be looked at.
    void open_entity() {
        m_open.open();
        m_field.end();
        m_just_opened = true;
        m_phase = phase::header;
    }
};

} // namespace mail_structure_detail

#endif
