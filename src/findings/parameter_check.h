// How the parameters of a Content-Type field are written (RFC 2045 section 5.1, RFC 2231).

#ifndef MAIL_STRUCTURE_FINDINGS_PARAMETER_CHECK_H
#define MAIL_STRUCTURE_FINDINGS_PARAMETER_CHECK_H

#include "../parser/standard/field_text.h"
#include "field_value.h"
#include "reporter.h"

#include <cstddef>
#include <string_view>
#include <vector>

namespace mail_structure_detail::findings {

class parameter_check {
public:
    /// @param field         must outlive the object
    /// @param is_multipart  the field's type is multipart, so that readers need its boundary
    parameter_check(const field_value& field, const reporter& report, bool is_multipart)
        : m_field(field), m_report(report), m_is_multipart(is_multipart),
          m_boundary_place(field.field()) {}

    /// Reports what is wrong with the parameters. Linear in the text.
    /// @param text  stands behind the media type
    /// @throws std::bad_alloc, and what the receiver throws
    void check_all(standard::field_text& text);

    /// Of the value of the first boundary parameter; of the field where there is none.
    const place& boundary_place() const noexcept { return m_boundary_place; }

private:
    /// A piece of the field's text.
    struct piece {
        std::size_t m_begin;
        std::size_t m_end;
    };

    void check_one(standard::field_text& text);
    void skip_comments(standard::field_text& text);
    piece take_value(standard::field_text& text);
    void check_name(std::string_view name, piece where);
    void check_boundary_name(std::string_view name, piece where);
    void check_value(std::string_view name, piece value);
    void check_quoted(bool is_boundary, piece value);
    void check_unquoted(bool is_boundary, piece value);
    void check_end(standard::field_text& text, piece value, bool is_boundary);
    void check_encoding(std::string_view name, piece value);
    void give(mail_findings::name found, level how_much, piece where) const {
        m_report.give(found, how_much, m_field.at(where.m_begin, where.m_end - where.m_begin));
    }
    /// How much it matters that some readers stop at a parameter, or pass it over.
    level level_of_loss() const noexcept {
        return m_is_multipart && !m_has_boundary ? level::danger : level::fault;
    }
    std::string_view text_of(piece where) const noexcept {
        return m_field.text().substr(where.m_begin, where.m_end - where.m_begin);
    }

    const field_value& m_field;
    const reporter& m_report;
    bool m_is_multipart;
    bool m_has_boundary = false; // a boundary parameter is complete
    bool m_has_plain_boundary = false;
    bool m_has_extended_boundary = false;
    bool m_has_boundary_section = false;
    place m_boundary_place;
    std::vector<std::string_view> m_names; // of the first parameters
};

} // namespace mail_structure_detail::findings

#endif
