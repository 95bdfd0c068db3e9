// The second parser, rule by rule. Its whole job is to be plainly right: it copies each line, looks
// at each character, and walks every open entity for every line. Cost does not matter here.
//
// How a line travels:
//
//     next_line -> check_bytes -> dropped, if empty and first after a new entity
//                              -> on_header_line     consumed, or the header block ends and the
//                                                    line goes on
//                              -> open_entity        if the innermost entity is an encapsulated
//                                                    message; the same line is then the first one
//                                                    of its header block
//                              -> on_body_line or on_epilogue_line
//
// What single characters, texts and ranges do stands in reference_rules.h.

#include "reference_parser.h"

#include "reference_rules.h"

#include <ios>
#include <new>
#include <stdexcept>
#include <typeinfo>

namespace reference {

namespace {

enum class phase : std::uint8_t { header, body, epilogue };
enum class verdict : std::uint8_t { consumed, block_ended };

/// Which open entities take a line into their contents range.
enum class takers : std::uint8_t { all_open, all_but_innermost };

class parser {
public:
    parser(std::istream& in, const options& wanted, message& result)
        : m_in(in), m_wanted(wanted), m_result(result) {
        entity root;
        root.m_type = root.m_subtype = root.m_encoding = ""; // a cleared entity, not a new one
        m_result.m_entities.push_back(root);
        m_open.push_back(&m_result.m_entities.front());
        m_next_start = m_wanted.m_first_offset;
    }

    void run() {
        input_line line;
        while (next_line(line)) {
            check_bytes(line);
            const bool after_opening = m_fresh;
            m_fresh = false;
            if (after_opening && line.m_text.empty()) continue; // the phase, whichever it is, stays
            take_line(line);
        }
        m_result.m_done = true;
    }

private:
    // ------------------------------------------------------------------------------- reading lines

    bool next_line(input_line& line) {
        std::getline(m_in, line.m_text);
        if (m_in.fail()) return false; // failbit or badbit
        line.m_start = m_next_start;
        line.m_end = m_next_start + static_cast<std::uint32_t>(line.m_text.size());
        if (!m_in.eof()) line.m_end += 1; // the LF
        m_next_start = line.m_end;

        if (line.m_text.empty()) {
            line.m_scan_end = 0;
        } else if (line.m_text.back() == '\r') {
            line.m_text.pop_back();
            line.m_scan_end = line.m_text.size();
        } else {
            line.m_scan_end = line.m_text.size() - 1;
        }
        return true;
    }

    /// The last byte of a line without CR is not looked at.
    static void check_bytes(const input_line& line) {
        for (std::size_t i = 0; i < line.m_scan_end; ++i) {
            const char c = line.m_text[i];
            if (c == '\r' || c == '\n' || c == '\0')
                throw std::runtime_error("error in io input data");
        }
    }

    void take_line(const input_line& line) {
        if (m_phase == phase::header) {
            if (on_header_line(line) == verdict::consumed) return;
            m_phase = phase::body;
        }
        if (innermost().m_message) {
            open_entity();
            if (on_header_line(line) == verdict::consumed) return;
            m_phase =
                phase::body; // the entity just opened took no field, so it is no message itself
        }
        if (m_phase == phase::body) {
            on_body_line(line);
        } else {
            on_epilogue_line(line);
        }
    }

    // ------------------------------------------------------------------------------- open entities

    entity& innermost() { return *m_open.back(); }

    /// Opens a child of the innermost entity; its header block begins.
    void open_entity() {
        m_result.m_entities.emplace_back();
        entity& child = m_result.m_entities.back();
        child.m_parent = &innermost();
        innermost().m_children.push_back(&child);
        m_open.push_back(&child);
        m_record = nullptr;
        m_in_content_type = false;
        m_in_multipart_type = false;
        m_fresh = true;
        m_phase = phase::header;
    }

    /// Closes the innermost entity; the root stays open whatever comes.
    void close_entity() {
        if (m_open.size() > 1) m_open.pop_back();
    }

    /// Closes a part and, when it was the message inside an encapsulated message, that one too. Two
    /// entities at most: of a message in a message the outer one stays open.
    void close_part() {
        close_entity();
        if (innermost().m_message) close_entity();
    }

    void add_contents_line(takers who, const input_line& line) {
        const std::size_t count = who == takers::all_open ? m_open.size() : m_open.size() - 1;
        for (std::size_t i = 0; i < count; ++i) grow(m_open[i]->m_contents, line);
    }

    // -------------------------------------------------------------------------------- header phase

    verdict on_header_line(const input_line& line) {
        const std::string& text = line.m_text;
        if (text.empty()) {
            add_contents_line(takers::all_but_innermost, line);
            add_header(innermost(), line);
            m_phase = phase::body;
            return verdict::consumed;
        }
        if (is_space(text.front())) return on_blank_led_line(line);
        if (!is_letter(text.front())) return verdict::block_ended;
        if (line.m_scan_end == 0) return verdict::block_ended; // one letter and no CR

        std::size_t colon = 0;
        while (colon < line.m_scan_end && is_field_name_character(text[colon])) ++colon;
        // Where the scan ends before a colon has come, the byte at its end does not matter: the
        // line "ab!" is a field "ab".
        if (colon < line.m_scan_end && text[colon] != ':') return verdict::block_ended;
        on_field_line(line, colon);
        return verdict::consumed;
    }

    verdict on_blank_led_line(const input_line& line) {
        if (m_record == nullptr) return verdict::block_ended;
        std::size_t first_text = 1;
        const bool one_blank_without_cr = line.m_text.size() == 1 && line.m_scan_end == 0;
        if (!one_blank_without_cr) {
            while (first_text < line.m_scan_end && is_space(line.m_text[first_text])) ++first_text;
            if (first_text >= line.m_scan_end) return verdict::block_ended;
        }
        on_continuation_line(line, first_text - 1);
        return verdict::consumed;
    }

    /// @param blank  index of the last blank before the text of the line
    void on_continuation_line(const input_line& line, std::size_t blank) {
        m_record->m_end = line.m_end;
        if (m_in_content_type) {
            take_parameters(line.m_text, blank);
        } else {
            m_record->m_value += line.m_text.substr(blank);
        }
        end_header_line(line);
    }

    void on_field_line(const input_line& line, std::size_t colon) {
        const std::string& text = line.m_text;
        const std::uint32_t line_bytes = line.m_end - line.m_start;

        if (!m_wanted.m_keep_text && m_estimate + line_bytes >= m_wanted.m_memlimit) {
            m_scratch = field();
            m_record = &m_scratch; // it has no name, and so counts as Content-Type
        } else {
            innermost().m_headers.emplace_back();
            m_record = &innermost().m_headers.back();
            m_record->m_name = text.substr(0, colon);
        }
        m_in_content_type = abbreviates(m_record->m_name, "content-type");

        // A line ended by CR LF that is all name has no place where a value could begin.
        if (colon == text.size()) throw std::length_error("field line without colon");

        const std::size_t value_start = colon + 1;
        std::size_t semicolon = std::string::npos;
        if (m_in_content_type) semicolon = text.find(';', value_start);
        if (semicolon == std::string::npos) {
            m_record->m_value = trimmed(text.substr(value_start));
        } else {
            m_record->m_value = trimmed(text.substr(value_start, semicolon - value_start));
        }
        m_estimate += 64 + line_bytes;

        if (m_in_content_type) {
            take_content_type(m_record->m_value);
            take_parameters(text, semicolon);
        } else {
            // The contract has this spelling. The usual name, which ends in "encoding", is no
            // beginning of it.
            if (abbreviates(m_record->m_name, "content-transfer-enconding"))
                innermost().m_encoding = m_record->m_value;
            m_in_multipart_type = false;
        }
        end_header_line(line);
    }

    /// What every field line and continuation line does last.
    void end_header_line(const input_line& line) {
        add_contents_line(takers::all_but_innermost, line);
        if (m_record->m_beg == 0xFFFFFFFF) m_record->m_beg = line.m_start;
        m_record->m_end = line.m_end;
        add_header(innermost(), line);
    }

    // -------------------------------------------------------------------------------- Content-Type

    void take_content_type(const std::string& value) {
        const std::size_t slash = value.find('/');
        if (slash == std::string::npos) {
            innermost().m_type = value; // and the subtype stays
        } else {
            innermost().m_type = value.substr(0, slash);
            innermost().m_subtype = value.substr(slash + 1);
        }

        if (abbreviates(value, "message/rfc822")) { // the empty value does, too
            innermost().m_message = true;
            m_in_multipart_type = false;
        } else {
            m_in_multipart_type = begins_with(value, "multipart/");
        }
    }

    /// Takes the parameters that follow position, up to the end of the line or to the first that is
    /// malformed.
    /// @param position  index just before the first parameter, or npos where there is none
    void take_parameters(const std::string& text, std::size_t position) {
        while (position != std::string::npos) {
            const std::size_t start = position + 1;
            position = text.find(';', start); // quotes do not hide it
            const std::size_t end = position == std::string::npos ? text.size() : position;
            if (!take_parameter(text.substr(start, end - start))) return;
        }
    }

    /// Takes one parameter. False where it is malformed: nothing after it is taken then.
    bool take_parameter(const std::string& segment) {
        const std::size_t end = segment.size();
        std::size_t i = 0;

        while (i < end && is_space(segment[i])) ++i;
        if (i == end) return false; // empty, or blanks only

        const std::size_t name_start = i;
        while (i < end && is_parameter_name_character(segment[i])) ++i;
        if (i == end) return false;
        const std::string name = segment.substr(name_start, i - name_start);

        while (i < end && is_space(segment[i])) ++i;
        if (i == end) return false;
        if (segment[i] != '=') return false;
        ++i;
        while (i < end && is_space(segment[i])) ++i;
        if (i == end) return false;

        std::string value = segment.substr(i); // trailing blanks belong to it
        if (value.front() == '"') value.erase(0, 1);
        if (!value.empty() && value.back() == '"') value.pop_back();
        if (name.empty() || value.empty()) return false;

        if (m_estimate >= m_wanted.m_memlimit) return true; // well formed, but left out
        m_estimate += static_cast<std::uint32_t>(64 + name.size() + value.size());
        m_record->m_params.emplace_back(name, value);

        if (m_in_multipart_type && abbreviates(name, "boundary")) {
            m_boundaries.push_back("--" + value);
            innermost().m_multipart = true;
        }
        return true;
    }

    // --------------------------------------------------------------------- body and epilogue phase

    /// Only the innermost delimiter counts.
    boundary_match match_innermost(const input_line& line) const {
        if (m_boundaries.empty()) return boundary_match::none;
        return match_boundary(line.m_text, m_boundaries.back());
    }

    void on_body_line(const input_line& line) {
        if (innermost().m_type.empty()) innermost().m_type = "text";
        if (innermost().m_subtype.empty()) innermost().m_subtype = "plain";

        switch (match_innermost(line)) {
        case boundary_match::separator:
            if (!innermost().m_multipart) close_part();
            open_entity();
            add_contents_line(takers::all_but_innermost, line);
            break;
        case boundary_match::closing:
            add_contents_line(takers::all_but_innermost, line); // the last part is still open here
            if (!innermost().m_multipart) {
                close_part();
                m_boundaries.pop_back();
            }
            add_body_line(innermost(), m_wanted.m_keep_text, line);
            m_phase = phase::epilogue;
            m_record = nullptr;
            break;
        case boundary_match::none:
            add_contents_line(takers::all_open, line);
            add_body_line(innermost(), m_wanted.m_keep_text, line);
            m_record = nullptr;
            break;
        }
    }

    void on_epilogue_line(const input_line& line) {
        switch (match_innermost(line)) {
        case boundary_match::separator:
            close_part(); // here the innermost entity is closed even if it is a multipart
            open_entity();
            add_contents_line(takers::all_but_innermost, line);
            break;
        case boundary_match::closing:
            close_entity(); // one only, and the line is an epilogue line of the entity around it
            m_boundaries.pop_back();
            add_epilogue_line(innermost(), m_wanted.m_keep_text, line);
            break;
        case boundary_match::none:
            add_epilogue_line(innermost(), m_wanted.m_keep_text, line);
            break;
        }
    }

    std::istream& m_in;
    const options m_wanted;
    message& m_result;

    std::uint32_t m_next_start = 0;        // offset of the next line
    phase m_phase = phase::header;         // where the next line goes
    std::vector<entity*> m_open;           // the root first, the innermost entity last
    bool m_fresh = false;                  // an entity was opened and no line has come since
    field* m_record = nullptr;             // the field that a continuation line extends
    field m_scratch;                       // stands in for a field past the memory limit
    bool m_in_content_type = false;        // m_record is a Content-Type field
    bool m_in_multipart_type = false;      // and its value names a multipart
    std::uint32_t m_estimate = 0;          // bytes that the fields of the message may take
    std::vector<std::string> m_boundaries; // delimiters with their "--", innermost last
};

} // namespace

message parse(std::istream& in, const options& wanted) {
    message result;
    try {
        parser(in, wanted, result).run();
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
